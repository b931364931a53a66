// The additive readers of expressions: from a text of the caller's, their own text, and their value
// against a table of callbacks.
#include <cstdlib>
#include <limits>
#include <new>
#include <vector>

#include "common/failures.h"
#include "expressions/expression.h"
#include "expressions/expression_env.h"
#include "expressions/expression_tree.h"
#include "expressions/source_text.h"
#include "interface/guard.h"
#include "interface/tdm_inspect_expression.h"
#include "interface/values.h"
#include "model/space_expression.h"
#include "model/spec.h"
#include "preprocessor/preprocessor.h"

using tdm::guarded;
using tdm::guarded_array;

namespace {

/// Asks the table. Groups are known to expressions by the symbols at their ends, which here are
/// names that no text can give a symbol.
class Environment final : public TDMExpressionEnv {
public:
  Environment(const tdm_inspect_environment &table, void *user) : table_(table), user_(user) {}

  bool section_exists(const std::string &name) override { return ask(table_.section_exists, name); }
  bool symbol_defined(const std::string &name) override { return ask(table_.symbol_defined, name); }
  bool section_address(const std::string &name, const TDMSourceLocation &,
                       std::int64_t &value) override
  {
    return ask(table_.section_address, name, value);
  }
  bool section_size(const std::string &name, const TDMSourceLocation &,
                    std::int64_t &value) override
  {
    return ask(table_.section_size, name, value);
  }
  std::string group_start_symbol(const std::string &group) override { return start_mark + group; }
  std::string group_end_symbol(const std::string &group) override { return end_mark + group; }
  bool symbol_value(const std::string &name, std::int64_t &value) override
  {
    if (name.starts_with(start_mark)) return ask(table_.group_start, name.substr(1), value);
    if (name.starts_with(end_mark)) return ask(table_.group_end, name.substr(1), value);
    return ask(table_.symbol_value, name, value);
  }
  bool layout_data_available() override { return table_.layout_data_available != 0; }
  std::uint32_t *located_data(const TDMSourceLocation &, std::int64_t start,
                              std::int64_t end) override;
  /// Environments count the other way round than the enumeration of the interface.
  int data_endianness() override
  {
    switch (table_.data_endianness) {
    case TDM_ENDIANNESS_LITTLE:
      return 1;
    case TDM_ENDIANNESS_BIG:
      return 2;
    default:
      return 0;
    }
  }
  int data_mau_size() override { return table_.data_mau_size; }

  // Nothing is built in Exprlib's form.
  ExprlibContext *exprlib_context() override { return nullptr; }
  ExprlibNode *section_address_node(const std::string &, const TDMSourceLocation &) override
  {
    return nullptr;
  }
  ExprlibNode *section_size_node(const std::string &, const TDMSourceLocation &) override
  {
    return nullptr;
  }
  ExprlibNode *group_address_node(const std::string &) override { return nullptr; }
  ExprlibNode *symbol_node(const std::string &) override { return nullptr; }

private:
  static constexpr const char *start_mark = "\n";
  static constexpr const char *end_mark = "\r";

  bool ask(int (*entry)(const char *, void *), const std::string &name)
  {
    return entry != nullptr && entry(name.c_str(), user_) != 0;
  }
  bool ask(int (*entry)(const char *, std::int64_t *, void *), const std::string &name,
           std::int64_t &value)
  {
    return entry != nullptr && entry(name.c_str(), &value, user_) != 0;
  }

