// The records of expressions: trees that say what was written, with variables unbound and nothing
// evaluated.
//
// A sum of 100,000 terms is one chain of 100,000 nodes, so destroying and cloning a tree never
// recurse: both walk it with an explicit state (see expr_records.cpp), whatever direction the
// chain has.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "common/text.h"
#include "language/file_object.h"

namespace tdm {

/// What TDMFileExpression::kind() gives. The number 12 is free.
enum ExpressionKind : int {
  kExprNumber = 0,
  kExprVarRef = 1,
  kExprSymbolRef = 2,
  kExprUnary = 3,
  kExprBinary = 4,
  kExprConditional = 5,
  kExprAbsolute = 6,
  kExprAddress = 7,
  kExprDefined = 8,
  kExprMax = 9,
  kExprMin = 10,
  kExprSizeOf = 11,
  kExprExists = 13,
  kExprChecksum = 14
};

/// TDMExprUnaryApplication::op. 4 has no form in the language.
enum UnaryOperator : std::int32_t {
  kUnaryNot = 1,
  kUnaryComplement = 2,
  kUnaryMinus = 3,
  kUnaryParentheses = 5
};

/// TDMExprBinaryApplication::op.
enum BinaryOperator : std::int32_t {
  kBinaryMul = 1,
  kBinaryDiv = 2,
  kBinaryMod = 3,
  kBinaryAdd = 4,
  kBinarySub = 5,
  kBinaryShiftRight = 6,
  kBinaryShiftLeft = 7,
  kBinaryEqual = 8,
  kBinaryNotEqual = 9,
  kBinaryGreater = 10,
  kBinaryLess = 11,
  kBinaryGreaterEqual = 12,
  kBinaryLessEqual = 13,
  kBinaryAnd = 14,
  kBinaryXor = 15,
  kBinaryOr = 16,
  kBinaryLogicalAnd = 17,
  kBinaryLogicalOr = 18
};

/// TDMExprAddress::objType: what `addressof` asks for.
enum AddressObject : std::int32_t { kAddressSection = 0, kAddressGroup = 1, kAddressMemory = 2 };

/// TDMExprSizeOf::objType: what `sizeof` asks for. Not the numbers of `addressof`.
enum SizeObject : std::int32_t { kSizeSection = 1, kSizeGroup = 2, kSizeMemory = 4 };

} // namespace tdm

class TDMFileExpression : public TDMFileObject {
public:
  ~TDMFileExpression() override = default;

  /// A number of tdm::ExpressionKind.
  [[nodiscard]] int kind() const { return kind_; }

  /// A deep copy of the fields, without locations.
  [[nodiscard]] virtual std::unique_ptr<TDMFileExpression> clone() const = 0;

protected:
  explicit TDMFileExpression(std::int32_t kind) : kind_(kind) {}

private:
  std::int32_t kind_;
};

namespace tdm {

using ExpressionPtr = std::unique_ptr<TDMFileExpression>;
using ExpressionList = tdm::RecordList<ExpressionPtr>;

/// The fields of an expression that hold its operands, in the order of the text.
struct ExpressionOperands {
  std::array<ExpressionPtr *, 3> slots = {};
  std::size_t count = 0;
};

[[nodiscard]] ExpressionOperands expression_operands(TDMFileExpression &expression);

/// Whether destroying what the pointer holds, if anything, leads no further down.
[[nodiscard]] inline bool is_leaf(const ExpressionPtr &expression)
{
  constexpr std::uint32_t composite = 1U << kExprUnary | 1U << kExprBinary |
                                      1U << kExprConditional | 1U << kExprAbsolute |
                                      1U << kExprMax | 1U << kExprMin | 1U << kExprChecksum;
  return expression == nullptr || (composite >> expression->kind() & 1U) == 0;
}

/// Destroys all that hangs below the expression, for the destructors of composite ones whose
/// operands have operands in turn.
void destroy_operands(TDMFileExpression &expression);

/// A copy with no operands yet.
[[nodiscard]] ExpressionPtr clone_node(const TDMFileExpression &node);

/// What clone() of composite expressions does.
[[nodiscard]] ExpressionPtr clone_expression(const TDMFileExpression &expression);

/// Copies of all elements, in order.
[[nodiscard]] ExpressionList clone_expressions(const ExpressionList &list);

/// Two expressions that belong together, low then high, each of which may be null where the text
/// may leave it out.
struct FileRange {
  ExpressionPtr low;
  ExpressionPtr high;
};

} // namespace tdm

