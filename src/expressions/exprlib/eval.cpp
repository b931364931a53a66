// Evaluation as one loop. The way from the root down to the node at hand is kept in the nodes
// themselves: each links to the one above it and counts its steps, so that a tree of any depth
// costs neither stack nor memory, and a node that is met again on its own way (through a variable
// whose value refers to it) is seen.
//
// A variable without a value is a failure for whoever evaluates it, and for a variable whose value
// it is. As an operand it is merely open: the operator above decides what that means.
#include "expressions/exprlib/node.h"
#include "expressions/exprlib/operators.h"

namespace exprlib {

namespace {

enum class Outcome { done, failed, open, descend };

/// What a step of a node leads to; with `descend` the node that comes next.
struct Step {
  Outcome outcome;
  ExprlibNode *next = nullptr;
};

Step result_of(int failed)
{
  return {failed != 0 ? Outcome::failed : Outcome::done};
}

Step failure(const ExprlibNode *node, std::int32_t code)
{
  return result_of(fail(node, code));
}

/// Goes to an operand, which must be there.
Step to_operand(const ExprlibNode *node, std::uint32_t n)
{
  ExprlibNode *operand = exprlib_child(node, n);
  if (operand == nullptr) return failure(node, EXPRLIB_INTERNAL_ERROR);
  return {Outcome::descend, operand};
}

Step replace(ExprlibNode *node, ExprlibNode *by, bool relocatable)
{
  if (exprlib_become(node, by)) return {Outcome::failed};
  node->relocatable = relocatable ? 1 : 0;
  return {Outcome::done};
}

Step step_variable(ExprlibNode *node, std::uint32_t step)
{
  const auto &variable = exprlib_payload(node)->variable;
  const bool has_row = variable.owner != nullptr && variable.index < variable.owner->count;
  ExprlibNode *value = has_row ? variable.owner->rows[variable.index].value : nullptr;
  if (value == nullptr) return {Outcome::open};
  if (step == 0) return {Outcome::descend, value};
  if (!is_constant(value)) return failure(node, EXPRLIB_INTERNAL_ERROR);
  return replace(node, value, value->relocatable != 0);
}

/// Whether the conditional takes its second branch; a condition that is open takes the first.
bool takes_else(const ExprlibNode *condition)
{
  return is_constant(condition) && exprlib_is_zero(condition) != 0;
}

Step step_conditional(ExprlibNode *node, std::uint32_t step)
{
  if (step == 0) return to_operand(node, 0);
  const ExprlibNode *condition = exprlib_child(node, 0);
  const std::uint32_t branch = takes_else(condition) ? 2 : 1;
  if (step == 1) return to_operand(node, branch);
  ExprlibNode *chosen = exprlib_child(node, branch);
  return replace(node, chosen, condition->relocatable != 0 || chosen->relocatable != 0);
}

/// The number that a guard reports; whatever isn't an integer counts as 0.
std::uint32_t error_number(const ExprlibNode *number)
{
  if (!is_constant(number) || !is_integer(number->type)) return 0;
  const std::size_t size = value_size(number);
  if (size > 8 && !is_zero(exprlib_bytes(number) + 8, size - 8))
    number->context->error = EXPRLIB_OVERFLOW;
  return static_cast<std::uint32_t>(load(exprlib_bytes(number), size, 4, 0));
}

Step step_guard(ExprlibNode *node, std::uint32_t step)
{
  if (step == 0) return to_operand(node, 0);
  const ExprlibNode *condition = exprlib_child(node, 0);
  const bool passes =
      is_constant(condition) && is_integer(condition->type) && exprlib_is_zero(condition) != 0;
  if (step == 1) return to_operand(node, passes ? 1 : 2);
  ExprlibNode *value = exprlib_child(node, 1);
  if (passes) return replace(node, value, condition->relocatable != 0 || value->relocatable != 0);
  const std::uint32_t number = error_number(exprlib_child(node, 2));
  if (node->context->error_hook != nullptr) node->context->error_hook(number, value);
  return failure(node, EXPRLIB_EVALUATION_ERROR);
}

/// The evaluator gets the child as it stands: evaluating it, or not, is part of its work.
Step evaluate_relocation(ExprlibNode *node)
{
  const auto &relocation = exprlib_payload(node)->relocation;
  if (node->context->relocation_evaluator == nullptr)
    return failure(node, EXPRLIB_RELOCATION_ERROR);
  ExprlibNode *child = relocation.child;
  if (node->context->relocation_evaluator(relocation.argument, child) != 0)
    return failure(node, EXPRLIB_RELOCATION_ERROR);
  if (!is_constant(child)) return failure(node, EXPRLIB_INTERNAL_ERROR);
  return replace(node, child, child->relocatable != 0);
}

Step apply_user_operator(ExprlibNode *node)
{
  const ExprlibContext *context = node->context;
  for (std::uint32_t i = 0; i < context->user_operator_count; ++i) {
    const ExprlibUserOperator &row = context->user_operators[i];
    if (row.code == node->op) return result_of(row.function(node, row.closure));
  }
  return failure(node, EXPRLIB_UNKNOWN_OPERAND);
}

/// What is tested before any operand is evaluated; 0 if the node may be.
int check(const ExprlibNode *node, const OperatorRow *row)
{
  if (row != nullptr && row->pair) {
    const ExprlibNode *a = exprlib_child(node, 0);
    const ExprlibNode *b = exprlib_child(node, 1);
    if (a == nullptr || b == nullptr) return fail(node, EXPRLIB_INTERNAL_ERROR);
    if (!compatible(a->type, b->type)) return fail(node, EXPRLIB_INCOMPATIBLE_TYPES);
  }
  if (row == nullptr || !has_column(*row, node->type)) return fail(node, EXPRLIB_UNKNOWN_OPERAND);
  return 0;
}

/// The next step of a node, the first being number 0.
Step advance(ExprlibNode *node, std::uint32_t step)
{
  if (is_constant(node)) return {Outcome::done};
  if (node->op >= EXPRLIB_FIRST_USER_OPERATOR) return apply_user_operator(node);
  const OperatorRow *row = find_operator(node->op);
  if (step == 0 && check(node, row)) return {Outcome::failed};
  switch (node->op) {
  case EXPRLIB_VARIABLE:
    return step_variable(node, step);
  case EXPRLIB_CONDITIONAL:
    return step_conditional(node, step);
  case EXPRLIB_GUARD:
    return step_guard(node, step);
  case EXPRLIB_RELOCATION:
    return evaluate_relocation(node);
  default:
    break;
  }
  if (step < row->operands) return to_operand(node, step);
  return result_of(row->fold(node));
}

ExprlibNode *leave(ExprlibNode *node)
{
  ExprlibNode *above = node->link;
  node->link = nullptr;
  node->step = 0;
  return above;
}

/// Begins a node below another one; false if it is on the way already.
bool enter(ExprlibNode *node, ExprlibNode *above)
{
  if (node->step != 0) return false;
  node->link = above;
  node->step = 1;
  return true;
}

/// Leaves a variable without value, and those whose value it is. What is above them then is an
/// operator that has an open operand, or null: then nobody is there to leave it open for.
ExprlibNode *leave_open_variables(ExprlibNode *node)
{
  while (node != nullptr && node->op == EXPRLIB_VARIABLE) {
    ExprlibNode *above = leave(node);
    if (above == nullptr) fail(node, EXPRLIB_NO_VALUE);
    node = above;
  }
  return node;
}

int evaluate(ExprlibNode *root)
{
  if (!enter(root, nullptr)) return fail(root, EXPRLIB_INTERNAL_ERROR);
  ExprlibNode *node = root;
  while (node != nullptr) {
    const Step step = advance(node, node->step - 1);
    switch (step.outcome) {
    case Outcome::done:
      node = leave(node);
      break;
    case Outcome::open:
      node = leave_open_variables(node);
      if (node == nullptr) return 1;
      break;
    case Outcome::failed:
      while (node != nullptr) node = leave(node);
      return 1;
    case Outcome::descend:
      ++node->step;
      if (is_constant(step.next)) break;
      if (enter(step.next, node)) {
        node = step.next;
        break;
      }
      fail(node, EXPRLIB_INTERNAL_ERROR);
      while (node != nullptr) node = leave(node);
      return 1;
    }
  }
  return 0;
}

} // namespace

} // namespace exprlib

int exprlib_eval(ExprlibNode *node)
{
  ExprlibContext *context = node->context;
  if (context->running == 0) context->error = EXPRLIB_NO_ERROR;
  ++context->running;
  const int result = exprlib::evaluate(node);
  --context->running;
  return result;
}
