// eval: an expression of the command line, in the scope of a space.
#include <map>
#include <memory>
#include <optional>
#include <utility>

#include <fmt/format.h>
#include <tdm_c/tdm_inspect.h>

#include "find.h"
#include "format.h"
#include "json_values.h"
#include "object_text.h"
#include "usage_error.h"
#include "verbs.h"

namespace tool {

namespace {

/// The name by which the library tells places in the expression.
constexpr const char *expression_file = "<expression>";

using Expression = std::unique_ptr<tdm_expression, void (*)(tdm_expression *)>;

/// What the user says of a program, and what the expression asks beyond that.
class Program {
public:
  explicit Program(const Options &options)
      : answers_(answers_of(options)), defined_(options.defined.begin(), options.defined.end())
  {
    for (const std::string &symbol : options.symbols) add_symbol(symbol);
    table_.section_exists = section_exists;
    table_.symbol_defined = symbol_defined;
    table_.symbol_value = symbol_value;
    table_.section_address = unknown<section_address>;
    table_.section_size = unknown<section_size>;
    table_.group_start = unknown<group_bounds>;
    table_.group_end = unknown<group_bounds>;
    table_.layout_data_available = 1;
  }

  [[nodiscard]] std::optional<int64_t> value_of(const tdm_expression *expression)
  {
    int64_t value = 0;
    if (tdm_inspect_expression_evaluate(expression, &table_, this, &value) == 0)
      return std::nullopt;
    return value;
  }

  [[nodiscard]] bool defines_part_of(const tdm_expression *expression)
  {
    return tdm_inspect_expression_refers_to_defined(expression, &table_, this) != 0;
  }

  struct Unknown {
    std::string about;
    std::string name;
    bool operator<(const Unknown &other) const
    {
      return std::pair(about, name) < std::pair(other.about, other.name);
    }
  };
  [[nodiscard]] const std::set<Unknown> &unknowns() const { return unknowns_; }

private:
  /// NAME=VALUE. A name can hold the sign, too.
  void add_symbol(const std::string &given)
  {
    const size_t sign = given.rfind('=');
    if (sign == std::string::npos || sign == 0)
      throw UsageError{"--symbol " + given + ": NAME=VALUE is needed"};
    std::string_view digits = std::string_view(given).substr(sign + 1);
    const bool negative = digits.starts_with('-');
    if (negative) digits.remove_prefix(1);
    const auto number = parse_number(digits);
    if (!number)
      throw UsageError{"--symbol " + given + ": \"" + given.substr(sign + 1) +
                       "\" is no number from -(2^63 - 1) to 2^63 - 1"};
    symbols_[given.substr(0, sign)] = negative ? -*number : *number;
  }

  static Program &self(void *user) { return *static_cast<Program *>(user); }

  static int section_exists(const char *name, void *user)
  {
    return self(user).answers_.sections.contains(name) ? 1 : 0;
  }

  static int symbol_defined(const char *name, void *user)
  {
    const Program &program = self(user);
    return program.symbols_.contains(name) || program.defined_.contains(name) ? 1 : 0;
  }

  static int symbol_value(const char *name, int64_t *value, void *user)
  {
    const auto &symbols = self(user).symbols_;
    const auto found = symbols.find(name);
    if (found == symbols.end()) return 0;
    *value = found->second;
    return 1;
  }

  static constexpr char section_address[] = "address of section";
  static constexpr char section_size[] = "size of section";
  static constexpr char group_bounds[] = "place of group";
  template <const char *about> static int unknown(const char *name, int64_t *, void *user)
  {
    self(user).unknowns_.insert({about, name});
    return 0;
  }

  Answers answers_;
  std::set<std::string, std::less<>> defined_;
  std::map<std::string, int64_t, std::less<>> symbols_;
  std::set<Unknown> unknowns_;
  tdm_inspect_environment table_{};
};

struct Result {
  int64_t value;
  tdm_inspect_quantity quantity;
  bool refers_to_defined;
  std::string expression; ///< as it was read
};

/// All 64 bits of a number below 0.
std::string hex_of(int64_t value)
{
  if (value >= 0) return hex(value);
  return fmt::format("0x{:X}", static_cast<uint64_t>(value));
}

void write_text(const Result &result, bool tells_defined, const tdm_space *space, std::ostream &out)
{
  out << result.value << "  " << hex_of(result.value);
  const tdm_inspect_quantity &quantity = result.quantity;
  if (quantity.kind == TDM_QUANTITY_ADDRESS)
    out << "  address of " << tdm_space_get_full_name(space) << ' ' << unit_text(quantity.mau_size);
  else if (quantity.kind == TDM_QUANTITY_SIZE && result.value >= 0)
    out << "  " << human_size(result.value, quantity.mau_size) << ' '
        << unit_text(quantity.mau_size);
  if (tells_defined && result.refers_to_defined) out << "  names a symbol that is defined";
  out << '\n';
}

void write_answer(const Result &result, const Program &program, const tdm_space *space,
                  std::ostream &out)
{
  constexpr const char *quantities[] = {"number", "address", "size"}; // of enum tdm_quantity_kind
  Json unknown = Json::array();
  for (const auto &[about, name] : program.unknowns())
    unknown.push_back({{"about", about}, {"name", name}});
  const bool counts = result.quantity.kind != TDM_QUANTITY_NUMBER;
  write_json(out, {{"schema_version", json_schema_version},
                   {"space",
                    {{"full_name", tdm_space_get_full_name(space)},
                     {"mau_bits", tdm_space_get_mausize(space)}}},
                   {"expression", result.expression},
                   {"value", result.value},
                   {"hex", hex_of(result.value)},
                   {"quantity", quantities[result.quantity.kind]},
                   {"unit_bits", counts ? Json(result.quantity.mau_size) : Json(nullptr)},
                   {"refers_to_defined", result.refers_to_defined},
                   {"unknown", unknown}});
}

} // namespace

int eval(const Options &options, const Session &session, Diagnostics &diagnostics,
         std::ostream &out)
{
  const tdm_space *space = find_space(session.spec(), options.space);
  Program program(options);
  diagnostics.know(expression_file, options.expression);
  const auto fail = [&] {
    diagnostics.report(parse_failure(tdm_inspect_failure_text()));
    return exit_errors;
  };
  Result result{};
  const Expression expression(tdm_inspect_parse_expression(session.spec(), space,
                                                           options.expression.c_str(),
                                                           &result.quantity),
                              tdm_inspect_expression_delete);
  if (expression == nullptr) return fail();
  const std::optional<int64_t> value = program.value_of(expression.get());
  if (!value) return fail();
  result.value = *value;
  result.refers_to_defined = program.defines_part_of(expression.get());
  result.expression = text_of(tdm_inspect_expression_text(expression.get()));
  for (const auto &[about, name] : program.unknowns()) {
    Finding finding;
    finding.severity = "warning";
    finding.text = "the " + about + " \"" + name + "\" isn't known here and counts as -1";
    diagnostics.report(std::vector<Finding>{finding});
  }
  if (options.json)
    write_answer(result, program, space, out);
  else
    write_text(result, !options.defined.empty(), space, out);
  return exit_ok;
}

} // namespace tool