/// A number literal. Key "number".
class TDMExprNumber final : public TDMFileExpression {
public:
  explicit TDMExprNumber(std::int64_t number) : TDMFileExpression(tdm::kExprNumber), value(number)
  {
  }
  [[nodiscard]] tdm::ExpressionPtr clone() const override;

  std::int64_t value;
};

/// A variable, that is a parameter of the enclosing definition. Key "name".
class TDMExprVarRef final : public TDMFileExpression {
public:
  explicit TDMExprVarRef(tdm::Text variable) : TDMFileExpression(tdm::kExprVarRef), name(variable)
  {
  }
  [[nodiscard]] tdm::ExpressionPtr clone() const override;

  tdm::Text name;
};

/// A linker symbol. Key "name".
class TDMExprSymbolRef final : public TDMFileExpression {
public:
  explicit TDMExprSymbolRef(tdm::Text symbol) : TDMFileExpression(tdm::kExprSymbolRef), name(symbol)
  {
  }
  [[nodiscard]] tdm::ExpressionPtr clone() const override;

  tdm::Text name;
};

/// An operator before its operand, or parentheses around it. Key "op".
class TDMExprUnaryApplication final : public TDMFileExpression {
public:
  TDMExprUnaryApplication(std::int32_t number, tdm::ExpressionPtr expression)
      : TDMFileExpression(tdm::kExprUnary), op(number), operand(std::move(expression))
  {
  }
  ~TDMExprUnaryApplication() override
  {
    if (!(tdm::is_leaf(operand))) tdm::destroy_operands(*this);
  }
  [[nodiscard]] tdm::ExpressionPtr clone() const override { return tdm::clone_expression(*this); }

  std::int32_t op; ///< tdm::UnaryOperator
  tdm::ExpressionPtr operand;
};

/// No keys.
class TDMExprBinaryApplication final : public TDMFileExpression {
public:
  TDMExprBinaryApplication(std::int32_t number, tdm::ExpressionPtr first, tdm::ExpressionPtr second)
      : TDMFileExpression(tdm::kExprBinary), op(number), left(std::move(first)),
        right(std::move(second))
  {
  }
  ~TDMExprBinaryApplication() override
  {
    if (!(tdm::is_leaf(left) && tdm::is_leaf(right))) tdm::destroy_operands(*this);
  }
  [[nodiscard]] tdm::ExpressionPtr clone() const override { return tdm::clone_expression(*this); }

  std::int32_t op; ///< tdm::BinaryOperator
  tdm::ExpressionPtr left;
  tdm::ExpressionPtr right;
};

/// No keys.
class TDMExprConditional final : public TDMFileExpression {
public:
  TDMExprConditional(tdm::ExpressionPtr test, tdm::ExpressionPtr first, tdm::ExpressionPtr second)
      : TDMFileExpression(tdm::kExprConditional), condition(std::move(test)),
        trueValue(std::move(first)), falseValue(std::move(second))
  {
  }
  ~TDMExprConditional() override
  {
    if (!(tdm::is_leaf(condition) && tdm::is_leaf(trueValue) && tdm::is_leaf(falseValue)))
      tdm::destroy_operands(*this);
  }
  [[nodiscard]] tdm::ExpressionPtr clone() const override { return tdm::clone_expression(*this); }

  tdm::ExpressionPtr condition;
  tdm::ExpressionPtr trueValue;
  tdm::ExpressionPtr falseValue;
};

