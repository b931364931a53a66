// Making nodes, reading constants, and ending nodes. The nodes that still have to go when a last
// reference falls form a list through their links, so that releasing a tree neither recurses nor
// needs memory.
#include "expressions/exprlib/node.h"

#include <cstdarg>
#include <cstdlib>
#include <cstring>

#include "expressions/exprlib/pool.h"

namespace exprlib {

namespace {

std::size_t node_size(const ExprlibContext *context)
{
  return sizeof(ExprlibNode) + context->payload_size;
}

int fail_in(ExprlibContext *context, int32_t code)
{
  context->error = code;
  return 1;
}

/// An operand of another context may have integers of another size.
bool belongs(const ExprlibNode *operand, const ExprlibContext *context)
{
  return operand != nullptr && operand->context == context;
}

/// Whether the payload is a list of operand cells.
bool has_cells(int32_t op)
{
  return op != EXPRLIB_CONSTANT && op != EXPRLIB_VARIABLE && op != EXPRLIB_CAST &&
         op != EXPRLIB_RELOCATION;
}

void drop_reference(ExprlibNode *node, ExprlibNode *&doomed)
{
  if (node == nullptr || --node->references > 0) return;
  node->link = doomed;
  doomed = node;
}

void free_cells(ExprlibCell *cell, ExprlibNode *&doomed)
{
  while (cell != nullptr) {
    ExprlibCell *next = cell->next;
    drop_reference(cell->node, doomed);
    release(cell, sizeof *cell);
    cell = next;
  }
}

void unlink_string(ExprlibContext *context, ExprlibString *string)
{
  if (string == nullptr) return;
  if (string->next != nullptr) string->next->previous = string->previous;
  if (string->previous != nullptr)
    string->previous->next = string->next;
  else
    context->strings = string->next;
  free_string(string);
}

void drop_contents(const Contents &contents, ExprlibNode *&doomed)
{
  if (has_cells(contents.op))
    free_cells(contents.payload.operands, doomed);
  else if (contents.op == EXPRLIB_CAST)
    drop_reference(contents.payload.cast, doomed);
  else if (contents.op == EXPRLIB_RELOCATION)
    drop_reference(contents.payload.relocation.child, doomed);
  else if (contents.op == EXPRLIB_CONSTANT && contents.type == EXPRLIB_STRING)
    unlink_string(contents.context, contents.payload.string);
}

void end_nodes(ExprlibNode *doomed)
{
  while (doomed != nullptr) {
    ExprlibNode *node = doomed;
    doomed = node->link;
    drop_contents(contents_of(node), doomed);
    --node->context->live_nodes;
    release(node, node_size(node->context));
  }
}

/// A second list of the same operands, each with one more reference; false without memory.
bool copy_cells(const ExprlibCell *from, ExprlibCell *&to)
{
  to = nullptr;
  ExprlibCell **end = &to;
  for (; from != nullptr; from = from->next) {
    auto *cell = static_cast<ExprlibCell *>(allocate(sizeof(ExprlibCell)));
    if (cell == nullptr) {
      ExprlibNode *doomed = nullptr;
      free_cells(to, doomed);
      return false;
    }
    *cell = {nullptr, from->node};
    ++from->node->references;
    *end = cell;
    end = &cell->next;
  }
  return true;
}

int write_constant(ExprlibNode *node, const ExprlibNode *source)
{
  ExprlibPayload *to = exprlib_payload(node);
  switch (source->type) {
  case EXPRLIB_DOUBLE:
    to->number = exprlib_payload(source)->number;
    return 0;
  case EXPRLIB_FRACT: {
    const Fract fract = fract_of(source);
    if (fract.size > node->context->payload_size) return fail(node, EXPRLIB_TOO_BIG);
    std::memcpy(exprlib_bytes(node), fract.bytes, fract.size);
    return 0;
  }
  case EXPRLIB_STRING: {
    const ExprlibString *from = exprlib_payload(source)->string;
    ExprlibString *copy = exprlib_make_string(node->context);
    if (copy == nullptr) return 1;
    const std::size_t length = from == nullptr ? 0 : from->length;
    if (exprlib_set_string(node->context, copy, characters(source), length)) {
      unlink_string(node->context, copy);
      return 1;
    }
    to->string = copy;
    return 0;
  }
  default:
    if (value_size(node) != value_size(source)) return fail(node, EXPRLIB_INTERNAL_ERROR);
    std::memcpy(exprlib_bytes(node), exprlib_bytes(source), value_size(node));
    return 0;
  }
}

} // namespace

int fail(const ExprlibNode *node, int32_t code)
{
  return fail_in(node->context, code);
}

bool fits_32_bits(const ExprlibNode *node)
{
  const Byte *bytes = exprlib_bytes(node);
  const std::size_t size = value_size(node);
  if (size <= 4) return true;
  const Byte fill = top_bit(bytes, 4) ? 0xFF : 0;
  for (std::size_t i = 4; i < size; ++i)
    if (bytes[i] != fill) return false;
  return true;
}

Contents contents_of(const ExprlibNode *node)
{
  return {node->context, node->op, node->type, *exprlib_payload(node)};
}

void give_back(const Contents &contents)
{
  ExprlibNode *doomed = nullptr;
  drop_contents(contents, doomed);
  end_nodes(doomed);
}

void make_constant(ExprlibNode *node, ExprlibValueType type, unsigned width, bool relocatable)
{
  node->op = EXPRLIB_CONSTANT;
  node->type = type;
  node->width = static_cast<uint16_t>(width);
  node->relocatable = relocatable ? 1 : 0;
}

int write_over(ExprlibNode *node, const ExprlibNode *source)
{
  ExprlibPayload *to = exprlib_payload(node);
  const ExprlibPayload *from = exprlib_payload(source);
  if (is_constant(source)) {
    if (write_constant(node, source)) return 1;
  } else if (has_cells(source->op)) {
    ExprlibCell *copy = nullptr;
    if (!copy_cells(from->operands, copy)) return fail(node, EXPRLIB_OUT_OF_MEMORY);
    to->operands = copy;
  } else {
    if (source->op == EXPRLIB_CAST) ++from->cast->references;
    if (source->op == EXPRLIB_RELOCATION) ++from->relocation.child->references;
    *to = *from;
  }
  node->op = source->op;
  node->type = source->type;
  node->width = source->width;
  node->relocatable = source->relocatable;
  return 0;
}

} // namespace exprlib

