// Exprlib trees written briefly, and their results as texts.
#pragma once

#include <initializer_list>
#include <string>
#include <vector>

#include "expressions/exprlib/exprlib.h"
#include "support.h"

/// A context with helpers whose nodes are handed over to whatever they are made part of.
class Trees {
public:
  explicit Trees(std::uint32_t value_size = 8, std::uint32_t payload_size = 0)
  {
    exprlib_make_context(&context, value_size, payload_size);
  }
  ~Trees() { exprlib_end_context(context); }

  ExprlibNode *i(std::int64_t value, ExprlibValueType type = EXPRLIB_INT,
                 std::uint16_t width = 32) const
  {
    std::uint8_t bytes[8];
    for (int n = 0; n < 8; ++n) bytes[n] = static_cast<std::uint8_t>(value >> (8 * n));
    ExprlibNode *node = nullptr;
    exprlib_make_integer(context, &node, type, bytes, sizeof bytes, width);
    return node;
  }
  ExprlibNode *u(std::uint64_t value) const
  {
    return i(static_cast<std::int64_t>(value), EXPRLIB_UNSIGNED_INT);
  }
  ExprlibNode *d(double value) const
  {
    ExprlibNode *node = nullptr;
    exprlib_make_double(context, &node, value);
    return node;
  }
  ExprlibNode *f(std::vector<std::uint8_t> bytes) const
  {
    ExprlibNode *node = nullptr;
    exprlib_make_fract(context, &node, bytes.data(), bytes.size());
    return node;
  }
  ExprlibNode *s(const std::string &text) const
  {
    ExprlibNode *node = nullptr;
    exprlib_make_string_constant(context, &node, text.data(), text.size());
    return node;
  }
  /// A constant of the type, of value 1 where that means something.
  ExprlibNode *of_type(int type) const
  {
    switch (type) {
    case EXPRLIB_DOUBLE:
      return d(1);
    case EXPRLIB_FRACT:
      return f({0x40, 0});
    case EXPRLIB_STRING:
      return s("1");
    default:
      return i(1, static_cast<ExprlibValueType>(type));
    }
  }
  ExprlibNode *v(std::uint32_t index, ExprlibValueType type = EXPRLIB_INT) const
  {
    ExprlibNode *node = nullptr;
    exprlib_make_variable(context, &node, type, &table, index);
    return node;
  }
  ExprlibNode *op(std::int32_t code, std::initializer_list<ExprlibNode *> operands) const
  {
    ExprlibNode *node = nullptr;
    exprlib_make_operator_of(context, &node, code, static_cast<std::uint32_t>(operands.size()),
                             operands.begin());
    for (ExprlibNode *operand : operands) exprlib_release(operand);
    return node;
  }
  ExprlibNode *cast(ExprlibValueType type, ExprlibNode *child) const
  {
    ExprlibNode *node = nullptr;
    exprlib_make_cast(context, &node, type, child);
    exprlib_release(child);
    return node;
  }
  ExprlibNode *relocated(ExprlibNode *node) const
  {
    node->relocatable = 1;
    return node;
  }

  /// Evaluates and releases the node: `int/32 5`, an open tree as `open (5 + $0)`, or `! ` and the
  /// text of the error. A code that a success left follows the value; `@` is the mark.
  [[nodiscard]] std::string eval(ExprlibNode *node) const
  {
    std::string text;
    if (exprlib_eval(node) != 0)
      text = std::string("! ") + exprlib_error_text(exprlib_error(context));
    else
      text = described(node);
    exprlib_release(node);
    return text;
  }

  [[nodiscard]] std::string described(ExprlibNode *node) const
  {
    std::string text = node->op != 0 ? "open " + printed(node)
                                     : std::string(exprlib_type_name(node->type)) + "/" +
                                           std::to_string(node->width) + " " + value(node);
    if (node->relocatable != 0) text += "@";
    if (exprlib_error(context) != 0)
      text += std::string(", ") + exprlib_error_text(exprlib_error(context));
    return text;
  }

  /// The value of a constant, a fract by its bytes.
  static std::string value(ExprlibNode *node)
  {
    if (node->type != EXPRLIB_FRACT) return printed(node);
    std::string text;
    for (int n = 0; n < node->width / 8; ++n) {
      const char digits[] = "0123456789abcdef";
      text += digits[exprlib_bytes(node)[n] >> 4];
      text += digits[exprlib_bytes(node)[n] & 15];
    }
    return text;
  }

  ExprlibContext *context = nullptr;
  mutable ExprlibSymbolRow rows[4] = {};
  ExprlibSymbolTable table = {rows, 4};
};
