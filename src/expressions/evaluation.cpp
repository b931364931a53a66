// Evaluation of the expressions that have children.
//
// One loop over a stack of objects that wait for a child. The state of an object is what its
// children keep: the child that is wanted next is the first one without a value that the values of
// the others don't make needless. So an object is looked at anew each time a child has its value,
// and a failure leaves the tree with exactly the values that were computed.
#include "common/failures.h"
#include "expressions/applications.h"
#include "expressions/arithmetic.h"
#include "expressions/checksum.h"
#include "expressions/expression_env.h"
#include "expressions/expression_tree.h"

namespace tdm {

namespace {

struct Waiting {
  TDMExpression *node;
  bool layout_data; // what a checksum was told when it was begun
};

/// A number that isn't an operator is a fault of the code that built the expression.
void check_operator(const TDMBinaryApplication &node)
{
  if (node.op() < TDM_BINARY_MULTIPLY || node.op() > TDM_BINARY_MAX) throw int{0};
}

void check_operator(const TDMUnaryApplication &node, const TDMSourceLocation &place)
{
  if (node.op() < TDM_UNARY_NOT || node.op() > TDM_UNARY_PARENTHESES)
    throw new TDMUnexpectedErrorException(node.location_or("op", place), "illegal unary operator");
}

} // namespace

/// The child whose value is needed next, or null.
TDMExpression *ExpressionTree::pending_child(const TDMExpression &node)
{
  const auto open = [&node](std::size_t n) { return !node.children()[n]->has_memo_; };
  const auto child = [&node](std::size_t n) { return node.children()[n].get(); };
  if (open(0)) return child(0);
  const bool first = child(0)->memo_ != 0;
  switch (node.shape_) {
  case Shape::binary: {
    const std::int32_t op = static_cast<const TDMBinaryApplication &>(node).op();
    if ((op == TDM_BINARY_LOGICAL_AND && !first) || (op == TDM_BINARY_LOGICAL_OR && first))
      return nullptr;
    return open(1) ? child(1) : nullptr;
  }
  case Shape::conditional: {
    const std::size_t chosen = first ? 1 : 2;
    return open(chosen) ? child(chosen) : nullptr;
  }
  case Shape::checksum:
    return open(1) ? child(1) : nullptr;
  default:
    return nullptr;
  }
}

/// The value of an object whose children have all that is needed.
std::int64_t ExpressionTree::combine(const TDMExpression &node, TDMExpressionEnv *env,
                                     bool layout_data)
{
  const auto value = [&node](std::size_t n) { return node.children()[n]->memo_; };
  switch (node.shape_) {
  case Shape::unary:
    return apply_unary(static_cast<const TDMUnaryApplication &>(node).op(), value(0));
  case Shape::binary: {
    const auto &binary = static_cast<const TDMBinaryApplication &>(node);
    const bool divides = binary.op() == TDM_BINARY_DIVIDE || binary.op() == TDM_BINARY_REMAINDER;
    if (divides && value(1) == 0) throw new TDMSemanticException(binary.place_, "division by zero");
    // Behind a short circuit the right side has no value, and none that it reads as counts.
    return apply_binary(binary.op(), value(0), value(1));
  }
  case Shape::conditional:
    return value(value(0) != 0 ? 1 : 2);
  default: {
    const auto &checksum = static_cast<const TDMChecksum &>(node);
    return checksum.over_data(layout_data ? env : nullptr, value(0), value(1));
  }
  }
}

std::int64_t ExpressionTree::evaluate(TDMExpression &root, TDMExpressionEnv *env)
{
  WorkStack<Waiting> waiting;
  const auto begin = [&](TDMExpression &node) {
    if (node.shape_ == Shape::unary) {
      const auto &unary = static_cast<const TDMUnaryApplication &>(node);
      check_operator(unary, unary.place_);
    } else if (node.shape_ == Shape::binary) {
      check_operator(static_cast<const TDMBinaryApplication &>(node));
    }
    const bool asks = node.shape_ == Shape::checksum && env != nullptr;
    waiting.push({&node, asks && env->layout_data_available()});
  };

  begin(root);
  for (;;) {
    const Waiting current = waiting.top();
    if (TDMExpression *child = pending_child(*current.node)) {
      if (child->shape_ == Shape::leaf)
        child->keep(child->compute(env));
      else
        begin(*child);
      continue;
    }
    const std::int64_t value = combine(*current.node, env, current.layout_data);
    waiting.pop();
    if (waiting.empty()) return value;
    current.node->keep(value);
  }
}

} // namespace tdm