using namespace exprlib;

int exprlib_alloc_node(ExprlibContext *context, ExprlibNode **node)
{
  const std::size_t size = node_size(context);
  auto *made = static_cast<ExprlibNode *>(allocate(size));
  if (made == nullptr) return fail_in(context, EXPRLIB_OUT_OF_MEMORY);
  std::memset(made, 0, size);
  made->context = context;
  made->references = 1;
  ++context->live_nodes;
  *node = made;
  return 0;
}

int exprlib_make_operator_of(ExprlibContext *context, ExprlibNode **node, int32_t op,
                             uint32_t count, ExprlibNode *const *operands)
{
  for (uint32_t i = 0; i < count; ++i)
    if (!belongs(operands[i], context)) return fail_in(context, EXPRLIB_INTERNAL_ERROR);
  ExprlibNode *const handed_over = *node;
  ExprlibNode *made = nullptr;
  if (exprlib_alloc_node(context, &made)) return 1;
  made->op = op;
  if (count > 0) made->type = operands[0]->type;
  bool was_handed_over = false;
  ExprlibCell **end = &exprlib_payload(made)->operands;
  for (uint32_t i = 0; i < count; ++i) {
    auto *cell = static_cast<ExprlibCell *>(allocate(sizeof(ExprlibCell)));
    if (cell == nullptr) {
      if (was_handed_over) ++handed_over->references;
      exprlib_release(made);
      return fail_in(context, EXPRLIB_OUT_OF_MEMORY);
    }
    *cell = {nullptr, operands[i]};
    // The caller has one reference to hand over, however often the operand occurs.
    if (operands[i] == handed_over && !was_handed_over)
      was_handed_over = true;
    else
      ++operands[i]->references;
    *end = cell;
    end = &cell->next;
  }
  *node = made;
  return 0;
}

