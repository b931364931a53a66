// What the operators compute. Whatever may leave the range of 64 bits is done in unsigned numbers.
#include "expressions/arithmetic.h"

#include "expressions/applications.h"

namespace tdm {

namespace {

std::uint64_t bits(std::int64_t value)
{
  return static_cast<std::uint64_t>(value);
}

std::int64_t number(std::uint64_t value)
{
  return static_cast<std::int64_t>(value);
}

/// Only the low 32 bits of the value count, and the most negative one has no counterpart in them.
std::int64_t absolute(std::int64_t value)
{
  const auto low = static_cast<std::uint32_t>(bits(value));
  const bool negative = (low >> 31) != 0;
  return static_cast<std::int32_t>(negative ? 0U - low : low);
}

/// The distance of a shift: the count is 32 bits wide, and beyond 31 it moves a whole word and then
/// the rest modulo 32. So 64 shifts by 32, and -1 by 63.
unsigned shift_distance(std::int64_t count)
{
  const auto low = static_cast<std::uint32_t>(bits(count));
  return low < 32 ? low : 32 + low % 32;
}

/// The most negative number divided by -1 has no result in 64 bits: it wraps to itself.
std::int64_t divide(std::int64_t left, std::int64_t right)
{
  return right == -1 ? number(0 - bits(left)) : left / right;
}

std::int64_t remainder(std::int64_t left, std::int64_t right)
{
  return right == -1 ? 0 : left % right;
}

} // namespace

std::int64_t apply_unary(std::int32_t op, std::int64_t value)
{
  switch (op) {
  case TDM_UNARY_NOT:
    return value == 0 ? 1 : 0;
  case TDM_UNARY_COMPLEMENT:
    return ~value;
  case TDM_UNARY_NEGATE:
    return number(0 - bits(value));
  case TDM_UNARY_ABSOLUTE:
    return absolute(value);
  default:
    return value;
  }
}

std::int64_t apply_binary(std::int32_t op, std::int64_t left, std::int64_t right)
{
  switch (op) {
  case TDM_BINARY_MULTIPLY:
    return number(bits(left) * bits(right));
  case TDM_BINARY_DIVIDE:
    return divide(left, right);
  case TDM_BINARY_REMAINDER:
    return remainder(left, right);
  case TDM_BINARY_ADD:
    return number(bits(left) + bits(right));
  case TDM_BINARY_SUBTRACT:
    return number(bits(left) - bits(right));
  case TDM_BINARY_SHIFT_RIGHT:
    return left >> shift_distance(right);
  case TDM_BINARY_SHIFT_LEFT:
    return number(bits(left) << shift_distance(right));
  case TDM_BINARY_EQUAL:
    return left == right;
  case TDM_BINARY_NOT_EQUAL:
    return left != right;
  case TDM_BINARY_GREATER:
    return left > right;
  case TDM_BINARY_LESS:
    return left < right;
  case TDM_BINARY_GREATER_EQUAL:
    return left >= right;
  case TDM_BINARY_LESS_EQUAL:
    return left <= right;
  case TDM_BINARY_AND:
    return left & right;
  case TDM_BINARY_XOR:
    return left ^ right;
  case TDM_BINARY_OR:
    return left | right;
  case TDM_BINARY_LOGICAL_AND:
    return left != 0 && right != 0;
  case TDM_BINARY_LOGICAL_OR:
    return left != 0 || right != 0;
  case TDM_BINARY_MIN:
    return left > right ? right : left;
  default:
    return left >= right ? left : right;
  }
}

} // namespace tdm
