// Ranges, byte orders and source locations: what callers ask of plain values.
#include "common/source_location.h"
#include "interface/guard.h"
#include "interface/tdm.h"
#include "interface/values.h"
#include "layout/range.h"

using tdm::guarded;

tdm_range *tdm_range_create(const tdm_addressvalue *start, int64_t size)
{
  return guarded([&] { return new TDMRange{AddressValue(*start), size}; });
}

void tdm_range_delete(tdm_range *range)
{
  delete range;
}

int64_t tdm_range_get_size(const tdm_range *range)
{
  return range->size;
}

void tdm_range_get_start_address(const tdm_range *range, tdm_addressvalue *out)
{
  *out = range->start.to_record();
}

const char *tdm_endianness_to_string(int endianness)
{
  return guarded([&] {
    switch (endianness) {
    case TDM_ENDIANNESS_BIG:
      return tdm::text_result("big");
    case TDM_ENDIANNESS_LITTLE:
      return tdm::text_result("little");
    case TDM_ENDIANNESS_NOT_SET:
      return tdm::text_result("<not set>");
    default:
      return tdm::text_result("<unknown>");
    }
  });
}

int tdm_endianness_to_maulib(int endianness)
{
  switch (endianness) {
  case TDM_ENDIANNESS_BIG:
    return 2;
  case TDM_ENDIANNESS_LITTLE:
    return 1;
  default:
    return 0;
  }
}

const char *tdm_source_location_get_filename(const tdm_source_location *location)
{
  return guarded([&] { return tdm::text_result(location->file.text()); });
}

int tdm_source_location_get_line_number(const tdm_source_location *location)
{
  return location->line;
}

int tdm_source_location_get_column_number(const tdm_source_location *location)
{
  return location->column;
}
