// Binding parameters, and rewriting arguments that are passed on.
#include "expressions/argument_scope.h"

#include "common/failures.h"
#include "common/work_stack.h"
#include "preprocessor/string_pool.h"

namespace tdm {

namespace {

/// The operands of a record that is only read.
ExpressionOperands operands_of(const TDMFileExpression &record)
{
  return expression_operands(const_cast<TDMFileExpression &>(record));
}

struct Terms {
  std::size_t count = 0;
  bool are_constant = true; ///< there is no variable among them
};

Terms terms_of(const TDMFileExpression &record)
{
  Terms terms;
  WorkStack<const TDMFileExpression *> pending;
  pending.push(&record);
  while (!pending.empty()) {
    const TDMFileExpression &next = *pending.pop();
    ++terms.count;
    if (next.kind() == kExprVarRef) terms.are_constant = false;
    const ExpressionOperands operands = operands_of(next);
    for (std::size_t i = 0; i < operands.count; ++i) pending.push(operands.slots[i]->get());
  }
  return terms;
}

/// Replaces variables, and counts the terms that come out over all arguments.
class Substitution {
public:
  Substitution(const ArgumentScope &scope, const TDMSourceLocation &place)
      : scope_(scope), place_(place)
  {
  }

  Argument rewrite(const TDMFileExpression &argument)
  {
    if (argument.kind() == kExprVarRef)
      return {value_of(static_cast<const TDMExprVarRef &>(argument)), nullptr};
    const Terms terms = terms_of(argument);
    if (terms.are_constant) {
      count(terms.count);
      return {&argument, nullptr};
    }
    ExpressionPtr copy = rewritten_copy(argument);
    const TDMFileExpression *record = copy.get();
    return {record, std::move(copy)};
  }

private:
  ExpressionPtr rewritten_copy(const TDMFileExpression &argument)
  {
    struct Pair {
      const TDMFileExpression *from;
      ExpressionPtr *copy;
    };
    ExpressionPtr result;
    WorkStack<Pair> pending;
    pending.push({&argument, &result});
    while (!pending.empty()) {
      const Pair pair = pending.pop();
      if (pair.from->kind() == kExprVarRef) {
        *pair.copy = value_of(static_cast<const TDMExprVarRef &>(*pair.from))->clone();
        continue;
      }
      count(1);
      *pair.copy = clone_node(*pair.from);
      const ExpressionOperands from = operands_of(*pair.from);
      const ExpressionOperands copies = expression_operands(**pair.copy);
      for (std::size_t i = from.count; i > 0; --i)
        pending.push({from.slots[i - 1]->get(), copies.slots[i - 1]});
    }
    return result;
  }

  const TDMFileExpression *value_of(const TDMExprVarRef &variable)
  {
    const ArgumentScope::Binding *binding = scope_.find(variable.name);
    if (binding == nullptr) {
      const TDMSourceLocation *known = variable.find_location("name");
      report_unbound(variable.name, known != nullptr ? *known : place_);
    }
    if (binding->terms == 0) binding->terms = terms_of(*binding->record).count;
    count(binding->terms);
    return binding->record;
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

Arguments arguments_of(const ExpressionList &list)
{
  Arguments arguments;
  arguments.reserve(list.size());
  for (const ExpressionPtr &record : list) arguments.push_back({record.get(), nullptr});
  return arguments;
}

// Of parameters of one name the last one counts.
void ArgumentScope::bind(const FileParameters &parameters, Arguments arguments)
{
  if (arguments.size() > parameters.size()) throw new TDMTooManyArgumentsException;
  single_.reset();
  bound_.clear();
  bound_names_ = {};
  bound_.reserve(parameters.size());
  auto given = arguments.begin();
  for (const FileParameter &parameter : parameters) {
    const bool is_given = given != arguments.end();
    if (!is_given && !parameter.defaultValue) throw new TDMTooFewArgumentsException;
    Binding binding{parameter.defaultValue.get(), nullptr};
    if (is_given) {
      binding = {given->record, std::move(given->owned)};
      ++given;
    }
    append(parameter.name, std::move(binding));
  }
}

void ArgumentScope::append(Text name, Binding binding)
{
  Parameter &last = bound_.emplace_back(name, std::move(binding));
  Parameter &first = bound_[bound_names_.append(NameAt{bound_})];
  if (&first != &last) first.binding = std::move(last.binding);
}

void ArgumentScope::bind(Text name, ExpressionPtr record)
{
  const TDMFileExpression *bound = record.get();
  single(name) = {bound, std::move(record)};
}

/// The binding of a single name, which there is from now on.
ArgumentScope::Binding &ArgumentScope::single(Text name) const
{
  if (single_ == nullptr) single_ = std::make_unique<Bindings>();
  return single_->by_name[name];
}

ArgumentScope ArgumentScope::copy() const
{
  ArgumentScope result;
  result.bound_.reserve(bound_.size());
  for (const Parameter &parameter : bound_) {
    if (!is_first(parameter)) continue;
    ExpressionPtr record = parameter.binding.record->clone();
    const TDMFileExpression *bound = record.get();
    result.append(parameter.name, {bound, std::move(record)});
  }
  return result;
}

PooledVector<Text> ArgumentScope::parameter_names() const
{
  PooledVector<Text> names;
  names.reserve(bound_.size());
  for (const Parameter &parameter : bound_)
    if (is_first(parameter)) names.push_back(parameter.name);
  return names;
}

Arguments ArgumentScope::substitute(const ExpressionList &arguments,
                                    const TDMSourceLocation &place) const
{
  Substitution substitution(*this, place);
  Arguments result;
  result.reserve(arguments.size());
  for (const ExpressionPtr &argument : arguments) result.push_back(substitution.rewrite(*argument));
  return result;
}

const ArgumentScope::Binding *ArgumentScope::find(Text name) const
{
  if (single_ != nullptr)
    if (const auto found = single_->by_name.find(name); found != single_->by_name.end())
      return &found->second;
  if (const uint32_t place = bound_names_.find(name, NameAt{bound_}); place != NameTable::none)
    return &bound_[place].binding;
  if (parameters_ != nullptr)
    if (const Binding *binding = parameters_->find(name)) return binding;
  return memories_ != nullptr ? find_memory(name) : nullptr;
}

const ArgumentScope::Binding *ArgumentScope::find_memory(Text name) const
{
  std::optional<std::int64_t> value;
  if (name.substr(0, memory_address_prefix.size()) == memory_address_prefix)
    value = memories_->memory_address(std::string(name.substr(memory_address_prefix.size())));
  else if (name.substr(0, memory_size_prefix.size()) == memory_size_prefix)
    value = memories_->memory_size(std::string(name.substr(memory_size_prefix.size())));
  if (!value) return nullptr;
  ExpressionPtr record = std::make_unique<TDMExprNumber>(*value);
  const TDMFileExpression *bound = record.get();
  Binding &binding = single(pooled_text(name));
  binding = {bound, std::move(record)};
  return &binding;
}

} // namespace tdm
