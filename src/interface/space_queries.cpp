// What a caller asks an address space, and the one thing that it can set.
#include "interface/guard.h"
#include "interface/names.h"
#include "interface/tdm.h"
#include "interface/values.h"
#include "model/space.h"

using tdm::guarded;
using tdm::guarded_array;

const char *tdm_space_get_name(const tdm_space *space)
{
  return tdm::name_result(*space);
}

const char *tdm_space_get_full_name(const tdm_space *space)
{
  return tdm::full_name_result(*space);
}

const char *tdm_space_get_core_name(const tdm_space *space)
{
  return guarded([&] { return tdm::text_result(space->core_name); });
}

const char *tdm_space_get_processor_name(const tdm_space *space)
{
  return guarded([&] { return tdm::text_result(space->processor_name); });
}

int tdm_space_get_id(const tdm_space *space)
{
  return space->id;
}

int tdm_space_get_mausize(const tdm_space *space)
{
  return space->mau_size;
}

int tdm_space_get_alignment(const tdm_space *space)
{
  return space->alignment;
}

int tdm_space_get_pagesize(const tdm_space *space)
{
  return space->page_size;
}

tdm_arr *tdm_space_get_page_ranges(const tdm_space *space)
{
  return guarded_array<void *>([&] { return tdm::array_of_pointers(space->page_ranges); });
}

int tdm_space_get_page_restrict_sections(const tdm_space *space)
{
  return space->page_restrict_sections ? 1 : 0;
}

int tdm_space_get_locate_direction(const tdm_space *space)
{
  return space->locate_direction;
}

tdm_start_address *tdm_space_get_start_address(const tdm_space *space)
{
  return space->start_address.get();
}

tdm_space *tdm_space_get_address_literal_space(const tdm_space *space)
{
  return space->address_literal_space;
}

void tdm_space_set_address_literal_space(tdm_space *space, tdm_space *other)
{
  space->address_literal_space = other;
}

void tdm_space_get_valid_interval(const tdm_space *space, tdm_interval *out)
{
  *out = guarded([&] { return space->valid_interval().to_record(); });
}