/// No keys.
class TDMExprAbsolute final : public TDMFileExpression {
public:
  explicit TDMExprAbsolute(tdm::ExpressionPtr expression)
      : TDMFileExpression(tdm::kExprAbsolute), operand(std::move(expression))
  {
  }
  ~TDMExprAbsolute() override
  {
    if (!(tdm::is_leaf(operand))) tdm::destroy_operands(*this);
  }
  [[nodiscard]] tdm::ExpressionPtr clone() const override { return tdm::clone_expression(*this); }

  tdm::ExpressionPtr operand;
};

/// `addressof`. Keys "addressof", "objType", "objName".
class TDMExprAddress final : public TDMFileExpression {
public:
  TDMExprAddress() : TDMFileExpression(tdm::kExprAddress) {}
  [[nodiscard]] tdm::ExpressionPtr clone() const override;

  std::int32_t objType = 0; ///< tdm::AddressObject
  tdm::Text objName;
};

/// No keys.
class TDMExprDefined final : public TDMFileExpression {
public:
  explicit TDMExprDefined(tdm::Text symbol)
      : TDMFileExpression(tdm::kExprDefined), symbolName(symbol)
  {
  }
  [[nodiscard]] tdm::ExpressionPtr clone() const override;

  tdm::Text symbolName;
};

/// No keys.
class TDMExprMax final : public TDMFileExpression {
public:
  TDMExprMax(tdm::ExpressionPtr first, tdm::ExpressionPtr second)
      : TDMFileExpression(tdm::kExprMax), left(std::move(first)), right(std::move(second))
  {
  }
  ~TDMExprMax() override
  {
    if (!(tdm::is_leaf(left) && tdm::is_leaf(right))) tdm::destroy_operands(*this);
  }
  [[nodiscard]] tdm::ExpressionPtr clone() const override { return tdm::clone_expression(*this); }

  tdm::ExpressionPtr left;
  tdm::ExpressionPtr right;
};

/// No keys.
class TDMExprMin final : public TDMFileExpression {
public:
  TDMExprMin(tdm::ExpressionPtr first, tdm::ExpressionPtr second)
      : TDMFileExpression(tdm::kExprMin), left(std::move(first)), right(std::move(second))
  {
  }
  ~TDMExprMin() override
  {
    if (!(tdm::is_leaf(left) && tdm::is_leaf(right))) tdm::destroy_operands(*this);
  }
  [[nodiscard]] tdm::ExpressionPtr clone() const override { return tdm::clone_expression(*this); }

  tdm::ExpressionPtr left;
  tdm::ExpressionPtr right;
};

/// `sizeof`. Keys "sizeof", "objType", "objName".
class TDMExprSizeOf final : public TDMFileExpression {
public:
  TDMExprSizeOf() : TDMFileExpression(tdm::kExprSizeOf) {}
  [[nodiscard]] tdm::ExpressionPtr clone() const override;

  std::int32_t objType = 0; ///< tdm::SizeObject
  tdm::Text objName;
};

/// No keys.
class TDMExprExists final : public TDMFileExpression {
public:
  explicit TDMExprExists(tdm::Text section)
      : TDMFileExpression(tdm::kExprExists), sectionName(section)
  {
  }
  [[nodiscard]] tdm::ExpressionPtr clone() const override;

  tdm::Text sectionName;
};

/// Keys "checksum", "algo", "start", "end".
class TDMExprChecksum final : public TDMFileExpression {
public:
  TDMExprChecksum() : TDMFileExpression(tdm::kExprChecksum) {}
  ~TDMExprChecksum() override
  {
    if (!(tdm::is_leaf(start) && tdm::is_leaf(end))) tdm::destroy_operands(*this);
  }
  [[nodiscard]] tdm::ExpressionPtr clone() const override { return tdm::clone_expression(*this); }

  std::int32_t algo = 0; ///< 0 is crc32w, the only one
  tdm::ExpressionPtr start;
  tdm::ExpressionPtr end;
};
