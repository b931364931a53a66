// Translates the values of a `fill`; nothing is evaluated here.
#include "layout/fill_spec.h"

#include "expressions/translate.h"
#include "language/records.h"

TDMFillSpec::TDMFillSpec(const TDMFileFillSpec &record, const tdm::ArgumentScope &scope,
                         const TDMSourceLocation &place)
{
  values.reserve(record.values.size());
  for (const auto &value : record.values)
    values.push_back(tdm_translate_expression(value.get(), scope, place));
  const TDMSourceLocation *alignment_place = record.find_location("alignment");
  alignment = tdm_translate_expression(record.alignment.get(), scope,
                                       alignment_place != nullptr ? *alignment_place : place);
}
