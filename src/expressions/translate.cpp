// Translation as one loop over a stack of records that are still to be translated, each with the
// place that waits for its expression: so neither deep trees nor long chains of variables recurse.
// Children are taken from left to right, and the first fault in the order of the text is reported.
#include "expressions/translate.h"

#include <optional>

#include "common/failures.h"
#include "common/make_object.h"
#include "expressions/applications.h"
#include "expressions/arithmetic.h"
#include "expressions/checksum.h"
#include "expressions/expression_tree.h"
#include "expressions/queries.h"

namespace {

using Binding = tdm::ArgumentScope::Binding;
using Slot = std::unique_ptr<TDMExpression>;

/// What a memory reference is called in a scope.
std::string memory_name(std::string_view prefix, std::string_view memory)
{
  return std::string(prefix).append(memory);
}

bool is_number(const TDMFileExpression &record)
{
  return record.kind() == tdm::kExprNumber;
}

Slot number(const TDMFileExpression &record)
{
  return tdm::make_object<TDMNumber>(static_cast<const TDMExprNumber &>(record).value);
}

/// Numbers translations, so that each tells its own marks in bindings from older ones.
std::uint64_t last_number = 0;

class Translation {
public:
  Translation(const tdm::ArgumentScope &scope, const TDMSourceLocation &place)
      : scope_(scope), place_(place)
  {
  }

  Slot run(const TDMFileExpression &record)
  {
    Slot result;
    pending_.push({&record, &result, nullptr, false});
    while (!pending_.empty()) {
      const Task task = pending_.pop();
      if (task.left != nullptr) {
        task.left->busy_in = 0;
        continue;
      }
      in_binding_ = task.in_binding;
      translate(*task.record, *task.slot);
    }
    return result;
  }

private:
  /// A record and where its expression goes, or a variable whose record is done.
  struct Task {
    const TDMFileExpression *record;
    Slot *slot;
    const Binding *left;
    bool in_binding; ///< the record is that of a variable, or part of it
  };

  void count_term()
  {
    if (++terms_ > tdm::term_limit) tdm::report_too_large(place_);
  }

  void translate(const TDMFileExpression &record, Slot &slot)
  {
    count_term();
    switch (record.kind()) {
    case tdm::kExprVarRef: {
      const auto &variable = static_cast<const TDMExprVarRef &>(record);
      return enter_variable(variable.name, location(record, "name"), slot);
    }
    case tdm::kExprUnary:
    case tdm::kExprBinary:
    case tdm::kExprConditional:
    case tdm::kExprAbsolute:
    case tdm::kExprMax:
    case tdm::kExprMin:
    case tdm::kExprChecksum:
      return translate_composite(record, slot);
    default:
      return translate_leaf(record, slot);
    }
  }

  void translate_composite(const TDMFileExpression &record, Slot &slot)
  {
    // Only read: the operands of the record stay where they are.
    const tdm::ExpressionOperands operands =
        tdm::expression_operands(const_cast<TDMFileExpression &>(record));
    if (record.kind() == tdm::kExprUnary &&
        static_cast<const TDMExprUnaryApplication &>(record).op == tdm::kUnaryParentheses) {
      pending_.push({operands.slots[0]->get(), &slot, nullptr, in_binding_});
      return;
    }
    slot = without_children(record);
    // Numbers in front needn't wait for their turn: it is now.
    std::size_t done = 0;
    for (; done < operands.count && is_number(**operands.slots[done]); ++done) {
      count_term();
      tdm::ExpressionTree::slot(*slot, done) = number(**operands.slots[done]);
    }
    for (std::size_t n = operands.count; n > done; --n)
      pending_.push({operands.slots[n - 1]->get(), &tdm::ExpressionTree::slot(*slot, n - 1),
                     nullptr, in_binding_});
  }

