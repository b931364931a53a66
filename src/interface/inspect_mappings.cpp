// The additive readers of mappings: those of each object, and all that one of them says.
#include "interface/inspect_lists.h"
#include "interface/tdm_inspect_model.h"
#include "model/bus.h"
#include "model/memory.h"
#include "model/space.h"

using tdm::guarded;

tdm_arr *tdm_inspect_space_outgoing_mappings(const tdm_space *space)
{
  return tdm::handle_list(space->outgoing_mappings());
}

tdm_arr *tdm_inspect_space_incoming_mappings(const tdm_space *space)
{
  return tdm::handle_list(space->incoming_mappings());
}

tdm_arr *tdm_inspect_space_own_mappings(const tdm_space *space)
{
  return tdm::handle_list(space->own_mappings());
}

tdm_arr *tdm_inspect_bus_outgoing_mappings(const tdm_bus *bus)
{
  return tdm::handle_list(bus->outgoing_mappings());
}

tdm_arr *tdm_inspect_bus_incoming_mappings(const tdm_bus *bus)
{
  return tdm::handle_list(bus->incoming_mappings());
}

tdm_arr *tdm_inspect_bus_own_mappings(const tdm_bus *bus)
{
  return tdm::handle_list(bus->own_mappings());
}

tdm_arr *tdm_inspect_memory_incoming_mappings(const tdm_memory *memory)
{
  return tdm::handle_list(memory->incoming_mappings());
}

tdm_arr *tdm_inspect_memory_own_mappings(const tdm_memory *memory)
{
  return tdm::handle_list(memory->own_mappings());
}

int tdm_inspect_get_mapping(const tdm_mapping *mapping, tdm_inspect_mapping *out)
{
  return guarded([&] {
    *out = {.name = tdm::text_result(mapping->name()),
            .source = mapping->source(),
            .destination = mapping->destination(),
            .src_offset = mapping->src_offset,
            .dest_offset = mapping->dest_offset,
            .size = mapping->size,
            .src_width = mapping->source_width(),
            .src_line_low = mapping->src_dbits.low,
            .src_line_high = mapping->src_dbits.high,
            .dest_width = mapping->destination_width(),
            .dest_line_low = mapping->dest_dbits.low,
            .dest_line_high = mapping->dest_dbits.high,
            .bank = mapping->bank,
            .dest_bank = mapping->dest_bank,
            .reserved = mapping->reserved ? 1 : 0,
            .priority = mapping->priority,
            .exec_priority = mapping->exec_priority,
            .source_interval = mapping->source_interval().to_record(),
            .destination_interval = mapping->destination_interval().to_record()};
    return 1;
  });
}
