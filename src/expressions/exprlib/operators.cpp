// The operator table, and what its operators do with evaluated operands.
//
// An operand that has no value yet leaves arithmetic, shifts, comparisons, minimum and maximum
// open; the bitwise and logical operators of two operands refuse it. A result is written over the
// payload of its node while the operands still exist, and they are given back then.
#include "expressions/exprlib/operators.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "expressions/exprlib/node.h"

namespace exprlib {

namespace {

/// A node on which a result is written, and what it held until then.
class Result {
public:
  explicit Result(ExprlibNode *node) : node_(node), held_(contents_of(node)) {}

  [[nodiscard]] Byte *bytes() const { return exprlib_bytes(node_); }
  [[nodiscard]] double &number() const { return exprlib_payload(node_)->number; }

  /// The result stands: makes the node a constant. 0, the result of a success.
  int finish(ExprlibValueType type, unsigned width, bool relocatable) const
  {
    make_constant(node_, type, width, relocatable);
    give_back(held_);
    return 0;
  }

  /// An "int" of 0 or 1, whose width is the value size.
  [[nodiscard]] int finish_truth(bool truth, bool relocatable) const
  {
    store(bytes(), value_size(node_), truth ? 1 : 0);
    return finish(EXPRLIB_INT, node_->context->value_size, relocatable);
  }

private:
  ExprlibNode *node_;
  Contents held_;
};

struct Pair {
  explicit Pair(const ExprlibNode *node) : a(exprlib_child(node, 0)), b(exprlib_child(node, 1)) {}

  [[nodiscard]] bool open() const { return !is_constant(a) || !is_constant(b); }
  [[nodiscard]] bool relocatable() const { return a->relocatable != 0 || b->relocatable != 0; }
  [[nodiscard]] unsigned widest() const { return std::max(a->width, b->width); }

  /// The type of an integer result: that of both, or "int", since of two different integer types
  /// one at least is signed.
  [[nodiscard]] ExprlibValueType type() const { return a->type == b->type ? a->type : EXPRLIB_INT; }

