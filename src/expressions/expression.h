/// @file
/// A number of a target description in the form in which the model holds it: an object that is
/// evaluated any number of times against an environment (expression_env.h).
///
/// An expression is a tree. Its depth is decided by the text and by chains of parameters, so that
/// nothing here recurses along it: whatever runs through a tree (evaluation, cloning, rendering,
/// the queries, destruction) is one loop with a stack of its own. The operations of a class that
/// has children start such a loop at the object that they are called on; the loop asks the virtual
/// operations of leaves and of classes that it doesn't know.
///
/// Clients: expressions belong to whoever holds them; a class derived from TDMExpression stands for
/// a leaf, and what children it may have are its own affair. Failures are thrown by pointer and are
/// deleted by whoever catches them.
#pragma once

#include <cstdint>
#include <memory>
#include <set>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "common/tdm_object.h"
#include "common/tdm_types.h"

class TDMExpressionEnv;
struct ExprlibNode;

namespace tdm {
struct ExpressionTree;
}

/// The base of all expressions.
class TDM_CLIENT_API TDMExpression : public TDMObject {
public:
  /// First addresses and first addresses behind, in MAUs of the space.
  using DataRanges = std::vector<std::pair<std::int64_t, std::int64_t>>;

  /// Drops the values that are kept by the children, and by theirs, where they keep one; what
  /// hangs below a child without a value stays. The object's own value stays too.
  virtual void clear_cached();

  /// Calculates the value, whether one is kept or not, and doesn't keep it. The environment may be
  /// null: an expression that asks it for something then fails as without layout data, with
  /// TDMDataNeededForExpressionException *. Throws TDMSemanticException * for a division by zero,
  /// and TDMSyntaxException * for a symbol that isn't found or data that can't be used.
  virtual std::int64_t compute(TDMExpressionEnv *env) = 0;

  virtual ~TDMExpression();

  /// The expression as an Exprlib tree in the environment's context; the caller owns one reference.
  /// Null where the form has none: `defined`, `exists`, `checksum`, and what the environment has no
  /// node for. Throws ExprlibException *, for such a form inside an operator too.
  virtual ExprlibNode *to_exprlib(TDMExpressionEnv *env) = 0;

  /// Whether a name in the expression is one that the environment's symbol_defined confirms. False
  /// without an environment.
  virtual bool refers_to_defined(TDMExpressionEnv *env);

  /// Whether a symbol reference in the expression names one of the set.
  virtual bool refers_to_any(const std::set<std::string> &names);

  /// Appends start and end of each checksum's data, from left to right. Evaluates them, and throws
  /// what that throws.
  virtual void collect_data_ranges(TDMExpressionEnv *env, DataRanges &ranges);

  /// A deep copy that keeps no value yet.
  [[nodiscard]] virtual std::unique_ptr<TDMExpression> clone() const = 0;

  /// The value: the one that is kept, else calculated and then kept. Throws what compute() throws,
  /// and keeps nothing then: TDMFileException *, mostly.
  std::int64_t value(TDMExpressionEnv *env = nullptr)
  {
    if (!has_memo_) keep(compute(env));
    return memo_;
  }

  /// Whether value() keeps a value already.
  [[nodiscard]] bool has_value() const { return has_memo_; }

  /// Drops every value that is kept in the tree, the object's own included. An evaluation that
  /// failed half-way leaves values below objects that keep none, which clear_cached() can't reach.
  void forget();

  TDMExpression(const TDMExpression &) = delete;
  TDMExpression &operator=(const TDMExpression &) = delete;

protected:
  /// For leaves, those of clients included.
  TDMExpression() = default;

private:
  friend struct tdm::ExpressionTree;
  friend class TDMUnaryApplication;
  friend class TDMBinaryApplication;
  friend class TDMConditionalExpression;
  friend class TDMChecksum;

  /// What the loops have to know of a class; everything else is a leaf to them.
  enum class Shape : std::uint8_t { leaf, unary, binary, conditional, checksum };
  using Children = std::span<std::unique_ptr<TDMExpression>>;

  /// The children are stored by the derived class, and may still be filled in after construction.
  TDMExpression(Shape shape, Children children)
      : shape_(shape), child_count_(static_cast<std::uint8_t>(children.size())),
        child_distance_(static_cast<std::uint16_t>(reinterpret_cast<char *>(children.data()) -
                                                   reinterpret_cast<char *>(this)))
  {
  }

  /// What the derived class stores, without a pointer for each of a million objects.
  [[nodiscard]] Children children() const
  {
    char *object = reinterpret_cast<char *>(const_cast<TDMExpression *>(this));
    return {reinterpret_cast<std::unique_ptr<TDMExpression> *>(object + child_distance_),
            child_count_};
  }

  void keep(std::int64_t value)
  {
    memo_ = value;
    has_memo_ = true;
  }

  std::int64_t memo_ = 0;
  bool has_memo_ = false;
  Shape shape_ = Shape::leaf;
  std::uint8_t child_count_ = 0;
  std::uint16_t child_distance_ = 0; ///< of the first one from the object's beginning, in bytes
};
