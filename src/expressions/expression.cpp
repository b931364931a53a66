// What all expressions share, and the loops behind it: queries, clearing, cloning, destruction.
#include "expressions/expression.h"

#include "expressions/applications.h"
#include "expressions/checksum.h"
#include "expressions/expression_tree.h"

using tdm::ExpressionTree;

TDMExpression::~TDMExpression() = default;

void TDMExpression::clear_cached()
{
  ExpressionTree::run(*this, [](TDMExpression &node) {
    if (!node.has_memo_) return false;
    node.has_memo_ = false;
    node.memo_ = 0;
    if (node.shape_ == Shape::leaf) node.clear_cached();
    return true;
  });
}

void TDMExpression::forget()
{
  const auto drop = [](TDMExpression &node) {
    node.has_memo_ = false;
    node.memo_ = 0;
    if (node.shape_ == Shape::leaf) node.clear_cached();
    return true;
  };
  drop(*this);
  ExpressionTree::run(*this, drop);
}

bool TDMExpression::refers_to_defined(TDMExpressionEnv *env)
{
  bool found = false;
  ExpressionTree::run(*this, [&](TDMExpression &node) {
    if (!found && node.shape_ == Shape::leaf) found = node.refers_to_defined(env);
    return !found;
  });
  return found;
}

bool TDMExpression::refers_to_any(const std::set<std::string> &names)
{
  bool found = false;
  ExpressionTree::run(*this, [&](TDMExpression &node) {
    if (!found && node.shape_ == Shape::leaf) found = node.refers_to_any(names);
    return !found;
  });
  return found;
}

void TDMExpression::collect_data_ranges(TDMExpressionEnv *env, DataRanges &ranges)
{
  ExpressionTree::run(*this, [&](TDMExpression &node) {
    const bool asks_itself = node.shape_ == Shape::leaf || node.shape_ == Shape::checksum;
    if (asks_itself) node.collect_data_ranges(env, ranges);
    return !asks_itself;
  });
}

namespace tdm {

std::unique_ptr<TDMExpression> ExpressionTree::copy_without_children(const TDMExpression &node)
{
  switch (node.shape_) {
  case Shape::unary: {
    const auto &from = static_cast<const TDMUnaryApplication &>(node);
    auto copy = std::make_unique<TDMUnaryApplication>(from.op_, nullptr, from.place_);
    copy->sourceLocations = from.sourceLocations;
    return copy;
  }
  case Shape::binary: {
    const auto &from = static_cast<const TDMBinaryApplication &>(node);
    return std::make_unique<TDMBinaryApplication>(from.op_, nullptr, nullptr, from.place_);
  }
  case Shape::conditional:
    return std::make_unique<TDMConditionalExpression>(nullptr, nullptr, nullptr);
  case Shape::checksum: {
    const auto &from = static_cast<const TDMChecksum &>(node);
    auto copy = std::make_unique<TDMChecksum>(from.kind_, nullptr, nullptr, from.place_);
    copy->sourceLocations = from.sourceLocations;
    return copy;
  }
  default:
    return node.clone();
  }
}

std::unique_ptr<TDMExpression> ExpressionTree::clone(const TDMExpression &root)
{
  struct Pair {
    const TDMExpression *from;
    TDMExpression *to;
  };
  std::unique_ptr<TDMExpression> result = copy_without_children(root);
  WorkStack<Pair> pending;
  pending.push({&root, result.get()});
  while (!pending.empty()) {
    const Pair pair = pending.pop();
    for (std::size_t n = 0; n < pair.from->children().size(); ++n) {
      const TDMExpression &child = *pair.from->children()[n];
      slot(*pair.to, n) = copy_without_children(child);
      if (child.shape_ != Shape::leaf) pending.push({&child, slot(*pair.to, n).get()});
    }
  }
  return result;
}

// The objects that still have to go form a list. Its links stand where each kept its value, which
// nobody reads any more; a stack would need memory, and a destructor can't fail for want of it.
void ExpressionTree::dismantle(TDMExpression &root) noexcept
{
  TDMExpression *doomed = nullptr;
  const auto take_children = [&doomed](TDMExpression &parent) {
    for (std::unique_ptr<TDMExpression> &child : parent.children()) {
      if (!child) continue;
      child->memo_ = static_cast<std::int64_t>(reinterpret_cast<std::intptr_t>(doomed));
      doomed = child.release();
    }
  };
  take_children(root);
  while (doomed != nullptr) {
    const std::unique_ptr<TDMExpression> node(doomed);
    doomed = reinterpret_cast<TDMExpression *>(static_cast<std::intptr_t>(node->memo_));
    take_children(*node);
  }
}

} // namespace tdm