int exprlib_make_operator(ExprlibContext *context, ExprlibNode **node, int32_t op, uint32_t count,
                          ...)
{
  constexpr uint32_t few = 8;
  ExprlibNode *in_place[few];
  ExprlibNode **operands = in_place;
  const std::size_t size = count * sizeof(ExprlibNode *);
  if (count > few) operands = static_cast<ExprlibNode **>(std::malloc(size));
  if (operands == nullptr) return fail_in(context, EXPRLIB_OUT_OF_MEMORY);
  va_list arguments;
  va_start(arguments, count);
  for (uint32_t i = 0; i < count; ++i) {
    // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized): the analyzer misses va_start
    operands[i] = va_arg(arguments, ExprlibNode *);
  }
  va_end(arguments);
  const int result = exprlib_make_operator_of(context, node, op, count, operands);
  if (operands != in_place) std::free(operands);
  return result;
}

int exprlib_make_integer(ExprlibContext *context, ExprlibNode **node, ExprlibValueType type,
                         const uint8_t *bytes, size_t count, uint16_t width)
{
  if (!is_integer(type)) return fail_in(context, EXPRLIB_UNKNOWN_TYPE);
  ExprlibNode *made = nullptr;
  if (exprlib_alloc_node(context, &made)) return 1;
  const std::size_t size = context->value_size;
  const bool negative = type == EXPRLIB_INT && count > 0 && top_bit(bytes, count);
  std::memset(exprlib_bytes(made), negative ? 0xFF : 0, size);
  if (count > 0) std::memcpy(exprlib_bytes(made), bytes, count < size ? count : size);
  make_constant(made, type, width, false);
  *node = made;
  return 0;
}

int exprlib_make_int64(ExprlibContext *context, ExprlibNode **node, int64_t value)
{
  Byte bytes[8];
  store(bytes, sizeof bytes, value);
  return exprlib_make_integer(context, node, EXPRLIB_INT, bytes, sizeof bytes, 64);
}

int exprlib_make_int32(ExprlibContext *context, ExprlibNode **node, int32_t value)
{
  Byte bytes[4];
  store(bytes, sizeof bytes, value);
  return exprlib_make_integer(context, node, EXPRLIB_INT, bytes, sizeof bytes, 32);
}

int exprlib_make_double(ExprlibContext *context, ExprlibNode **node, double value)
{
  if (exprlib_alloc_node(context, node)) return 1;
  exprlib_payload(*node)->number = value;
  make_constant(*node, EXPRLIB_DOUBLE, 64, false);
  return 0;
}

int exprlib_make_fract(ExprlibContext *context, ExprlibNode **node, const uint8_t *bytes,
                       size_t count)
{
  if (count > context->payload_size) return fail_in(context, EXPRLIB_TOO_BIG);
  if (exprlib_alloc_node(context, node)) return 1;
  if (count > 0) std::memcpy(exprlib_bytes(*node), bytes, count);
  make_constant(*node, EXPRLIB_FRACT, static_cast<unsigned>(8 * count), false);
  return 0;
}

int exprlib_make_string_constant(ExprlibContext *context, ExprlibNode **node,
                                 const char *characters, size_t length)
{
  ExprlibNode *made = nullptr;
  if (exprlib_alloc_node(context, &made)) return 1;
  ExprlibString *string = exprlib_make_string(context);
  make_constant(made, EXPRLIB_STRING, 0, false);
  exprlib_payload(made)->string = string;
  if (string == nullptr || exprlib_set_string(context, string, characters, length)) {
    exprlib_release(made);
    return 1;
  }
  *node = made;
  return 0;
}