  [[nodiscard]] Slot without_children(const TDMFileExpression &record) const
  {
    switch (record.kind()) {
    case tdm::kExprUnary: {
      const std::int32_t op = static_cast<const TDMExprUnaryApplication &>(record).op;
      return located(tdm::make_object<TDMUnaryApplication>(op, nullptr, place_), record);
    }
    case tdm::kExprBinary: {
      const std::int32_t op = static_cast<const TDMExprBinaryApplication &>(record).op;
      return binary(op);
    }
    case tdm::kExprMax:
      return binary(TDM_BINARY_MAX);
    case tdm::kExprMin:
      return binary(TDM_BINARY_MIN);
    case tdm::kExprAbsolute:
      return located(tdm::make_object<TDMUnaryApplication>(TDM_UNARY_ABSOLUTE, nullptr, place_),
                     record);
    case tdm::kExprChecksum: {
      const std::int32_t kind = static_cast<const TDMExprChecksum &>(record).algo;
      return located(tdm::make_object<TDMChecksum>(kind, nullptr, nullptr, place_), record);
    }
    default:
      return tdm::make_object<TDMConditionalExpression>(nullptr, nullptr, nullptr);
    }
  }

  void translate_leaf(const TDMFileExpression &record, Slot &slot)
  {
    switch (record.kind()) {
    case tdm::kExprNumber:
      slot = number(record);
      break;
    case tdm::kExprSymbolRef: {
      const auto &symbol = static_cast<const TDMExprSymbolRef &>(record);
      slot = located(tdm::make_object<TDMSymbolRef>(symbol.name, place_), record);
      break;
    }
    case tdm::kExprDefined:
      slot = tdm::make_object<TDMDefinedSymbol>(
          static_cast<const TDMExprDefined &>(record).symbolName);
      break;
    case tdm::kExprExists:
      slot = tdm::make_object<TDMSectionExists>(
          static_cast<const TDMExprExists &>(record).sectionName, place_);
      break;
    case tdm::kExprAddress: {
      const auto &address = static_cast<const TDMExprAddress &>(record);
      if (address.objType == tdm::kAddressMemory)
        return enter_variable(memory_name(tdm::memory_address_prefix, address.objName),
                              location(record, "objName"), slot);
      slot = located(
          tdm::make_object<TDMAddressExpression>(address.objType, address.objName, place_), record);
      break;
    }
    default: {
      const auto &size = static_cast<const TDMExprSizeOf &>(record);
      if (size.objType == tdm::kSizeMemory)
        return enter_variable(memory_name(tdm::memory_size_prefix, size.objName),
                              location(record, "objName"), slot);
      slot = located(tdm::make_object<TDMSizeOf>(size.objType, size.objName, place_), record);
      break;
    }
    }
  }

  /// Goes on with the record that the name is bound to. While that is under way the binding carries
  /// the number of this translation, so that a variable which leads back to itself is seen. A
  /// number that a failed translation has left behind is never used again.
  void enter_variable(std::string_view name, const TDMSourceLocation &location, Slot &slot)
  {
    const Binding *binding = scope_.find(tdm::Text(name));
    if (binding == nullptr) tdm::report_unbound(name, location);
    if (binding->busy_in == number_)
      throw new TDMSyntaxException(location, "TDM variable \"" + std::string(name) +
                                                 "\" is defined by itself");
    binding->busy_in = number_;
    pending_.push({nullptr, nullptr, binding, true});
    pending_.push({binding->record, &slot, nullptr, true});
  }

  [[nodiscard]] Slot binary(std::int32_t op) const
  {
    return tdm::make_object<TDMBinaryApplication>(op, nullptr, nullptr, place_);
  }

  // What a variable is bound to counts as written where the variable is.

  [[nodiscard]] Slot located(Slot expression, const TDMFileExpression &record) const
  {
    if (!in_binding_) expression->sourceLocations = record.sourceLocations;
    return expression;
  }

  [[nodiscard]] TDMSourceLocation location(const TDMFileExpression &record, LocationKey key) const
  {
    const TDMSourceLocation *found = in_binding_ ? nullptr : record.find_location(key);
    return found != nullptr ? *found : place_;
  }

