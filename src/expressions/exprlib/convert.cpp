// The cast: each pair of source and target type has its rule. Whatever has none is refused.
#include <cmath>
#include <cstring>

#include "expressions/exprlib/node.h"
#include "expressions/exprlib/operators.h"

namespace exprlib {

namespace {

constexpr unsigned double_width = 64;

double integer_to_double(const ExprlibNode *source)
{
  const std::size_t size = value_size(source);
  if (!exprlib_is_negative(source)) return unsigned_to_double(exprlib_bytes(source), size);
  Byte *magnitude = source->context->scratch;
  negate(magnitude, exprlib_bytes(source), size);
  return -unsigned_to_double(magnitude, size);
}

/// Writes the integer part of the number into the node. What is beyond the range of the bytes but
/// within the limits wraps.
int double_to_integer(ExprlibNode *node, double number)
{
  const std::size_t size = value_size(node);
  const bool is_unsigned = node->type == EXPRLIB_UNSIGNED_INT;
  double magnitude = std::fabs(number);
  double limit = std::ldexp(1.0, static_cast<int>(8 * size));
  if (is_unsigned) limit *= 2;
  if (!std::isfinite(number) || magnitude > limit || (is_unsigned && number < 0))
    return fail(node, EXPRLIB_CANNOT_CONVERT);
  Byte *out = exprlib_bytes(node);
  magnitude = std::fmod(std::floor(magnitude), std::ldexp(1.0, static_cast<int>(8 * size)));
  for (std::size_t i = size; i > 0; --i) {
    const double unit = std::ldexp(1.0, static_cast<int>(8 * (i - 1)));
    // Beyond the range of doubles the unit is infinite, and no number has a digit there.
    const double digit = std::isinf(unit) ? 0 : std::floor(magnitude / unit);
    out[i - 1] = static_cast<Byte>(digit);
    if (digit != 0) magnitude -= digit * unit;
  }
  if (number < 0) negate(out, out, size);
  return 0;
}

int from_integer(ExprlibNode *node, const ExprlibNode *source, unsigned &width)
{
  width = source->width;
  if (is_integer(node->type)) {
    std::memcpy(exprlib_bytes(node), exprlib_bytes(source), value_size(node));
    return 0;
  }
  if (node->type != EXPRLIB_DOUBLE) return fail(node, EXPRLIB_CANNOT_CONVERT);
  width = double_width;
  exprlib_payload(node)->number = integer_to_double(source);
  return 0;
}

int from_double(ExprlibNode *node, const ExprlibNode *source, unsigned &width)
{
  const double number = exprlib_payload(source)->number;
  const std::size_t size = value_size(node);
  if (node->type == EXPRLIB_DOUBLE) {
    width = source->width;
    exprlib_payload(node)->number = number;
    return 0;
  }
  width = static_cast<unsigned>(8 * size);
  if (is_integer(node->type)) return double_to_integer(node, number);
  if (node->type != EXPRLIB_FRACT || std::isnan(number)) return fail(node, EXPRLIB_CANNOT_CONVERT);
  if (!fract_from_double(exprlib_bytes(node), size, number))
    node->context->error = EXPRLIB_FRACT_SATURATION;
  return 0;
}

int from_fract(ExprlibNode *node, const ExprlibNode *source, unsigned &width)
{
  const Fract fract = fract_of(source);
  if (node->type == EXPRLIB_FRACT) {
    if (fract.size > node->context->payload_size) return fail(node, EXPRLIB_TOO_BIG);
    width = source->width;
    std::memcpy(exprlib_bytes(node), fract.bytes, fract.size);
    return 0;
  }
  if (node->type != EXPRLIB_DOUBLE) return fail(node, EXPRLIB_CANNOT_CONVERT);
  width = double_width;
  exprlib_payload(node)->number = fract_to_double(fract);
  return 0;
}

int convert(ExprlibNode *node, const ExprlibNode *source, unsigned &width)
{
  switch (source->type) {
  case EXPRLIB_INT:
  case EXPRLIB_UNSIGNED_INT:
    return from_integer(node, source, width);
  case EXPRLIB_DOUBLE:
    return from_double(node, source, width);
  case EXPRLIB_FRACT:
    return from_fract(node, source, width);
  default:
    return fail(node, EXPRLIB_UNKNOWN_TYPE);
  }
}

} // namespace

int fold_cast(ExprlibNode *node)
{
  ExprlibNode *source = exprlib_child(node, 0);
  if (!is_constant(source)) return 0;
  if (source->context != node->context) return fail(node, EXPRLIB_INTERNAL_ERROR);
  const Contents held = contents_of(node);
  unsigned width = 0;
  if (convert(node, source, width)) {
    // The payload may hold half a result by now; the child is what the node still consists of.
    *exprlib_payload(node) = held.payload;
    return 1;
  }
  make_constant(node, node->type, width, source->relocatable != 0);
  give_back(held);
  return 0;
}

} // namespace exprlib
