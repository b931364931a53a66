// Expressions as Exprlib trees: one loop that leaves a finished object's node on a stack, where its
// parent finds it. A parent's operator node takes references of its own; the stack gives up its
// own then, and all of them when something is thrown.
#include <array>
#include <vector>

#include "common/failures.h"
#include "expressions/applications.h"
#include "expressions/expression_env.h"
#include "expressions/expression_tree.h"
#include "expressions/exprlib/exprlib.h"

namespace {

struct ReleaseNode {
  void operator()(ExprlibNode *node) const { exprlib_release(node); }
};
using NodePtr = std::unique_ptr<ExprlibNode, ReleaseNode>;

[[noreturn]] void fail(std::int32_t code)
{
  throw new ExprlibException(std::string("expression manipulation error: ") +
                             exprlib_error_text(code));
}

ExprlibContext *context_of(TDMExpressionEnv *env)
{
  ExprlibContext *context = env != nullptr ? env->exprlib_context() : nullptr;
  if (context == nullptr) fail(EXPRLIB_NOT_SUPPORTED);
  return context;
}

/// Exprlib's codes of TDMBinaryOperator. A right shift is logical there.
constexpr std::array<std::int32_t, TDM_BINARY_MAX + 1> binary_codes = {
    0,
    EXPRLIB_MULTIPLY,
    EXPRLIB_DIVIDE,
    EXPRLIB_REMAINDER,
    EXPRLIB_ADD,
    EXPRLIB_SUBTRACT,
    EXPRLIB_SHIFT_RIGHT_LOGICAL,
    EXPRLIB_SHIFT_LEFT,
    EXPRLIB_EQUAL,
    EXPRLIB_NOT_EQUAL,
    EXPRLIB_GREATER,
    EXPRLIB_LESS,
    EXPRLIB_GREATER_EQUAL,
    EXPRLIB_LESS_EQUAL,
    EXPRLIB_AND,
    EXPRLIB_XOR,
    EXPRLIB_OR,
    EXPRLIB_LOGICAL_AND,
    EXPRLIB_LOGICAL_OR,
    EXPRLIB_MIN,
    EXPRLIB_MAX,
};

/// Exprlib's code of an object that has children, 0 for parentheses. A number that isn't an
/// operator is a fault of the code that built the expression.
std::int32_t code_of(const TDMExpression &node)
{
  switch (tdm::ExpressionTree::shape(node)) {
  case tdm::ExpressionTree::Shape::unary:
    switch (static_cast<const TDMUnaryApplication &>(node).op()) {
    case TDM_UNARY_NOT:
      return EXPRLIB_NOT;
    case TDM_UNARY_COMPLEMENT:
      return EXPRLIB_XOR; // with all bits set
    case TDM_UNARY_NEGATE:
      return EXPRLIB_NEGATE;
    case TDM_UNARY_ABSOLUTE:
      return EXPRLIB_ABS;
    case TDM_UNARY_PARENTHESES:
      return 0;
    default:
      throw int{0};
    }
  case tdm::ExpressionTree::Shape::binary: {
    const std::int32_t op = static_cast<const TDMBinaryApplication &>(node).op();
    if (op < TDM_BINARY_MULTIPLY || op > TDM_BINARY_MAX) throw int{0};
    return binary_codes[static_cast<std::size_t>(op)];
  }
  default:
    return EXPRLIB_CONDITIONAL;
  }
}

/// The second operand of a complement: an "unsigned int" of width 64 with all bits set.
NodePtr all_bits_set(ExprlibContext *context)
{
  const std::vector<std::uint8_t> bytes(context->value_size, 0xFF);
  ExprlibNode *node = nullptr;
  if (exprlib_make_integer(context, &node, EXPRLIB_UNSIGNED_INT, bytes.data(), bytes.size(), 64))
    fail(exprlib_error(context));
  return NodePtr(node);
}

/// Replaces the last `count` nodes by an operator over them.
void apply(std::vector<NodePtr> &nodes, std::size_t count, std::int32_t code, bool complement,
           TDMExpressionEnv *env)
{
  for (std::size_t n = nodes.size() - count; n < nodes.size(); ++n)
    if (!nodes[n]) fail(EXPRLIB_NOT_SUPPORTED);
  ExprlibContext *context = context_of(env);
  if (complement) {
    nodes.push_back(all_bits_set(context));
    ++count;
  }
  std::array<ExprlibNode *, 3> operands{};
  for (std::size_t n = 0; n < count; ++n) operands[n] = nodes[nodes.size() - count + n].get();
  ExprlibNode *made = nullptr;
  if (exprlib_make_operator_of(context, &made, code, static_cast<std::uint32_t>(count),
                               operands.data()))
    fail(exprlib_error(context));
  nodes.resize(nodes.size() - count);
  nodes.push_back(NodePtr(made));
}

} // namespace

ExprlibNode *TDMNumber::to_exprlib(TDMExpressionEnv *env)
{
  ExprlibContext *context = context_of(env);
  ExprlibNode *node = nullptr;
  if (exprlib_make_int64(context, &node, number_)) fail(exprlib_error(context));
  return node;
}

namespace tdm {

ExprlibNode *ExpressionTree::render(TDMExpression &root, TDMExpressionEnv *env)
{
  struct Waiting {
    TDMExpression *node;
    bool children_done;
  };
  WorkStack<Waiting> waiting;
  std::vector<NodePtr> nodes;
  waiting.push({&root, false});
  while (!waiting.empty()) {
    Waiting &current = waiting.top();
    TDMExpression &node = *current.node;
    if (node.children().empty() || node.shape_ == Shape::checksum) {
      waiting.pop();
      nodes.push_back(NodePtr(node.to_exprlib(env)));
      continue;
    }
    const std::int32_t code = code_of(node);
    if (!current.children_done) {
      current.children_done = true;
      for (std::size_t n = node.children().size(); n > 0; --n)
        waiting.push({node.children()[n - 1].get(), false});
      continue;
    }
    waiting.pop();
    if (code == 0) continue; // parentheses are what they enclose
    const bool complement = node.shape_ == Shape::unary && code == EXPRLIB_XOR;
    apply(nodes, node.children().size(), code, complement, env);
  }
  return nodes.back().release();
}

} // namespace tdm
