// Translates what each parameter is bound to in the scope of the parameters. A failure is an answer
// here: nothing of the model depends on a parameter that can't be translated.
#include "model/processor_parameters.h"

#include <memory>

#include "common/failures.h"
#include "expressions/source_text.h"
#include "expressions/translate.h"
#include "model/processor.h"

namespace tdm {

namespace {

/// What the call gives, or nothing after a failure of the expression.
template <class Call> auto if_possible(Call call) -> std::optional<decltype(call())>
{
  try {
    return call();
  } catch (TDMFileException *failure) {
    delete failure;
    return std::nullopt;
  }
}

ParameterMeaning meaning_of(Text name, const ArgumentScope &parameters,
                            const TDMSourceLocation &place)
{
  ParameterMeaning meaning{name, std::nullopt, std::nullopt};
  const ArgumentScope::Binding *binding = parameters.find(name);
  const auto expression =
      if_possible([&] { return tdm_translate_expression(binding->record, parameters, place); });
  if (!expression) return meaning;
  meaning.text = source_text(**expression);
  meaning.value = if_possible([&] { return (*expression)->compute(nullptr); });
  return meaning;
}

} // namespace

std::vector<ParameterMeaning> parameter_meanings(const TDMProcessor &processor)
{
  std::vector<ParameterMeaning> meanings;
  meanings.reserve(processor.parameter_names.size());
  const TDMSourceLocation place = processor.location_or("name");
  for (const Text name : processor.parameter_names)
    meanings.push_back(meaning_of(name, processor.parameters, place));
  return meanings;
}

} // namespace tdm