  const tdm::ArgumentScope &scope_;
  const TDMSourceLocation &place_;
  const std::uint64_t number_ = ++last_number;
  std::size_t terms_ = 0;
  bool in_binding_ = false;
  tdm::WorkStack<Task> pending_;
};

/// Calculates small expressions of numbers straight from their records. Gives up, with no value, on
/// whatever is large, asks an environment or fails: translation then has the right answer.
class Shortcut {
public:
  explicit Shortcut(const tdm::ArgumentScope &scope) : scope_(scope) {}

  std::optional<std::int64_t> value(const TDMFileExpression &record, int depth = 0)
  {
    if (record.kind() == tdm::kExprNumber) return static_cast<const TDMExprNumber &>(record).value;
    if (depth == depth_limit || ++terms_ > terms_limit) return std::nullopt;
    switch (record.kind()) {
    case tdm::kExprVarRef: {
      const Binding *binding = scope_.find(static_cast<const TDMExprVarRef &>(record).name);
      if (binding == nullptr) return std::nullopt;
      return value(*binding->record, depth + 1);
    }
    case tdm::kExprUnary: {
      const auto &unary = static_cast<const TDMExprUnaryApplication &>(record);
      if (unary.op < tdm::kUnaryNot || unary.op > tdm::kUnaryParentheses) return std::nullopt;
      const std::optional<std::int64_t> operand = value(*unary.operand, depth + 1);
      if (!operand) return std::nullopt;
      return tdm::apply_unary(unary.op, *operand);
    }
    case tdm::kExprBinary: {
      const auto &application = static_cast<const TDMExprBinaryApplication &>(record);
      if (application.op < tdm::kBinaryMul || application.op > tdm::kBinaryLogicalOr)
        return std::nullopt;
      const std::optional<std::int64_t> left = value(*application.left, depth + 1);
      if (!left) return std::nullopt;
      const std::optional<std::int64_t> right = value(*application.right, depth + 1);
      if (!right) return std::nullopt;
      const bool divides = application.op == tdm::kBinaryDiv || application.op == tdm::kBinaryMod;
      if (divides && *right == 0) return std::nullopt;
      return tdm::apply_binary(application.op, *left, *right);
    }
    default:
      return std::nullopt;
    }
  }

private:
  static constexpr int depth_limit = 16;
  static constexpr int terms_limit = 256;

  const tdm::ArgumentScope &scope_;
  int terms_ = 0;
};

/// What most records are: a number, or a variable that is bound to one. Else null.
const TDMExprNumber *plain_number(const TDMFileExpression &record, const tdm::ArgumentScope &scope)
{
  const TDMFileExpression *meant = &record;
  if (record.kind() == tdm::kExprVarRef) {
    const Binding *binding = scope.find(static_cast<const TDMExprVarRef &>(record).name);
    if (binding == nullptr) return nullptr;
    meant = binding->record;
  }
  return meant->kind() == tdm::kExprNumber ? static_cast<const TDMExprNumber *>(meant) : nullptr;
}

} // namespace

std::unique_ptr<TDMExpression> tdm_translate_expression(const TDMFileExpression *record,
                                                        const tdm::ArgumentScope &scope,
                                                        const TDMSourceLocation &place)
{
  if (record == nullptr) return nullptr;
  if (const TDMExprNumber *number = plain_number(*record, scope))
    return tdm::make_object<TDMNumber>(number->value);
  return Translation(scope, place).run(*record);
}

std::optional<std::int64_t> tdm::plain_value(const TDMFileExpression &record,
                                             const ArgumentScope &scope)
{
  return Shortcut(scope).value(record);
}

std::int64_t tdm::evaluate(const TDMFileExpression &record, const ArgumentScope &scope,
                           const TDMSourceLocation &place)
{
  if (const std::optional<std::int64_t> value = plain_value(record, scope)) return *value;
  return tdm_translate_expression(&record, scope, place)->value();
}
