// What an environment of the C interface answers: it knows of no sections.
#include "layout/statement_env.h"

TDMStatementEnv::~TDMStatementEnv() = default;

std::unique_ptr<TDMStatementEnv> TDMStatementEnv::clone() const
{
  return std::unique_ptr<TDMStatementEnv>(new TDMStatementEnv(*this));
}

bool TDMStatementEnv::has_absolute_restriction(const TDMSection &)
{
  return false;
}

std::vector<TDMSection *> TDMStatementEnv::references(const std::vector<TDMSection *> &)
{
  return {};
}

void TDMStatementEnv::message(const std::string &) {}
