// What a caller asks a memory.
#include "interface/guard.h"
#include "interface/names.h"
#include "interface/tdm.h"
#include "interface/values.h"
#include "model/memory.h"

using tdm::guarded;

const char *tdm_memory_get_name(const tdm_memory *memory)
{
  return tdm::name_result(*memory);
}

const char *tdm_memory_get_full_name(const tdm_memory *memory)
{
  return tdm::full_name_result(*memory);
}

const char *tdm_memory_get_processor_name(const tdm_memory *memory)
{
  return guarded([&] { return tdm::text_result(memory->processor_name); });
}

int tdm_memory_get_mausize(const tdm_memory *memory)
{
  return memory->mau_size;
}

int64_t tdm_memory_get_size(const tdm_memory *memory)
{
  return memory->size;
}

int tdm_memory_get_type(const tdm_memory *memory)
{
  return memory->type;
}

int tdm_memory_is_reserved(const tdm_memory *memory)
{
  return memory->reserved ? 1 : 0;
}

tdm_fillspec *tdm_memory_get_fillspec(const tdm_memory *memory)
{
  return memory->fill_spec.get();
}

const char *tdm_memory_get_write_mode(const tdm_memory *memory)
{
  return guarded([&] { return tdm::text_result(memory->hardware().write_mode); });
}

int tdm_memory_get_setuptime(const tdm_memory *memory)
{
  return memory->hardware().setup_time;
}

int tdm_memory_get_holdtime(const tdm_memory *memory)
{
  return memory->hardware().hold_time;
}

int tdm_memory_get_cycles(const tdm_memory *memory)
{
  return memory->hardware().cycles;
}

int tdm_memory_get_area(const tdm_memory *memory)
{
  return memory->hardware().area;
}

int tdm_memory_get_read_ports(const tdm_memory *memory)
{
  return memory->hardware().read_ports;
}

int tdm_memory_get_write_ports(const tdm_memory *memory)
{
  return memory->hardware().write_ports;
}

int tdm_memory_get_readwrite_ports(const tdm_memory *memory)
{
  return memory->hardware().readwrite_ports;
}

void tdm_memory_get_addressrange(const tdm_memory *memory, tdm_interval *out)
{
  *out = guarded([&] { return memory->address_range().to_record(); });
}

tdm_source_location *tdm_memory_get_source_location(const tdm_memory *memory)
{
  return tdm::handle(memory->location("name"));
}
