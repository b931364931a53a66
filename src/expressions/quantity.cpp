// Goes through the tree with a stack of records that are still to be seen and one of the quantities
// that wait for their operator.
#include "expressions/quantity.h"

#include "common/work_stack.h"

namespace tdm {

namespace {

using Kind = Quantity::Kind;

bool same_unit(const Quantity &left, const Quantity &right)
{
  return left.mau == right.mau;
}

/// Of `+`, and of the operators that give one of their operands or change a part of it.
Quantity joined(const Quantity &left, const Quantity &right)
{
  if (left.kind == Kind::number) return right;
  if (right.kind == Kind::number) return left;
  return left.kind == right.kind && same_unit(left, right) ? left : Quantity{};
}

Quantity sum(const Quantity &left, const Quantity &right)
{
  if (!same_unit(left, right)) return joined(left, right);
  if (left.kind == Kind::address && right.kind == Kind::address) return {};
  if (left.kind == Kind::address && right.kind == Kind::size) return left;
  if (left.kind == Kind::size && right.kind == Kind::address) return right;
  return joined(left, right);
}

Quantity difference(const Quantity &left, const Quantity &right)
{
  if (right.kind == Kind::number) return left;
  if (!same_unit(left, right)) return {};
  if (left.kind == Kind::address && right.kind == Kind::address) return {Kind::size, left.mau};
  const bool known =
      (left.kind == Kind::address || left.kind == Kind::size) && right.kind == Kind::size;
  return known ? left : Quantity{};
}

/// Of what makes a size larger or smaller, by a number.
Quantity scaled(const Quantity &left, const Quantity &right)
{
  const bool scales =
      right.kind == Kind::number && (left.kind == Kind::size || left.kind == Kind::number);
  return scales ? left : Quantity{};
}

Quantity quotient(const Quantity &left, const Quantity &right)
{
  if (left.kind == Kind::size && right.kind == Kind::size && same_unit(left, right))
    return {Kind::number, 0};
  return scaled(left, right);
}

/// The rest of an address is how far it lies behind a boundary.
Quantity remainder(const Quantity &left, const Quantity &right)
{
  const bool by_length =
      right.kind == Kind::number || (right.kind == Kind::size && same_unit(left, right));
  if (!by_length || left.kind == Kind::unknown) return {};
  return left.kind == Kind::address ? Quantity{Kind::size, left.mau} : left;
}

Quantity of_binary(std::int32_t op, const Quantity &left, const Quantity &right)
{
  switch (op) {
  case kBinaryMul:
    return left.kind == Kind::number ? scaled(right, left) : scaled(left, right);
  case kBinaryDiv:
    return quotient(left, right);
  case kBinaryMod:
    return remainder(left, right);
  case kBinaryAdd:
    return sum(left, right);
  case kBinarySub:
    return difference(left, right);
  case kBinaryShiftRight:
  case kBinaryShiftLeft:
    return scaled(left, right);
  case kBinaryAnd:
  case kBinaryXor:
  case kBinaryOr:
    return joined(left, right);
  default: // comparisons and conditions
    return {Kind::number, 0};
  }
}

Quantity of_unary(std::int32_t op, const Quantity &operand)
{
  switch (op) {
  case kUnaryParentheses:
    return operand;
  case kUnaryNot:
    return {Kind::number, 0};
  default: // the opposite of an address, or of all its bits, is none
    return operand.kind == Kind::address ? Quantity{} : operand;
  }
}

class Inference {
public:
  explicit Inference(const Units &units) : units_(units) {}

  Quantity run(const TDMFileExpression &record)
  {
    pending_.push({&record, false});
    while (!pending_.empty()) {
      const Task task = pending_.pop();
      // Only read: the operands of the record stay where they are.
      const ExpressionOperands operands =
          expression_operands(const_cast<TDMFileExpression &>(*task.record));
      if (operands.count == 0) {
        done_.push(of_leaf(*task.record));
      } else if (task.operands_done) {
        combine(*task.record);
      } else {
        pending_.push({task.record, true});
        for (std::size_t n = operands.count; n > 0; --n)
          pending_.push({operands.slots[n - 1]->get(), false});
      }
    }
    return done_.pop();
  }

private:
  struct Task {
    const TDMFileExpression *record;
    bool operands_done;
  };

  [[nodiscard]] Quantity of_leaf(const TDMFileExpression &record) const
  {
    switch (record.kind()) {
    case kExprSymbolRef:
      return {};
    case kExprAddress:
      return {Kind::address, units_.space_mau()};
    case kExprSizeOf: {
      const auto &size = static_cast<const TDMExprSizeOf &>(record);
      return {Kind::size, size.objType == kSizeMemory ? units_.memory_mau(size.objName.str())
                                                      : units_.space_mau()};
    }
    default:
      return {Kind::number, 0};
    }
  }

  /// Puts one quantity in the place of those of the operands.
  void combine(const TDMFileExpression &record)
  {
    const Quantity last = done_.pop();
    switch (record.kind()) {
    case kExprUnary:
      done_.push(of_unary(static_cast<const TDMExprUnaryApplication &>(record).op, last));
      break;
    case kExprAbsolute:
      done_.push(last);
      break;
    case kExprBinary:
      done_.push(
          of_binary(static_cast<const TDMExprBinaryApplication &>(record).op, done_.pop(), last));
      break;
    case kExprChecksum:
      done_.pop();
      done_.push({Kind::number, 0});
      break;
    case kExprConditional: {
      const Quantity first = done_.pop();
      done_.pop();
      done_.push(joined(first, last));
      break;
    }
    default: // min and max
      done_.push(joined(done_.pop(), last));
    }
  }

  const Units &units_;
  WorkStack<Task> pending_;
  WorkStack<Quantity> done_;
};

} // namespace

Quantity quantity_of(const TDMFileExpression &record, const Units &units)
{
  return Inference(units).run(record);
}

} // namespace tdm