int exprlib_make_variable(ExprlibContext *context, ExprlibNode **node, ExprlibValueType type,
                          const ExprlibSymbolTable *owner, uint32_t index)
{
  if (exprlib_alloc_node(context, node)) return 1;
  (*node)->op = EXPRLIB_VARIABLE;
  (*node)->type = type;
  exprlib_payload(*node)->variable = {owner, index};
  return 0;
}

int exprlib_make_cast(ExprlibContext *context, ExprlibNode **node, ExprlibValueType type,
                      ExprlibNode *child)
{
  if (!belongs(child, context)) return fail_in(context, EXPRLIB_INTERNAL_ERROR);
  if (exprlib_alloc_node(context, node)) return 1;
  (*node)->op = EXPRLIB_CAST;
  (*node)->type = type;
  exprlib_payload(*node)->cast = child;
  ++child->references;
  return 0;
}

int exprlib_make_relocation(ExprlibContext *context, ExprlibNode **node, void *argument,
                            ExprlibNode *child)
{
  if (!belongs(child, context)) return fail_in(context, EXPRLIB_INTERNAL_ERROR);
  if (exprlib_alloc_node(context, node)) return 1;
  (*node)->op = EXPRLIB_RELOCATION;
  (*node)->type = child->type;
  exprlib_payload(*node)->relocation = {argument, child};
  ++child->references;
  return 0;
}

void exprlib_retain(ExprlibNode *node)
{
  ++node->references;
}

void exprlib_release(ExprlibNode *node)
{
  ExprlibNode *doomed = nullptr;
  drop_reference(node, doomed);
  end_nodes(doomed);
}

ExprlibNode *exprlib_child(const ExprlibNode *node, uint32_t n)
{
  const ExprlibPayload *payload = exprlib_payload(node);
  if (node->op == EXPRLIB_CAST) return n == 0 ? payload->cast : nullptr;
  if (node->op == EXPRLIB_RELOCATION) return n == 0 ? payload->relocation.child : nullptr;
  if (!has_cells(node->op)) return nullptr;
  const ExprlibCell *cell = payload->operands;
  for (; cell != nullptr && n > 0; --n) cell = cell->next;
  return cell == nullptr ? nullptr : cell->node;
}

int exprlib_become(ExprlibNode *node, ExprlibNode *source)
{
  if (node == source) return 0;
  // The source may be an operand of the node, and go with what the node held.
  const Contents held = contents_of(node);
  if (write_over(node, source)) return 1;
  give_back(held);
  return 0;
}

int64_t exprlib_int64(const ExprlibNode *node)
{
  const bool negative = exprlib_is_negative(node) != 0;
  return static_cast<int64_t>(
      load(exprlib_bytes(node), value_size(node), 8, negative ? Byte{0xFF} : Byte{0}));
}

int exprlib_is_negative(const ExprlibNode *node)
{
  if (!is_constant(node)) return 0;
  switch (node->type) {
  case EXPRLIB_INT:
    return top_bit(exprlib_bytes(node), value_size(node)) ? 1 : 0;
  case EXPRLIB_DOUBLE:
    return exprlib_payload(node)->number < 0.0 ? 1 : 0;
  case EXPRLIB_FRACT:
    return fract_is_negative(fract_of(node)) ? 1 : 0;
  default:
    return 0;
  }
}

int exprlib_is_zero(const ExprlibNode *node)
{
  if (!is_constant(node)) return 0;
  switch (node->type) {
  case EXPRLIB_DOUBLE:
    return exprlib_payload(node)->number == 0.0 ? 1 : 0;
  case EXPRLIB_FRACT:
    return is_zero(exprlib_bytes(node), fract_of(node).size) ? 1 : 0;
  case EXPRLIB_STRING:
    return *characters(node) == '\0' ? 1 : 0;
  default:
    return is_zero(exprlib_bytes(node), value_size(node)) ? 1 : 0;
  }
}
