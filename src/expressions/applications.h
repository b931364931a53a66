/// @file
/// The expressions that compute with values alone: numbers, operators and the conditional.
///
/// Arithmetic is that of signed 64-bit numbers and wraps. Constructors take children that are not
/// null, or that are filled in before the object is used.
///
/// An operator number that is none of those below is a fault of whoever made the object, which no
/// text leads to: computing and rendering then throw an `int` of value 0 (by value), except that
/// computing a TDMUnaryApplication throws TDMUnexpectedErrorException *.
#pragma once

#include <array>

#include "expressions/expression.h"

/// Operators of one operand; the numbers are those of the records, but for absolute.
enum TDMUnaryOperator : std::int32_t {
  TDM_UNARY_NOT = 1,
  TDM_UNARY_COMPLEMENT = 2,
  TDM_UNARY_NEGATE = 3,
  TDM_UNARY_ABSOLUTE = 4,
  TDM_UNARY_PARENTHESES = 5
};

/// Operators of two operands; the numbers are those of the records, but for min and max.
enum TDMBinaryOperator : std::int32_t {
  TDM_BINARY_MULTIPLY = 1,
  TDM_BINARY_DIVIDE = 2,
  TDM_BINARY_REMAINDER = 3,
  TDM_BINARY_ADD = 4,
  TDM_BINARY_SUBTRACT = 5,
  TDM_BINARY_SHIFT_RIGHT = 6,
  TDM_BINARY_SHIFT_LEFT = 7,
  TDM_BINARY_EQUAL = 8,
  TDM_BINARY_NOT_EQUAL = 9,
  TDM_BINARY_GREATER = 10,
  TDM_BINARY_LESS = 11,
  TDM_BINARY_GREATER_EQUAL = 12,
  TDM_BINARY_LESS_EQUAL = 13,
  TDM_BINARY_AND = 14,
  TDM_BINARY_XOR = 15,
  TDM_BINARY_OR = 16,
  TDM_BINARY_LOGICAL_AND = 17,
  TDM_BINARY_LOGICAL_OR = 18,
  TDM_BINARY_MIN = 19,
  TDM_BINARY_MAX = 20
};

/// A number.
class TDM_CLIENT_API TDMNumber final : public TDMExpression {
public:
  /// Of that value.
  explicit TDMNumber(std::int64_t number) : number_(number) {}

  /// The number.
  [[nodiscard]] std::int64_t number() const { return number_; }

  std::int64_t compute(TDMExpressionEnv *) override { return number_; }
  ExprlibNode *to_exprlib(TDMExpressionEnv *env) override;
  [[nodiscard]] std::unique_ptr<TDMExpression> clone() const override;

private:
  std::int64_t number_;
};

/// An operator before one operand.
class TDM_CLIENT_API TDMUnaryApplication final : public TDMExpression {
public:
  /// The place is reported at where the object has no location of key "op".
  TDMUnaryApplication(std::int32_t op, std::unique_ptr<TDMExpression> operand,
                      const TDMSourceLocation &place = {});
  ~TDMUnaryApplication() override;

  std::int64_t compute(TDMExpressionEnv *env) override;
  ExprlibNode *to_exprlib(TDMExpressionEnv *env) override;
  [[nodiscard]] std::unique_ptr<TDMExpression> clone() const override;

  /// One of TDMUnaryOperator.
  [[nodiscard]] std::int32_t op() const { return op_; }
  /// The operand; stays the expression's.
  [[nodiscard]] TDMExpression &operand() const { return *operand_[0]; }

private:
  friend struct tdm::ExpressionTree;

  std::int32_t op_;
  std::array<std::unique_ptr<TDMExpression>, 1> operand_;
  TDMSourceLocation place_;
};

/// An operator between two operands, and `min` and `max`.
class TDM_CLIENT_API TDMBinaryApplication final : public TDMExpression {
public:
  /// A division by zero is reported at the place.
  TDMBinaryApplication(std::int32_t op, std::unique_ptr<TDMExpression> left,
                       std::unique_ptr<TDMExpression> right, const TDMSourceLocation &place = {});
  ~TDMBinaryApplication() override;

  std::int64_t compute(TDMExpressionEnv *env) override;
  ExprlibNode *to_exprlib(TDMExpressionEnv *env) override;
  [[nodiscard]] std::unique_ptr<TDMExpression> clone() const override;

  /// One of TDMBinaryOperator.
  [[nodiscard]] std::int32_t op() const { return op_; }
  /// The left operand; stays the expression's.
  [[nodiscard]] TDMExpression &left() const { return *operands_[0]; }
  /// The right operand; stays the expression's.
  [[nodiscard]] TDMExpression &right() const { return *operands_[1]; }

private:
  friend struct tdm::ExpressionTree;

  std::int32_t op_;
  std::array<std::unique_ptr<TDMExpression>, 2> operands_;
  TDMSourceLocation place_;
};

/// Evaluates the condition and then the chosen branch alone.
class TDM_CLIENT_API TDMConditionalExpression final : public TDMExpression {
public:
  /// Takes its three parts over.
  TDMConditionalExpression(std::unique_ptr<TDMExpression> condition,
                           std::unique_ptr<TDMExpression> then_value,
                           std::unique_ptr<TDMExpression> else_value);
  ~TDMConditionalExpression() override;

  std::int64_t compute(TDMExpressionEnv *env) override;
  ExprlibNode *to_exprlib(TDMExpressionEnv *env) override;
  [[nodiscard]] std::unique_ptr<TDMExpression> clone() const override;

  /// The part before `?`; stays the expression's, as the others do.
  [[nodiscard]] TDMExpression &condition() const { return *parts_[0]; }
  /// The part between `?` and `:`.
  [[nodiscard]] TDMExpression &then_value() const { return *parts_[1]; }
  /// The part behind `:`.
  [[nodiscard]] TDMExpression &else_value() const { return *parts_[2]; }

private:
  friend struct tdm::ExpressionTree;

  std::array<std::unique_ptr<TDMExpression>, 3> parts_;
};
