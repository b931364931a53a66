// The loops that run through expression trees, each with a stack of its own. They know the classes
// that have children by their shape; any other object is asked through its virtual operations.
#pragma once

#include <cstddef>

#include "common/work_stack.h"
#include "expressions/expression.h"

namespace tdm {

/// What an expression fails with that asks for data which isn't there yet.
inline constexpr const char *needs_layout_data =
    "this expression can only be used in struct statements and/or symbol assignments";

struct ExpressionTree {
  using Shape = TDMExpression::Shape;

  /// The value of the root, whether it keeps one or not; all others are read through value().
  static std::int64_t evaluate(TDMExpression &root, TDMExpressionEnv *env);

  static ExprlibNode *render(TDMExpression &root, TDMExpressionEnv *env);

  [[nodiscard]] static std::unique_ptr<TDMExpression> clone(const TDMExpression &root);

  /// Destroys all that hangs below the root. Needs no memory.
  static void dismantle(TDMExpression &root) noexcept;

  /// Where child number n goes of an object that was made without its children.
  static std::unique_ptr<TDMExpression> &slot(const TDMExpression &parent, std::size_t n)
  {
    return parent.children()[n];
  }

  static Shape shape(const TDMExpression &node) { return node.shape_; }

  /// Runs through what hangs below the root, parents first, children from left to right;
  /// `enter(node)` says whether to go below the node.
  template <typename Enter> static void run(const TDMExpression &root, Enter &&enter)
  {
    WorkStack<TDMExpression *> pending;
    push_children(pending, root);
    while (!pending.empty()) {
      TDMExpression &node = *pending.pop();
      if (enter(node)) push_children(pending, node);
    }
  }

private:
  template <typename Stack> static void push_children(Stack &pending, const TDMExpression &node)
  {
    for (std::size_t n = node.children().size(); n > 0; --n)
      pending.push(node.children()[n - 1].get());
  }

  static TDMExpression *pending_child(const TDMExpression &node);
  static std::int64_t combine(const TDMExpression &node, TDMExpressionEnv *env, bool layout_data);
  static std::unique_ptr<TDMExpression> copy_without_children(const TDMExpression &node);
};

} // namespace tdm
