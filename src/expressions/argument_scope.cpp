// Binding parameters, and rewriting arguments that are passed on.
#include "expressions/argument_scope.h"

#include "common/failures.h"
#include "common/work_stack.h"

namespace tdm {

namespace {

/// The operands of a record that is only read.
ExpressionOperands operands_of(const TDMFileExpression &record)
{
  return expression_operands(const_cast<TDMFileExpression &>(record));
}

std::size_t count_terms(const TDMFileExpression &record)
{
  std::size_t terms = 0;
  WorkStack<const TDMFileExpression *> pending;
  pending.push(&record);
  while (!pending.empty()) {
    const ExpressionOperands operands = operands_of(*pending.pop());
    ++terms;
    for (std::size_t i = 0; i < operands.count; ++i) pending.push(operands.slots[i]->get());
  }
  return terms;
}

/// Replaces the variables of copies, and counts the terms that come out over all of them.
class Substitution {
public:
  Substitution(const ArgumentScope &scope, const TDMSourceLocation &place)
      : scope_(scope), place_(place)
  {
  }

  ExpressionPtr rewrite(const TDMFileExpression &argument)
  {
    struct Pair {
      const TDMFileExpression *from; // has the locations that its copy lacks
      ExpressionPtr *copy;
    };
    ExpressionPtr result = argument.clone();
    WorkStack<Pair> pending;
    pending.push({&argument, &result});
    while (!pending.empty()) {
      const Pair pair = pending.pop();
      if (pair.from->kind() == kExprVarRef) {
        *pair.copy = value_of(static_cast<const TDMExprVarRef &>(*pair.from));
        continue;
      }
      count(1);
      const ExpressionOperands from = operands_of(*pair.from);
      const ExpressionOperands copies = expression_operands(**pair.copy);
      for (std::size_t i = from.count; i > 0; --i)
        pending.push({from.slots[i - 1]->get(), copies.slots[i - 1]});
    }
    return result;
  }

private:
  ExpressionPtr value_of(const TDMExprVarRef &variable)
  {
    const ArgumentScope::Binding *binding = scope_.find(variable.name);
    if (binding == nullptr) {
      const TDMSourceLocation *known = variable.find_location("name");
      report_unbound(variable.name, known != nullptr ? *known : place_);
    }
    if (binding->terms == 0) binding->terms = count_terms(*binding->record);
    count(binding->terms);
    return binding->record->clone();
  }

  void count(std::size_t terms)
  {
    terms_ += terms;
    if (terms_ > term_limit) report_too_large(place_);
  }

  const ArgumentScope &scope_;
  const TDMSourceLocation &place_;
  std::size_t terms_ = 0;
};

} // namespace

void report_unbound(std::string_view name, const TDMSourceLocation &location)
{
  const auto rest = [name](std::string_view prefix) {
    return std::string(name.substr(prefix.size()));
  };
  if (name.substr(0, memory_address_prefix.size()) == memory_address_prefix)
    throw new TDMSyntaxException(location, "could not resolve memory reference \"" +
                                               rest(memory_address_prefix) +
                                               "\" in addressof expression");
  if (name.substr(0, memory_size_prefix.size()) == memory_size_prefix)
    throw new TDMSyntaxException(location, "could not resolve memory reference \"" +
                                               rest(memory_size_prefix) +
                                               "\" in sizeof expression");
  throw new TDMSyntaxException(location, "TDM variable \"" + std::string(name) +
                                             "\" is used but not defined");
}

void report_too_large(const TDMSourceLocation &location)
{
  static_assert(term_limit == 1'000'000);
  throw new TDMSyntaxException(location, "expression too large, the limit is 1000000 terms");
}

void ArgumentScope::bind(const FileParameters &parameters, const ExpressionList &arguments)
{
  if (arguments.size() > parameters.size()) throw new TDMTooManyArgumentsException;
  bindings_.clear();
  for (std::size_t i = 0; i < parameters.size(); ++i) {
    const bool is_given = i < arguments.size();
    const ExpressionPtr &record = is_given ? arguments[i] : parameters[i].defaultValue;
    if (!record) throw new TDMTooFewArgumentsException;
    bind(parameters[i].name, record->clone());
  }
}

void ArgumentScope::bind(std::string name, ExpressionPtr record)
{
  bindings_.insert_or_assign(std::move(name), Binding{std::move(record)});
}

ExpressionList ArgumentScope::substitute(const ExpressionList &arguments,
                                         const TDMSourceLocation &place) const
{
  Substitution substitution(*this, place);
  ExpressionList result;
  result.reserve(arguments.size());
  for (const ExpressionPtr &argument : arguments) result.push_back(substitution.rewrite(*argument));
  return result;
}

const ArgumentScope::Binding *ArgumentScope::find(std::string_view name) const
{
  if (const auto found = bindings_.find(name); found != bindings_.end()) return &found->second;
  if (parameters_ != nullptr)
    if (const Binding *binding = parameters_->find(name)) return binding;
  return memories_ != nullptr ? find_memory(name) : nullptr;
}

const ArgumentScope::Binding *ArgumentScope::find_memory(std::string_view name) const
{
  std::optional<std::int64_t> value;
  if (name.substr(0, memory_address_prefix.size()) == memory_address_prefix)
    value = memories_->memory_address(std::string(name.substr(memory_address_prefix.size())));
  else if (name.substr(0, memory_size_prefix.size()) == memory_size_prefix)
    value = memories_->memory_size(std::string(name.substr(memory_size_prefix.size())));
  if (!value) return nullptr;
  const auto added =
      bindings_.emplace(std::string(name), Binding{std::make_unique<TDMExprNumber>(*value)});
  return &added.first->second;
}

} // namespace tdm
