// Destroying and cloning of expression trees without recursion.
#include "language/expr_records.h"

#include "common/work_stack.h"

namespace tdm {

namespace {

ExpressionOperands operands(ExpressionPtr &first)
{
  return {{&first, nullptr, nullptr}, 1};
}

ExpressionOperands operands(ExpressionPtr &first, ExpressionPtr &second)
{
  return {{&first, &second, nullptr}, 2};
}

} // namespace

ExpressionPtr clone_node(const TDMFileExpression &node)
{
  switch (node.kind()) {
  case kExprUnary:
    return std::make_unique<TDMExprUnaryApplication>(
        static_cast<const TDMExprUnaryApplication &>(node).op, nullptr);
  case kExprBinary:
    return std::make_unique<TDMExprBinaryApplication>(
        static_cast<const TDMExprBinaryApplication &>(node).op, nullptr, nullptr);
  case kExprConditional:
    return std::make_unique<TDMExprConditional>(nullptr, nullptr, nullptr);
  case kExprAbsolute:
    return std::make_unique<TDMExprAbsolute>(nullptr);
  case kExprMax:
    return std::make_unique<TDMExprMax>(nullptr, nullptr);
  case kExprMin:
    return std::make_unique<TDMExprMin>(nullptr, nullptr);
  case kExprChecksum: {
    auto copy = std::make_unique<TDMExprChecksum>();
    copy->algo = static_cast<const TDMExprChecksum &>(node).algo;
    return copy;
  }
  default:
    return node.clone(); // no operands, so no way back to here
  }
}

ExpressionOperands expression_operands(TDMFileExpression &expression)
{
  switch (expression.kind()) {
  case kExprUnary:
    return operands(static_cast<TDMExprUnaryApplication &>(expression).operand);
  case kExprBinary: {
    auto &node = static_cast<TDMExprBinaryApplication &>(expression);
    return operands(node.left, node.right);
  }
  case kExprConditional: {
    auto &node = static_cast<TDMExprConditional &>(expression);
    return {{&node.condition, &node.trueValue, &node.falseValue}, 3};
  }
  case kExprAbsolute:
    return operands(static_cast<TDMExprAbsolute &>(expression).operand);
  case kExprMax: {
    auto &node = static_cast<TDMExprMax &>(expression);
    return operands(node.left, node.right);
  }
  case kExprMin: {
    auto &node = static_cast<TDMExprMin &>(expression);
    return operands(node.left, node.right);
  }
  case kExprChecksum: {
    auto &node = static_cast<TDMExprChecksum &>(expression);
    return operands(node.start, node.end);
  }
  default:
    return {};
  }
}

// The way back up is kept in the tree itself: when the walk goes down into an operand, the slot
// that held it takes the node above instead. So neither stack nor heap grows with the tree, and a
// destructor can't fail. Slots are emptied from the first to the last; the first full slot of a
// node that the walk comes back to is therefore the one that holds the node above.
void destroy_operands(TDMFileExpression &expression)
{
  TDMFileExpression *const root = &expression;
  TDMFileExpression *current = root;
  TDMFileExpression *above = nullptr;
  for (;;) {
    const ExpressionOperands fields = expression_operands(*current);
    ExpressionPtr *full = nullptr;
    for (std::size_t i = 0; i < fields.count && full == nullptr; ++i)
      if (*fields.slots[i]) full = fields.slots[i];
    if (full != nullptr) {
      TDMFileExpression *const below = full->release();
      full->reset(above);
      above = current;
      current = below;
      continue;
    }
    if (current == root) return;
    delete current; // all its slots are empty
    current = above;
    above = nullptr;
    if (current == root) continue;
    const ExpressionOperands upper = expression_operands(*current);
    for (std::size_t i = 0; i < upper.count && above == nullptr; ++i)
      above = upper.slots[i]->release();
  }
}

ExpressionPtr clone_expression(const TDMFileExpression &expression)
{
  ExpressionPtr result = clone_node(expression);
  struct Pending {
    const TDMFileExpression *source;
    TDMFileExpression *copy;
  };
  tdm::WorkStack<Pending> pending;
  pending.push({&expression, result.get()});
  while (!pending.empty()) {
    const Pending next = pending.pop();
    // Only read through; the slots of the source stay as they are.
    const ExpressionOperands from =
        expression_operands(const_cast<TDMFileExpression &>(*next.source));
    const ExpressionOperands to = expression_operands(*next.copy);
    for (std::size_t i = 0; i < from.count; ++i) {
      const TDMFileExpression *operand = from.slots[i]->get();
      if (operand == nullptr) continue;
      *to.slots[i] = clone_node(*operand);
      pending.push({operand, to.slots[i]->get()});
    }
  }
  return result;
}

ExpressionList clone_expressions(const ExpressionList &list)
{
  ExpressionList copy;
  copy.reserve(list.size());
  for (const ExpressionPtr &expression : list) copy.push_back(expression->clone());
  return copy;
}

} // namespace tdm

tdm::ExpressionPtr TDMExprNumber::clone() const
{
  return std::make_unique<TDMExprNumber>(value);
}

tdm::ExpressionPtr TDMExprVarRef::clone() const
{
  return std::make_unique<TDMExprVarRef>(name);
}

tdm::ExpressionPtr TDMExprSymbolRef::clone() const
{
  return std::make_unique<TDMExprSymbolRef>(name);
}

tdm::ExpressionPtr TDMExprAddress::clone() const
{
  auto copy = std::make_unique<TDMExprAddress>();
  copy->objType = objType;
  copy->objName = objName;
  return copy;
}

tdm::ExpressionPtr TDMExprDefined::clone() const
{
  return std::make_unique<TDMExprDefined>(symbolName);
}

tdm::ExpressionPtr TDMExprSizeOf::clone() const
{
  auto copy = std::make_unique<TDMExprSizeOf>();
  copy->objType = objType;
  copy->objName = objName;
  return copy;
}

tdm::ExpressionPtr TDMExprExists::clone() const
{
  return std::make_unique<TDMExprExists>(sectionName);
}
