// The environment behind the C interface: two questions go to the caller, the rest has no answer.
#include "expressions/expression_env.h"

bool TDMExpressionEnvWrapper::section_exists(const std::string &name)
{
  if (callbacks_ == nullptr || callbacks_->section_exists == nullptr) return false;
  return callbacks_->section_exists(name.c_str(), user_) != 0;
}

bool TDMExpressionEnvWrapper::symbol_defined(const std::string &name)
{
  if (callbacks_ == nullptr || callbacks_->symbol_defined == nullptr) return false;
  return callbacks_->symbol_defined(name.c_str(), user_) != 0;
}

bool TDMExpressionEnvWrapper::section_address(const std::string &, const TDMSourceLocation &,
                                              std::int64_t &)
{
  return false;
}

ExprlibNode *TDMExpressionEnvWrapper::section_address_node(const std::string &,
                                                           const TDMSourceLocation &)
{
  return nullptr;
}

bool TDMExpressionEnvWrapper::section_size(const std::string &, const TDMSourceLocation &,
                                           std::int64_t &)
{
  return false;
}

ExprlibNode *TDMExpressionEnvWrapper::section_size_node(const std::string &,
                                                        const TDMSourceLocation &)
{
  return nullptr;
}

std::uint32_t *TDMExpressionEnvWrapper::located_data(const TDMSourceLocation &, std::int64_t,
                                                     std::int64_t)
{
  return nullptr;
}
