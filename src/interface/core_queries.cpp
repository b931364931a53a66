// What a caller asks a core.
#include "interface/guard.h"
#include "interface/names.h"
#include "interface/tdm.h"
#include "interface/values.h"
#include "model/core.h"

using tdm::guarded;
using tdm::guarded_array;

const char *tdm_core_get_name(const tdm_core *core)
{
  return tdm::name_result(*core);
}

const char *tdm_core_get_full_name(const tdm_core *core)
{
  return tdm::full_name_result(*core);
}

const char *tdm_core_get_arch_name(const tdm_core *core)
{
  return guarded([&] { return tdm::text_result(core->architecture_name); });
}

const char *tdm_core_get_processor_name(const tdm_core *core)
{
  return guarded([&] { return tdm::text_result(core->processor_name); });
}

tdm_source_location *tdm_core_get_source_location(const tdm_core *core)
{
  return tdm::handle(core->location("name"));
}

tdm_arr *tdm_core_get_spaces(const tdm_core *core)
{
  return guarded_array<void *>([&] { return tdm::array_of_pointers(core->spaces); });
}

tdm_space *tdm_core_get_space_by_id(const tdm_core *core, int64_t id)
{
  return guarded([&] { return core->find_space_by_id(id); });
}

tdm_space *tdm_core_get_space_by_name(const tdm_core *core, const char *name)
{
  return guarded([&] { return name != nullptr ? core->find_space(name) : nullptr; });
}

tdm_arr *tdm_core_get_endianness(const tdm_core *core)
{
  return guarded_array<int32_t>(
      [&] { return tdm::array_of(core->endianness, [](int32_t order) { return order; }); });
}

tdm_start_address *tdm_core_get_start_address(const tdm_core *core)
{
  return tdm::handle(core->start_address);
}

tdm_space *tdm_core_get_start_address_space(const tdm_core *core)
{
  return core->start_address_space;
}

tdm_space *tdm_core_get_copytable_space(const tdm_core *core)
{
  return core->copytable_space;
}
