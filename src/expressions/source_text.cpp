// Writes a tree from left to right, with one stack of what is still to be written: objects, each
// with what stands around it, and the pieces of text between them.
#include "expressions/source_text.h"

#include <array>
#include <cstdint>
#include <limits>
#include <string_view>

#include "expressions/applications.h"
#include "expressions/checksum.h"
#include "expressions/expression_tree.h"
#include "expressions/queries.h"

namespace {

using Shape = tdm::ExpressionTree::Shape;

/// How tight an expression is: one that is looser than its place allows stands in parentheses.
enum Level : int {
  conditional_level,
  logical_or_level,
  logical_and_level,
  or_level,
  xor_level,
  and_level,
  equality_level,
  relation_level,
  shift_level,
  sum_level,
  product_level,
  unary_level,
  primary_level
};

constexpr std::int64_t least_number = std::numeric_limits<std::int64_t>::min();

struct BinaryText {
  std::string_view text; ///< with its blanks; for a function its name
  int level;
};

/// By TDMBinaryOperator.
constexpr std::array<BinaryText, TDM_BINARY_MAX + 1> binary_texts = {{
    {"?", primary_level},       {" * ", product_level},   {" / ", product_level},
    {" % ", product_level},     {" + ", sum_level},       {" - ", sum_level},
    {" >> ", shift_level},      {" << ", shift_level},    {" == ", equality_level},
    {" != ", equality_level},   {" > ", relation_level},  {" < ", relation_level},
    {" >= ", relation_level},   {" <= ", relation_level}, {" & ", and_level},
    {" ^ ", xor_level},         {" | ", or_level},        {" && ", logical_and_level},
    {" || ", logical_or_level}, {"min", primary_level},   {"max", primary_level},
}};

const BinaryText &text_of(const TDMBinaryApplication &node)
{
  const std::int32_t op = node.op();
  const bool known = op >= TDM_BINARY_MULTIPLY && op <= TDM_BINARY_MAX;
  return binary_texts[known ? static_cast<std::size_t>(op) : 0];
}

std::string_view text_of(const TDMUnaryApplication &node)
{
  switch (node.op()) {
  case TDM_UNARY_NOT:
    return "!";
  case TDM_UNARY_COMPLEMENT:
    return "~";
  case TDM_UNARY_NEGATE:
    return "-";
  case TDM_UNARY_ABSOLUTE:
    return "absolute";
  case TDM_UNARY_PARENTHESES:
    return "";
  default:
    return "?";
  }
}

bool is_prefix(const TDMUnaryApplication &node)
{
  return node.op() != TDM_UNARY_ABSOLUTE && node.op() != TDM_UNARY_PARENTHESES;
}

int level_of(const TDMExpression &node)
{
  switch (tdm::ExpressionTree::shape(node)) {
  case Shape::conditional:
    return conditional_level;
  case Shape::binary:
    return text_of(static_cast<const TDMBinaryApplication &>(node)).level;
  case Shape::unary:
    return is_prefix(static_cast<const TDMUnaryApplication &>(node)) ? unary_level : primary_level;
  default:
    break;
  }
  const auto *number = dynamic_cast<const TDMNumber *>(&node);
  if (number == nullptr || number->number() >= 0) return primary_level;
  return number->number() == least_number ? sum_level : unary_level;
}

std::string quoted(std::string_view function, tdm::Text name)
{
  return std::string(function) + "(\"" + name + "\")";
}

/// A number below 0 is written as the negation of one, and the least one, whose opposite can't be
/// written, as a difference.
std::string number_text(std::int64_t number)
{
  return number == least_number ? std::to_string(number + 1) + " - 1" : std::to_string(number);
}

/// `name` of a section is a text, that of a group a word.
std::string object_text(std::string_view function, bool is_group, tdm::Text name)
{
  return std::string(function) + (is_group ? "(group:" + name + ")" : "(sect:\"" + name + "\")");
}

/// What an object without children looks like.
std::string leaf_text(const TDMExpression &leaf)
{
  if (const auto *number = dynamic_cast<const TDMNumber *>(&leaf))
    return number_text(number->number());
  if (const auto *symbol = dynamic_cast<const TDMSymbolRef *>(&leaf))
    return "\"" + symbol->name() + "\"";
  if (const auto *section = dynamic_cast<const TDMSectionExists *>(&leaf))
    return quoted("exists", section->name());
  if (const auto *symbol = dynamic_cast<const TDMDefinedSymbol *>(&leaf))
    return quoted("defined", symbol->name());
  if (const auto *symbol = dynamic_cast<const TDMReferenced *>(&leaf))
    return quoted("referenced", symbol->name());
  if (const auto *address = dynamic_cast<const TDMAddressExpression *>(&leaf))
    return object_text("addressof", address->kind() == TDMAddressExpression::group,
                       address->name());
  if (const auto *size = dynamic_cast<const TDMSizeOf *>(&leaf))
    return object_text("sizeof", size->kind() == TDMSizeOf::group, size->name());
  return "?";
}

class Writer {
public:
  std::string write(const TDMExpression &root)
  {
    push(root, conditional_level);
    while (!pending_.empty()) {
      const Item item = pending_.pop();
      text_ += item.text;
      if (item.node != nullptr) begin(*item.node, item.least_level);
    }
    return std::move(text_);
  }

private:
  /// A piece of text, or an object that may not be looser than the level.
  struct Item {
    const TDMExpression *node;
    int least_level;
    std::string_view text;
  };

