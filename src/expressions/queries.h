/// @file
/// The expressions that ask the environment by a name: symbols, sections and groups. All are
/// leaves.
///
/// Each holds a place beside its own locations: what is reported at where the object hasn't got the
/// key in question, because it was translated from a record without locations or is a clone.
#pragma once

#include "common/text.h"
#include "expressions/expression.h"

/// The value of a linker symbol.
class TDM_CLIENT_API TDMSymbolRef final : public TDMExpression {
public:
  /// The place is reported at where the object has no location of its own, here and below.
  explicit TDMSymbolRef(tdm::Text name, const TDMSourceLocation &place = {})
      : name_(name), place_(place)
  {
  }

  std::int64_t compute(TDMExpressionEnv *env) override;
  ExprlibNode *to_exprlib(TDMExpressionEnv *env) override;
  bool refers_to_defined(TDMExpressionEnv *env) override;
  bool refers_to_any(const std::set<std::string> &names) override;
  [[nodiscard]] std::unique_ptr<TDMExpression> clone() const override;

  /// The symbol.
  [[nodiscard]] tdm::Text name() const { return name_; }

private:
  tdm::Text name_;
  TDMSourceLocation place_;
};

/// `defined("name")`: 0 in arithmetic, whatever the environment says; refers_to_defined has the
/// answer.
class TDM_CLIENT_API TDMDefinedSymbol final : public TDMExpression {
public:
  /// Asks for the symbol.
  explicit TDMDefinedSymbol(tdm::Text name) : name_(name) {}

  std::int64_t compute(TDMExpressionEnv *) override { return 0; }
  ExprlibNode *to_exprlib(TDMExpressionEnv *) override { return nullptr; }
  bool refers_to_defined(TDMExpressionEnv *env) override;
  [[nodiscard]] std::unique_ptr<TDMExpression> clone() const override;

  /// The symbol.
  [[nodiscard]] tdm::Text name() const { return name_; }

private:
  tdm::Text name_;
};

/// As TDMDefinedSymbol, for a symbol that is referenced. No text of the language gives one.
class TDM_CLIENT_API TDMReferenced final : public TDMExpression {
public:
  /// Asks for the symbol.
  explicit TDMReferenced(tdm::Text name) : name_(name) {}

  std::int64_t compute(TDMExpressionEnv *) override { return 0; }
  ExprlibNode *to_exprlib(TDMExpressionEnv *) override { return nullptr; }
  bool refers_to_defined(TDMExpressionEnv *env) override;
  [[nodiscard]] std::unique_ptr<TDMExpression> clone() const override;

  /// The symbol.
  [[nodiscard]] tdm::Text name() const { return name_; }

private:
  tdm::Text name_;
};

/// `exists("section")`: 1 or 0.
class TDM_CLIENT_API TDMSectionExists final : public TDMExpression {
public:
  /// Asks for the section.
  explicit TDMSectionExists(tdm::Text name, const TDMSourceLocation &place = {})
      : name_(name), place_(place)
  {
  }

  std::int64_t compute(TDMExpressionEnv *env) override;
  ExprlibNode *to_exprlib(TDMExpressionEnv *) override { return nullptr; }
  [[nodiscard]] std::unique_ptr<TDMExpression> clone() const override;

  /// The section.
  [[nodiscard]] tdm::Text name() const { return name_; }

private:
  tdm::Text name_;
  TDMSourceLocation place_;
};

/// `addressof` of a section or a group; -1 where the environment has no answer.
class TDM_CLIENT_API TDMAddressExpression final : public TDMExpression {
public:
  /// What it is the address of.
  enum Kind : std::int32_t { section = 0, group = 1 };

  /// The kind is one of Kind.
  TDMAddressExpression(std::int32_t kind, tdm::Text name, const TDMSourceLocation &place = {})
      : kind_(kind), name_(name), place_(place)
  {
  }

  std::int64_t compute(TDMExpressionEnv *env) override;
  ExprlibNode *to_exprlib(TDMExpressionEnv *env) override;
  [[nodiscard]] std::unique_ptr<TDMExpression> clone() const override;

  /// One of Kind.
  [[nodiscard]] std::int32_t kind() const { return kind_; }
  /// The section or group.
  [[nodiscard]] tdm::Text name() const { return name_; }

private:
  std::int32_t kind_;
  tdm::Text name_;
  TDMSourceLocation place_;
};

/// `sizeof` of a section or a group; -1 where the environment has no answer.
class TDM_CLIENT_API TDMSizeOf final : public TDMExpression {
public:
  /// What it is the size of.
  enum Kind : std::int32_t { section = 1, group = 2 };

  /// The kind is one of Kind.
  TDMSizeOf(std::int32_t kind, tdm::Text name, const TDMSourceLocation &place = {})
      : kind_(kind), name_(name), place_(place)
  {
  }

  std::int64_t compute(TDMExpressionEnv *env) override;
  ExprlibNode *to_exprlib(TDMExpressionEnv *env) override;
  [[nodiscard]] std::unique_ptr<TDMExpression> clone() const override;

  /// One of Kind.
  [[nodiscard]] std::int32_t kind() const { return kind_; }
  /// The section or group.
  [[nodiscard]] tdm::Text name() const { return name_; }

private:
  std::int64_t group_size(TDMExpressionEnv &env) const;
  [[noreturn]] void refuse_kind() const;

  std::int32_t kind_;
  tdm::Text name_;
  TDMSourceLocation place_;
};
