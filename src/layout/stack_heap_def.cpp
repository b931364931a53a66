// Builds stack and heap definitions from their records.
#include "layout/stack_heap_def.h"

#include "common/failures.h"
#include "language/records.h"
#include "layout/record_values.h"

TDMStackOrHeapDef::TDMStackOrHeapDef(const TDMFileStackOrHeapDef &record,
                                     const tdm::ArgumentScope &scope)
    : TDMObject{record.sourceLocations}, name(record.name.value_or("")),
      minimal_size(tdm::expression_of(record, "minimalSize", record.minimalSize.get(), scope)),
      high_to_low(record.growDirection == tdm::kHighToLow),
      alignment(tdm::number32_or(record, "alignment", record.alignment.get(), scope, 1)),
      fixed(record.fixed)
{
}

TDMStackDef::TDMStackDef(const TDMFileStackDef &record, const tdm::ArgumentScope &scope)
    : TDMStackOrHeapDef(record, scope), id(tdm::expression_of(record, "id", record.id.get(), scope))
{
  if (minimal_size == nullptr)
    throw new TDMSyntaxException(tdm::place_of(record, "name"),
                                 "minimal size not given for stack " + name);
}

TDMHeapDef::TDMHeapDef(const TDMFileHeapDef &record, const tdm::ArgumentScope &scope)
    : TDMStackOrHeapDef(record, scope)
{
  if (minimal_size == nullptr)
    throw new TDMSyntaxException(tdm::place_of(record, "name"),
                                 "minimal size not given for heap " + name);
}