  void push(const TDMExpression &node, int least_level) { pending_.push({&node, least_level, {}}); }
  void push(std::string_view text) { pending_.push({nullptr, 0, text}); }

  /// Writes the beginning of an object, and leaves the rest on the stack, the last part first.
  void begin(const TDMExpression &node, int least_level)
  {
    const bool parentheses = level_of(node) < least_level;
    if (parentheses) {
      text_ += "(";
      push(")");
    }
    switch (tdm::ExpressionTree::shape(node)) {
    case Shape::unary:
      return begin_unary(static_cast<const TDMUnaryApplication &>(node));
    case Shape::binary:
      return begin_binary(static_cast<const TDMBinaryApplication &>(node));
    case Shape::conditional:
      return begin_conditional(static_cast<const TDMConditionalExpression &>(node));
    case Shape::checksum: {
      const auto &checksum = static_cast<const TDMChecksum &>(node);
      return begin_call("checksum(crc32w, ", checksum.start(), checksum.end());
    }
    default:
      text_ += leaf_text(node);
    }
  }

  void begin_unary(const TDMUnaryApplication &node)
  {
    text_ += text_of(node);
    if (is_prefix(node)) return push(node.operand(), unary_level);
    text_ += "(";
    push(")");
    push(node.operand(), conditional_level);
  }

  /// Operators associate to the left: an operand of the same level stands to the left as it is.
  void begin_binary(const TDMBinaryApplication &node)
  {
    const BinaryText &op = text_of(node);
    if (op.level == primary_level)
      return begin_call(std::string(op.text) + "(", node.left(), node.right());
    push(node.right(), op.level + 1);
    push(op.text);
    push(node.left(), op.level);
  }

  void begin_conditional(const TDMConditionalExpression &node)
  {
    push(node.else_value(), conditional_level);
    push(" : ");
    push(node.then_value(), conditional_level);
    push(" ? ");
    push(node.condition(), logical_or_level);
  }

  void begin_call(std::string_view beginning, const TDMExpression &first,
                  const TDMExpression &second)
  {
    text_ += beginning;
    push(")");
    push(second, conditional_level);
    push(", ");
    push(first, conditional_level);
  }

  tdm::WorkStack<Item> pending_;
  std::string text_;
};

} // namespace

std::string tdm::source_text(const TDMExpression &expression)
{
  return Writer().write(expression);
}
