// What a caller asks a processor.
#include "interface/guard.h"
#include "interface/names.h"
#include "interface/tdm.h"
#include "interface/values.h"
#include "model/processor.h"

using tdm::guarded;
using tdm::guarded_array;

const char *tdm_processor_get_name(const tdm_processor *processor)
{
  return tdm::name_result(*processor);
}

const char *tdm_processor_get_derivative_name(const tdm_processor *processor)
{
  return guarded([&] { return tdm::text_result(processor->derivative_name); });
}

tdm_source_location *tdm_processor_get_source_location(const tdm_processor *processor)
{
  return tdm::handle(processor->location("name"));
}

tdm_arr *tdm_processor_get_cores(const tdm_processor *processor)
{
  return guarded_array<void *>([&] { return tdm::array_of_pointers(processor->cores); });
}

tdm_core *tdm_processor_get_core(const tdm_processor *processor, const char *name)
{
  return guarded([&] { return name != nullptr ? processor->find_core(name) : nullptr; });
}

tdm_arr *tdm_processor_get_memories(const tdm_processor *processor)
{
  return guarded_array<void *>([&] { return tdm::array_of_pointers(processor->memories); });
}

tdm_memory *tdm_processor_get_memory(const tdm_processor *processor, const char *full_name)
{
  return guarded(
      [&] { return full_name != nullptr ? processor->find_memory(full_name) : nullptr; });
}