  const tdm_inspect_environment &table_;
  void *user_;
};

std::uint32_t *Environment::located_data(const TDMSourceLocation &, std::int64_t start,
                                         std::int64_t end)
{
  if (table_.located_data == nullptr) return nullptr;
  const auto count = static_cast<std::uint64_t>(end) - static_cast<std::uint64_t>(start);
  // The length of what a checksum is made of is a number of 32 bits.
  if (count > std::numeric_limits<std::uint32_t>::max()) return nullptr;
  auto *units = static_cast<std::uint32_t *>(std::calloc(count, sizeof(std::uint32_t)));
  if (units == nullptr) throw std::bad_alloc();
  if (table_.located_data(start, end, units, user_) != 0) return units;
  std::free(units);
  return nullptr;
}

/// A copy, which keeps no value from before and leaves none behind. Copies of their own accord have
/// few locations; this one fails at the same places as the expression.
std::unique_ptr<TDMExpression> located_copy(const TDMExpression &expression)
{
  std::unique_ptr<TDMExpression> copy = expression.clone();
  copy->sourceLocations = expression.sourceLocations;
  std::vector<const TDMExpression *> nodes;
  tdm::ExpressionTree::run(expression, [&](const TDMExpression &node) {
    nodes.push_back(&node);
    return true;
  });
  auto node = nodes.begin();
  tdm::ExpressionTree::run(*copy, [&](TDMExpression &same) {
    if (node == nodes.end()) return false;
    same.sourceLocations = (*node++)->sourceLocations;
    return true;
  });
  return copy;
}

tdm_inspect_quantity quantity_of(const tdm::Quantity &quantity)
{
  switch (quantity.kind) {
  case tdm::Quantity::Kind::address:
    return {TDM_QUANTITY_ADDRESS, quantity.mau};
  case tdm::Quantity::Kind::size:
    return {TDM_QUANTITY_SIZE, quantity.mau};
  default:
    return {TDM_QUANTITY_NUMBER, 0};
  }
}

/// Calls with the environment that the table stands for, null for none.
template <class Call>
auto with_environment(const tdm_inspect_environment *table, void *user, Call call)
{
  if (table == nullptr) return call(nullptr);
  Environment environment(*table, user);
  return call(&environment);
}

} // namespace

tdm_expression *tdm_inspect_parse_expression(const tdm_spec *spec, const tdm_space *space,
                                             const char *text, tdm_inspect_quantity *quantity)
{
  return guarded([&] {
    if (!tdm::preprocessor_started()) throw new TDMFileException("tdm_init has not been called");
    tdm::SpaceExpression read = tdm::expression_in_space(*tdm::handle(spec), *space, text);
    if (quantity != nullptr) *quantity = quantity_of(read.quantity);
    return read.expression.release();
  });
}

void tdm_inspect_expression_delete(tdm_expression *expression)
{
  delete expression;
}

const char *tdm_inspect_expression_text(const tdm_expression *expression)
{
  return guarded([&]() -> const char * {
    return expression != nullptr ? tdm::text_result(tdm::source_text(*expression)) : nullptr;
  });
}

int tdm_inspect_expression_evaluate(const tdm_expression *expression,
                                    const tdm_inspect_environment *environment, void *user,
                                    int64_t *value)
{
  return guarded([&] {
    const std::unique_ptr<TDMExpression> copy = located_copy(*expression);
    *value = with_environment(environment, user,
                              [&](TDMExpressionEnv *env) { return copy->compute(env); });
    return 1;
  });
}

int tdm_inspect_expression_refers_to_defined(const tdm_expression *expression,
                                             const tdm_inspect_environment *environment, void *user)
{
  return guarded([&] {
    const bool refers = with_environment(environment, user, [&](TDMExpressionEnv *env) {
      return tdm::handle(expression)->refers_to_defined(env);
    });
    return refers ? 1 : 0;
  });
}

tdm_arr *tdm_inspect_expression_data_ranges(const tdm_expression *expression,
                                            const tdm_inspect_environment *environment, void *user)
{
  return guarded_array<tdm_inspect_data_range>([&] {
    const std::unique_ptr<TDMExpression> copy = located_copy(*expression);
    TDMExpression::DataRanges ranges;
    with_environment(environment, user,
                     [&](TDMExpressionEnv *env) { copy->collect_data_ranges(env, ranges); });
    return tdm::array_of(ranges, [](const auto &range) {
      return tdm_inspect_data_range{range.first, range.second};
    });
  });
}
