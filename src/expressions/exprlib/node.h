// What the parts of Exprlib share about nodes: access to constants, failures, and the ways to write
// a result over a node.
#pragma once

#include "expressions/exprlib/exprlib.h"
#include "expressions/exprlib/fract.h"

namespace exprlib {

/// Leaves the code in the node's context; 1, the result of whatever failed.
int fail(const ExprlibNode *node, int32_t code);

inline bool is_constant(const ExprlibNode *node)
{
  return node->op == EXPRLIB_CONSTANT;
}

inline bool is_integer(ExprlibValueType type)
{
  return type <= EXPRLIB_UNSIGNED_INT;
}

/// Types that go with each other: all integers, or a type with itself.
inline bool compatible(ExprlibValueType a, ExprlibValueType b)
{
  return is_integer(a) ? is_integer(b) : a == b;
}

inline std::size_t value_size(const ExprlibNode *node)
{
  return node->context->value_size;
}

inline Fract fract_of(const ExprlibNode *node)
{
  return {exprlib_bytes(node), static_cast<std::size_t>(node->width / 8)};
}

inline const char *characters(const ExprlibNode *node)
{
  const ExprlibString *string = exprlib_payload(node)->string;
  return string == nullptr || string->characters == nullptr ? "" : string->characters;
}

/// Whether the bytes above the fourth are the sign extension of the fourth.
bool fits_32_bits(const ExprlibNode *node);

/// What a node held before a result was written over it, still to be given back.
struct Contents {
  ExprlibContext *context;
  int32_t op;
  ExprlibValueType type;
  ExprlibPayload payload;
};
Contents contents_of(const ExprlibNode *node);
void give_back(const Contents &contents);

/// Makes the node a constant, over whose payload the caller has written the value.
void make_constant(ExprlibNode *node, ExprlibValueType type, unsigned width, bool relocatable);

/// Gives the node the value or the form of the source, without giving back what it held.
int write_over(ExprlibNode *node, const ExprlibNode *source);

void free_string(ExprlibString *string);

} // namespace exprlib
