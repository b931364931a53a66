// How the leaves ask the environment. Without one, each of them that computes fails as where no
// layout data is available.
#include "expressions/queries.h"

#include "common/failures.h"
#include "expressions/applications.h"
#include "expressions/expression_env.h"
#include "expressions/expression_tree.h"
#include "expressions/exprlib/exprlib.h"

namespace {

bool confirms(TDMExpressionEnv *env, tdm::Text name)
{
  return env != nullptr && env->symbol_defined(name.str());
}

bool has_layout_data(TDMExpressionEnv *env)
{
  return env != nullptr && env->layout_data_available();
}

} // namespace

std::int64_t TDMSymbolRef::compute(TDMExpressionEnv *env)
{
  // The node is of no use here; asking for it lets an environment see each use of a symbol.
  if (env != nullptr)
    if (ExprlibNode *node = env->symbol_node(name_.str())) exprlib_release(node);
  if (!has_layout_data(env))
    throw new TDMDataNeededForExpressionException(location_or("name", place_),
                                                  tdm::needs_layout_data);
  std::int64_t value = 0;
  if (env->symbol_value(name_.str(), value)) return value;
  throw new TDMSyntaxException(location_or("name", place_), "could not find symbol " + name_);
}

ExprlibNode *TDMSymbolRef::to_exprlib(TDMExpressionEnv *env)
{
  return env == nullptr ? nullptr : env->symbol_node(name_.str());
}

bool TDMSymbolRef::refers_to_defined(TDMExpressionEnv *env)
{
  return confirms(env, name_);
}

bool TDMSymbolRef::refers_to_any(const std::set<std::string> &names)
{
  return names.contains(name_.str());
}

std::unique_ptr<TDMExpression> TDMSymbolRef::clone() const
{
  return std::make_unique<TDMSymbolRef>(name_, place_);
}

bool TDMDefinedSymbol::refers_to_defined(TDMExpressionEnv *env)
{
  return confirms(env, name_);
}

std::unique_ptr<TDMExpression> TDMDefinedSymbol::clone() const
{
  return std::make_unique<TDMDefinedSymbol>(name_);
}

bool TDMReferenced::refers_to_defined(TDMExpressionEnv *env)
{
  return confirms(env, name_);
}

std::unique_ptr<TDMExpression> TDMReferenced::clone() const
{
  return std::make_unique<TDMReferenced>(name_);
}

std::int64_t TDMSectionExists::compute(TDMExpressionEnv *env)
{
  if (env == nullptr) throw new TDMDataNeededForExpressionException(place_, tdm::needs_layout_data);
  return env->section_exists(name_.str()) ? 1 : 0;
}

std::unique_ptr<TDMExpression> TDMSectionExists::clone() const
{
  return std::make_unique<TDMSectionExists>(name_, place_);
}

std::int64_t TDMAddressExpression::compute(TDMExpressionEnv *env)
{
  const TDMSourceLocation at = location_or("addressof", place_);
  if (!has_layout_data(env))
    throw new TDMDataNeededForExpressionException(at, tdm::needs_layout_data);
  std::int64_t value = 0;
  bool found = false;
  if (kind_ == section)
    found = env->section_address(name_.str(), at, value);
  else if (kind_ == group)
    found = env->symbol_value(env->group_start_symbol(name_.str()), value);
  return found ? value : -1;
}

ExprlibNode *TDMAddressExpression::to_exprlib(TDMExpressionEnv *env)
{
  if (env == nullptr) return nullptr;
  if (kind_ == section)
    return env->section_address_node(name_.str(), location_or("addressof", place_));
  if (kind_ == group) return env->group_address_node(name_.str());
  return nullptr;
}

std::unique_ptr<TDMExpression> TDMAddressExpression::clone() const
{
  auto copy = std::make_unique<TDMAddressExpression>(kind_, name_, place_);
  copy->sourceLocations = sourceLocations;
  return copy;
}

void TDMSizeOf::refuse_kind() const
{
  throw new TDMSyntaxException(location_or("objName", place_),
                               "unsupported argument type for sizeof()");
}

std::int64_t TDMSizeOf::group_size(TDMExpressionEnv &env) const
{
  std::int64_t start = 0;
  std::int64_t end = 0;
  if (!env.symbol_value(env.group_start_symbol(name_.str()), start)) return -1;
  if (!env.symbol_value(env.group_end_symbol(name_.str()), end)) return -1;
  return static_cast<std::int64_t>(static_cast<std::uint64_t>(end) -
                                   static_cast<std::uint64_t>(start));
}

std::int64_t TDMSizeOf::compute(TDMExpressionEnv *env)
{
  if (!has_layout_data(env))
    throw new TDMDataNeededForExpressionException(location_or("objName", place_),
                                                  tdm::needs_layout_data);
  if (kind_ == group) return group_size(*env);
  if (kind_ != section) refuse_kind();
  std::int64_t value = 0;
  return env->section_size(name_.str(), location_or("sizeof", place_), value) ? value : -1;
}

ExprlibNode *TDMSizeOf::to_exprlib(TDMExpressionEnv *env)
{
  if (kind_ != section && kind_ != group) refuse_kind();
  if (env == nullptr) return nullptr;
  if (kind_ == section) return env->section_size_node(name_.str(), location_or("sizeof", place_));
  const auto symbol = [this](const std::string &name) {
    return std::make_unique<TDMSymbolRef>(tdm::Text(std::string_view(name)), place_);
  };
  const std::string end = env->group_end_symbol(name_.str());
  const std::string start = env->group_start_symbol(name_.str());
  TDMBinaryApplication size(TDM_BINARY_SUBTRACT, symbol(end), symbol(start));
  return size.to_exprlib(env);
}

std::unique_ptr<TDMExpression> TDMSizeOf::clone() const
{
  auto copy = std::make_unique<TDMSizeOf>(kind_, name_, place_);
  copy->sourceLocations = sourceLocations;
  return copy;
}
