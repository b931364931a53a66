// Builds a start address from its record.
#include "layout/start_address.h"

#include "common/failures.h"
#include "language/records.h"
#include "layout/record_values.h"

TDMStartAddress::TDMStartAddress(const TDMFileStartAddress &record, const tdm::ArgumentScope &scope)
    : TDMObject{record.sourceLocations}
{
  if (!record.symbolName)
    throw new TDMUnexpectedErrorException(tdm::place_of(record, "start_address"),
                                          "no symbol name found in start address specification");
  address = tdm::expression_of(record, "value", record.value.get(), scope);
  symbol = *record.symbolName;
  bank = record.bank;
}
