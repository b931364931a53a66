// The classes of applications.h hand their operations to the loops over trees.
#include "expressions/applications.h"

#include "expressions/expression_tree.h"

using tdm::ExpressionTree;

std::unique_ptr<TDMExpression> TDMNumber::clone() const
{
  return std::make_unique<TDMNumber>(number_);
}

TDMUnaryApplication::TDMUnaryApplication(std::int32_t op, std::unique_ptr<TDMExpression> operand,
                                         const TDMSourceLocation &place)
    : TDMExpression(Shape::unary, operand_), op_(op), operand_{std::move(operand)}, place_(place)
{
}

TDMUnaryApplication::~TDMUnaryApplication()
{
  ExpressionTree::dismantle(*this);
}

std::int64_t TDMUnaryApplication::compute(TDMExpressionEnv *env)
{
  return ExpressionTree::evaluate(*this, env);
}

ExprlibNode *TDMUnaryApplication::to_exprlib(TDMExpressionEnv *env)
{
  return ExpressionTree::render(*this, env);
}

std::unique_ptr<TDMExpression> TDMUnaryApplication::clone() const
{
  return ExpressionTree::clone(*this);
}

TDMBinaryApplication::TDMBinaryApplication(std::int32_t op, std::unique_ptr<TDMExpression> left,
                                           std::unique_ptr<TDMExpression> right,
                                           const TDMSourceLocation &place)
    : TDMExpression(Shape::binary, operands_),
      op_(op), operands_{std::move(left), std::move(right)}, place_(place)
{
}

TDMBinaryApplication::~TDMBinaryApplication()
{
  ExpressionTree::dismantle(*this);
}

std::int64_t TDMBinaryApplication::compute(TDMExpressionEnv *env)
{
  return ExpressionTree::evaluate(*this, env);
}

ExprlibNode *TDMBinaryApplication::to_exprlib(TDMExpressionEnv *env)
{
  return ExpressionTree::render(*this, env);
}

std::unique_ptr<TDMExpression> TDMBinaryApplication::clone() const
{
  return ExpressionTree::clone(*this);
}

TDMConditionalExpression::TDMConditionalExpression(std::unique_ptr<TDMExpression> condition,
                                                   std::unique_ptr<TDMExpression> then_value,
                                                   std::unique_ptr<TDMExpression> else_value)
    : TDMExpression(Shape::conditional, parts_), parts_{std::move(condition), std::move(then_value),
                                                        std::move(else_value)}
{
}

TDMConditionalExpression::~TDMConditionalExpression()
{
  ExpressionTree::dismantle(*this);
}

std::int64_t TDMConditionalExpression::compute(TDMExpressionEnv *env)
{
  return ExpressionTree::evaluate(*this, env);
}

ExprlibNode *TDMConditionalExpression::to_exprlib(TDMExpressionEnv *env)
{
  return ExpressionTree::render(*this, env);
}

std::unique_ptr<TDMExpression> TDMConditionalExpression::clone() const
{
  return ExpressionTree::clone(*this);
}
