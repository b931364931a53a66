// Trees as text. As in evaluation, the way down from the root is kept in the nodes.
#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <cstring>

#include "expressions/exprlib/node.h"
#include "expressions/exprlib/operators.h"

namespace exprlib {

namespace {

class Writer {
public:
  using Function = void (*)(const char *, std::size_t, void *);
  Writer(Function write, void *closure) : write_(write), closure_(closure) {}

  void text(const char *characters, std::size_t length) const
  {
    if (length != 0) write_(characters, length, closure_);
  }
  void text(const char *characters) const { text(characters, std::strlen(characters)); }

private:
  Function write_;
  void *closure_;
};

/// Decimal where 64 bits hold the value, else hexadecimal.
void print_integer(const Writer &out, const ExprlibNode *node)
{
  std::size_t size = value_size(node);
  const Byte *bytes = exprlib_bytes(node);
  const bool negative = exprlib_is_negative(node) != 0;
  const Byte fill = negative ? 0xFF : 0;
  bool is_short = (exprlib_int64(node) < 0) == negative;
  for (std::size_t i = 8; i < size; ++i) is_short = is_short && bytes[i] == fill;
  char text[24];
  if (is_short) {
    std::snprintf(text, sizeof text, "%" PRId64, exprlib_int64(node));
    return out.text(text);
  }
  if (negative) {
    negate(node->context->scratch, bytes, size);
    bytes = node->context->scratch;
  }
  while (bytes[size - 1] == 0) --size;
  out.text(negative ? "-0x" : "0x");
  for (std::size_t i = size; i > 0; --i) {
    std::snprintf(text, sizeof text, i == size ? "%x" : "%02x",
                  static_cast<unsigned>(bytes[i - 1]));
    out.text(text);
  }
}

void print_string(const Writer &out, const ExprlibNode *node)
{
  out.text("\"");
  for (const char *c = characters(node); *c != '\0'; ++c) {
    if (*c == '"' || *c == '\\') out.text("\\");
    out.text(c, 1);
  }
  out.text("\"");
}

void print_constant(const Writer &out, const ExprlibNode *node)
{
  char text[40];
  switch (node->type) {
  case EXPRLIB_STRING:
    return print_string(out, node);
  case EXPRLIB_DOUBLE:
    std::snprintf(text, sizeof text, "%.17g", exprlib_payload(node)->number);
    return out.text(text);
  case EXPRLIB_FRACT:
    std::snprintf(text, sizeof text, "%.17gr", fract_to_double(fract_of(node)));
    return out.text(text);
  default:
    return print_integer(out, node);
  }
}

enum class Form { infix, prefix, call, conditional, cast };

Form form_of(const ExprlibNode *node)
{
  switch (node->op) {
  case EXPRLIB_CONDITIONAL:
    return Form::conditional;
  case EXPRLIB_CAST:
    return Form::cast;
  case EXPRLIB_COMPLEMENT:
  case EXPRLIB_NEGATE:
  case EXPRLIB_NOT:
    return Form::prefix;
  default:
    break;
  }
  const OperatorRow *row = find_operator(node->op);
  return row != nullptr && row->pair ? Form::infix : Form::call;
}

/// What stands in front of the first operand.
void print_opening(const Writer &out, const ExprlibNode *node, Form form)
{
  const char *name = exprlib_operator_name(node->op);
  switch (form) {
  case Form::prefix:
    return out.text(name);
  case Form::infix:
  case Form::conditional:
    return out.text("(");
  case Form::cast:
    out.text("(");
    out.text(exprlib_type_name(node->type));
    return out.text(") ");
  default:
    break;
  }
  if (node->op == EXPRLIB_RELOCATION) return out.text("relocation(");
  if (*name == '\0') {
    char text[24];
    std::snprintf(text, sizeof text, "operator%" PRId32 "(", node->op);
    return out.text(text);
  }
  out.text(name);
  if (name[std::strlen(name) - 1] != '(' && exprlib_child(node, 0) != nullptr) out.text("(");
}

/// What stands in front of the next operand.
void print_separator(const Writer &out, const ExprlibNode *node, Form form, std::uint32_t operand)
{
  if (form == Form::conditional) return out.text(operand == 1 ? " ? " : " : ");
  if (form != Form::infix) return out.text(", ");
  out.text(" ");
  out.text(exprlib_operator_name(node->op));
  out.text(" ");
}

void print_closing(const Writer &out, const ExprlibNode *node, Form form)
{
  if (form == Form::prefix || form == Form::cast) return;
  const char *name = exprlib_operator_name(node->op);
  const bool bare = form == Form::call && *name != '\0' && name[std::strlen(name) - 1] != '(' &&
                    exprlib_child(node, 0) == nullptr;
  if (!bare) out.text(")");
}

/// Prints a node without operands; false if it has some.
bool print_leaf(const Writer &out, const ExprlibNode *node)
{
  if (is_constant(node)) {
    print_constant(out, node);
    return true;
  }
  if (node->op != EXPRLIB_VARIABLE) return false;
  char text[24];
  std::snprintf(text, sizeof text, "$%" PRIu32, exprlib_payload(node)->variable.index);
  out.text(text);
  return true;
}

void print(const Writer &out, ExprlibNode *node)
{
  if (print_leaf(out, node)) return;
  node->link = nullptr;
  node->step = 1;
  while (node != nullptr) {
    const Form form = form_of(node);
    const std::uint32_t operand = node->step - 1;
    if (operand == 0) print_opening(out, node, form);
    ExprlibNode *child = exprlib_child(node, operand);
    if (child == nullptr) {
      print_closing(out, node, form);
      ExprlibNode *above = node->link;
      node->link = nullptr;
      node->step = 0;
      node = above;
      continue;
    }
    if (operand > 0) print_separator(out, node, form, operand);
    ++node->step;
    if (print_leaf(out, child)) continue;
    child->link = node;
    child->step = 1;
    node = child;
  }
}

} // namespace

} // namespace exprlib

void exprlib_print(ExprlibNode *node, void (*write)(const char *, size_t, void *), void *closure)
{
  // Within an evaluation the steps are taken: a hook that prints gets what isn't under way.
  if (node->step != 0) return write("...", 3, closure);
  exprlib::print(exprlib::Writer(write, closure), node);
}