  ExprlibNode *a;
  ExprlibNode *b;
};

bool is_plain_int(const ExprlibNode *node)
{
  return node->type == EXPRLIB_INT || node->type == EXPRLIB_UNSIGNED_INT;
}

/// A variable may have brought another type than the tree was built with.
int check_types(const ExprlibNode *node, const Pair &pair)
{
  if (!compatible(pair.a->type, pair.b->type)) return fail(node, EXPRLIB_INCOMPATIBLE_TYPES);
  if (!has_column(*find_operator(node->op), pair.a->type))
    return fail(node, EXPRLIB_UNKNOWN_OPERAND);
  return 0;
}

int check_type(const ExprlibNode *node, const ExprlibNode *operand)
{
  return has_column(*find_operator(node->op), operand->type) ? 0
                                                             : fail(node, EXPRLIB_UNKNOWN_OPERAND);
}

/// The low 32 bits, as a signed number.
std::int32_t low_32_bits(const ExprlibNode *node)
{
  const std::size_t size = value_size(node);
  const bool extend = node->type != EXPRLIB_UNSIGNED_INT && top_bit(exprlib_bytes(node), size);
  const std::uint64_t low = load(exprlib_bytes(node), size, 4, extend ? Byte{0xFF} : Byte{0});
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(low));
}

// ---- Addition, subtraction, multiplication ----

int fold_sum(ExprlibNode *node)
{
  const Pair pair(node);
  if (pair.open()) return 0;
  if (check_types(node, pair)) return 1;
  const bool subtracts = node->op == EXPRLIB_SUBTRACT;
  const Result result(node);
  if (pair.a->type == EXPRLIB_DOUBLE) {
    const double a = exprlib_payload(pair.a)->number;
    const double b = exprlib_payload(pair.b)->number;
    result.number() = subtracts ? a - b : a + b;
    return result.finish(EXPRLIB_DOUBLE, pair.widest(), pair.relocatable());
  }
  if (pair.a->type == EXPRLIB_FRACT) {
    (subtracts ? fract_subtract : fract_add)(result.bytes(), fract_of(pair.a), fract_of(pair.b));
    return result.finish(EXPRLIB_FRACT, pair.widest(), pair.relocatable());
  }
  (subtracts ? subtract : add)(result.bytes(), exprlib_bytes(pair.a), exprlib_bytes(pair.b),
                               value_size(node));
  return result.finish(pair.type(), pair.widest(), pair.relocatable());
}

int fold_product(ExprlibNode *node)
{
  const Pair pair(node);
  if (pair.open()) return 0;
  if (check_types(node, pair)) return 1;
  const Result result(node);
  if (pair.a->type == EXPRLIB_DOUBLE) {
    result.number() = exprlib_payload(pair.a)->number * exprlib_payload(pair.b)->number;
    return result.finish(EXPRLIB_DOUBLE, pair.widest(), pair.relocatable());
  }
  if (pair.a->type == EXPRLIB_FRACT) {
    const Fract a = fract_of(pair.a);
    const Fract b = fract_of(pair.b);
    if (fract_is_minus_one(a) && fract_is_minus_one(b)) return fail(node, EXPRLIB_OVERFLOW);
    fract_multiply(result.bytes(), a, b, node->context->scratch);
    return result.finish(EXPRLIB_FRACT, pair.widest(), pair.relocatable());
  }
  multiply(result.bytes(), exprlib_bytes(pair.a), exprlib_bytes(pair.b), value_size(node));
  const std::size_t product = static_cast<std::size_t>(pair.a->width) * pair.b->width;
  const auto width = static_cast<unsigned>(std::min(product, 8 * value_size(node)));
  return result.finish(pair.type(), width, pair.relocatable());
}

// ---- Division ----

bool divides_in_32_bits(const ExprlibNode *operand)
{
  if (!fits_32_bits(operand)) return false;
  return operand->type != EXPRLIB_UNSIGNED_INT || low_32_bits(operand) >= 0;
}

void put_magnitude(Byte *out, const ExprlibNode *operand)
{
  const std::size_t size = value_size(operand);
  if (exprlib_is_negative(operand))
    negate(out, exprlib_bytes(operand), size);
  else
    std::memcpy(out, exprlib_bytes(operand), size);
}

/// Division of any size: of the magnitudes, whose signs are put back behind it.
void divide_long(Byte *out, const Pair &pair, bool wants_remainder)
{
  const std::size_t size = value_size(pair.a);
  Byte *a = pair.a->context->scratch;
  Byte *b = a + size;
  Byte *remainder = b + size;
  put_magnitude(a, pair.a);
  put_magnitude(b, pair.b);
  divide(out, remainder, a, b, size);
  if (wants_remainder) std::memcpy(out, remainder, size);
  const bool a_negative = exprlib_is_negative(pair.a) != 0;
  const bool b_negative = exprlib_is_negative(pair.b) != 0;
  if (wants_remainder ? a_negative : a_negative != b_negative) negate(out, out, size);
}

int fold_quotient(ExprlibNode *node)
{
  const Pair pair(node);
  if (pair.open()) return 0;
  if (exprlib_is_zero(pair.b)) return fail(node, EXPRLIB_DIVIDE_BY_ZERO);
  // A fraction gets here behind a variable alone: the table has no column for it.
  if (pair.a->type == EXPRLIB_FRACT && pair.b->type == EXPRLIB_FRACT)
    return fail(node, EXPRLIB_NOT_SUPPORTED);
  if (check_types(node, pair)) return 1;
  const bool wants_remainder = node->op == EXPRLIB_REMAINDER;
  const Result result(node);
  if (pair.a->type == EXPRLIB_DOUBLE) {
    if (wants_remainder) return fail(node, EXPRLIB_NOT_SUPPORTED);
    result.number() = exprlib_payload(pair.a)->number / exprlib_payload(pair.b)->number;
    return result.finish(EXPRLIB_DOUBLE, pair.a->width, pair.relocatable());
  }
  if (divides_in_32_bits(pair.a) && divides_in_32_bits(pair.b)) {
    const std::int64_t a = low_32_bits(pair.a);
    const std::int64_t b = low_32_bits(pair.b);
    store(result.bytes(), value_size(node), wants_remainder ? a % b : a / b);
  } else {
    divide_long(result.bytes(), pair, wants_remainder);
  }
  return result.finish(pair.type(), pair.widest(), pair.relocatable());
}

// ---- Bits ----

int fold_bits(ExprlibNode *node)
{
  const Pair pair(node);
  if (pair.open() || !is_plain_int(pair.a) || !is_plain_int(pair.b))
    return fail(node, EXPRLIB_UNKNOWN_TYPE);
  const Result result(node);
  Byte *out = result.bytes();
  const Byte *a = exprlib_bytes(pair.a);
  const Byte *b = exprlib_bytes(pair.b);
  for (std::size_t i = 0; i < value_size(node); ++i) {
    const unsigned both = node->op == EXPRLIB_AND  ? a[i] & b[i]
                          : node->op == EXPRLIB_OR ? a[i] | b[i]
                                                   : a[i] ^ b[i];
    out[i] = static_cast<Byte>(both);
  }
  return result.finish(pair.type(), pair.widest(), pair.relocatable());
}

int fold_logical(ExprlibNode *node)
{
  const Pair pair(node);
  if (pair.open() || !is_plain_int(pair.a) || !is_plain_int(pair.b))
    return fail(node, EXPRLIB_UNKNOWN_TYPE);
  const bool a = !exprlib_is_zero(pair.a);
  const bool b = !exprlib_is_zero(pair.b);
  const Result result(node);
  store(result.bytes(), value_size(node), (node->op == EXPRLIB_LOGICAL_AND ? a && b : a || b));
  return result.finish(EXPRLIB_INT, pair.widest(), pair.relocatable());
}

int fold_shift(ExprlibNode *node)
{
  const Pair pair(node);
  if (pair.open() || !is_plain_int(pair.a)) return 0;
  if (check_types(node, pair)) return 1;
  const std::int32_t count = low_32_bits(pair.b);
  if (count < 0) return fail(node, EXPRLIB_NOT_SUPPORTED);
  if (!fits_32_bits(pair.b)) node->context->error = EXPRLIB_OVERFLOW;
  const Result result(node);
  const Byte *value = exprlib_bytes(pair.a);
  const std::size_t size = value_size(node);
  const auto bits = static_cast<std::size_t>(count);
  const bool extends = node->op == EXPRLIB_SHIFT_RIGHT_ARITHMETIC && top_bit(value, size);
  if (node->op == EXPRLIB_SHIFT_LEFT)
    shift_left(result.bytes(), value, size, bits);
  else
    shift_right(result.bytes(), value, size, bits, extends ? Byte{0xFF} : Byte{0});
  return result.finish(pair.a->type, pair.a->width, pair.relocatable());
}

// ---- Comparison ----

struct Order {
  bool less;
  bool equal;
  bool greater;
};

Order order_of(int comparison)
{
  return {comparison<0, comparison == 0, comparison> 0};
}

/// Signs first; numbers of equal sign by their bytes. Two doubles may have no order at all.
Order compare_values(const ExprlibNode *a, const ExprlibNode *b)
{
  const int a_negative = exprlib_is_negative(a);
  const int b_negative = exprlib_is_negative(b);
  if (a_negative != b_negative) return order_of(b_negative - a_negative);
  switch (a->type) {
  case EXPRLIB_DOUBLE: {
    const double x = exprlib_payload(a)->number;
    const double y = exprlib_payload(b)->number;
    return {x<y, x == y, x> y};
  }
  case EXPRLIB_FRACT:
    return order_of(fract_compare(fract_of(a), fract_of(b)));
  case EXPRLIB_STRING:
    return order_of(std::strcmp(characters(a), characters(b)));
  default:
    return order_of(compare(exprlib_bytes(a), exprlib_bytes(b), value_size(a)));
  }
}

int fold_comparison(ExprlibNode *node)
{
  const Pair pair(node);
  if (pair.open()) return 0;
  if (check_types(node, pair)) return 1;
  const Order order = compare_values(pair.a, pair.b);
  bool truth = false;
  switch (node->op) {
  case EXPRLIB_EQUAL:
    truth = order.equal;
    break;
  case EXPRLIB_NOT_EQUAL:
    truth = !order.equal;
    break;
  case EXPRLIB_LESS_EQUAL:
    truth = order.less || order.equal;
    break;
  case EXPRLIB_GREATER_EQUAL:
    truth = order.greater || order.equal;
    break;
  case EXPRLIB_GREATER:
    truth = order.greater;
    break;
  default:
    truth = order.less;
    break;
  }
  return Result(node).finish_truth(truth, pair.relocatable());
}

int fold_extreme(ExprlibNode *node)
{
  const Pair pair(node);
  if (pair.open()) return 0;
  if (check_types(node, pair)) return 1;
  const Order order = compare_values(pair.a, pair.b);
  const bool second = node->op == EXPRLIB_MAX ? order.less : order.greater;
  const bool relocatable = pair.relocatable();
  if (exprlib_become(node, second ? pair.b : pair.a)) return 1;
  node->relocatable = relocatable ? 1 : 0;
  return 0;
}

// ---- One operand, or none ----

int fold_negation(ExprlibNode *node)
{
  const ExprlibNode *operand = exprlib_child(node, 0);
  if (!is_constant(operand)) return 0;
  if (check_type(node, operand)) return 1;
  const Result result(node);
  if (operand->type == EXPRLIB_DOUBLE)
    result.number() = -exprlib_payload(operand)->number;
  else if (operand->type == EXPRLIB_FRACT)
    fract_negate(result.bytes(), fract_of(operand));
  else
    negate(result.bytes(), exprlib_bytes(operand), value_size(node));
  return result.finish(operand->type, operand->width, operand->relocatable != 0);
}

int fold_absolute(ExprlibNode *node)
{
  ExprlibNode *operand = exprlib_child(node, 0);
  if (!is_constant(operand)) return 0;
  if (exprlib_is_negative(operand)) return fold_negation(node);
  return check_type(node, operand) ? 1 : exprlib_become(node, operand);
}

int fold_complement(ExprlibNode *node)
{
  const ExprlibNode *operand = exprlib_child(node, 0);
  if (!is_constant(operand)) return 0;
  if (check_type(node, operand)) return 1;
  const Result result(node);
  for (std::size_t i = 0; i < value_size(node); ++i)
    result.bytes()[i] = static_cast<Byte>(~static_cast<unsigned>(exprlib_bytes(operand)[i]));
  return result.finish(operand->type, operand->width, operand->relocatable != 0);
}

int fold_not(ExprlibNode *node)
{
  const ExprlibNode *operand = exprlib_child(node, 0);
  if (!is_constant(operand)) return 0;
  if (check_type(node, operand)) return 1;
  return Result(node).finish_truth(exprlib_is_zero(operand) != 0, operand->relocatable != 0);
}

int fold_truth(ExprlibNode *node)
{
  const Result result(node);
  std::memset(result.bytes(), node->op == EXPRLIB_TRUE ? 0xFF : 0, value_size(node));
  return result.finish(EXPRLIB_INT, node->context->value_size, node->relocatable != 0);
}

int fold_internal(ExprlibNode *node)
{
  return fail(node, EXPRLIB_INTERNAL_ERROR);
}

constexpr std::uint8_t integers = 0x0F;
constexpr std::uint8_t doubles = 0x1F;
constexpr std::uint8_t fracts = 0x3F;
constexpr std::uint8_t all = 0x7F;

constexpr std::array<OperatorRow, EXPRLIB_GUARD + 1> operators = {{
    {all, 0, false, nullptr},              // 0: constant
    {all, 0, false, nullptr},              // 1: variable
    {all, 0, false, fold_truth},           // 2: true
    {all, 0, false, fold_truth},           // 3: false
    {fracts, 1, false, fold_absolute},     // 4: abs
    {fracts, 2, true, fold_sum},           // 5: +
    {integers, 2, true, fold_bits},        // 6: &
    {integers, 1, false, fold_complement}, // 7: ~
    {doubles, 2, true, fold_quotient},     // 8: /
    {integers, 2, true, fold_logical},     // 9: &&
    {integers, 2, true, fold_logical},     // 10: ||
    {all, 2, false, fold_extreme},         // 11: max
    {doubles, 2, true, fold_quotient},     // 12: %
    {all, 2, false, fold_extreme},         // 13: min
    {fracts, 2, true, fold_product},       // 14: *
    {fracts, 1, false, fold_negation},     // 15: - of one operand
    {integers, 1, false, fold_not},        // 16: !
    {integers, 2, true, fold_bits},        // 17: |
    {integers, 2, true, fold_shift},       // 18: <<
    {integers, 2, true, fold_shift},       // 19: >>, logical
    {integers, 2, true, fold_shift},       // 20: >>, arithmetic
    {fracts, 2, true, fold_sum},           // 21: -
    {integers, 2, true, fold_bits},        // 22: ^
    {all, 2, true, fold_comparison},       // 23: ==
    {all, 2, true, fold_comparison},       // 24: !=
    {all, 2, true, fold_comparison},       // 25: <=
    {all, 2, true, fold_comparison},       // 26: >=
    {all, 2, true, fold_comparison},       // 27: >
    {all, 2, true, fold_comparison},       // 28: <
    {fracts, 0, false, nullptr},           // 29: conditional
    {all, 0, false, fold_internal},        // 30: nop
    {all, 1, false, fold_cast},            // 31: cast
    {all, 0, false, nullptr},              // 32: relocation function
    {all, 0, false, fold_internal},        // 33
    {all, 0, false, nullptr},              // 34: guarded value
}};

} // namespace

const OperatorRow *find_operator(std::int32_t op)
{
  const bool known = op >= 0 && static_cast<std::size_t>(op) < operators.size();
  return known ? &operators[static_cast<std::size_t>(op)] : nullptr;
}

} // namespace exprlib
