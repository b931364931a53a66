// The model as a tree for people, in the words of the language: what there is, how large it is, how
// it is connected, and where it shows up. Defaults are left out, and layouts are counted, as the
// verb `layout` shows them.
//
//   processor chip  derivative chip, chip.tdm:40
//   ├─ core cpu  architecture arm, little-endian
//   │  ├─ bus ahb  8-bit MAUs, 32 data lines
//   │  └─ space linear  id 1, 8-bit MAUs, 0x0..0x20010000
//   │     │  0x08000000..0x08100000    1 MiB  chip:flash
//   │     │  0x20000000..0x20010000   64 KiB  chip:sram
//   │     └─ map  0x0..0x100000000 → bus chip:cpu:ahb 0x0..0x100000000
//   └─ memories
//      └─ flash  rom  1 MiB  0x100000 MAUs of 8 bits
//         └─ map  bus chip:cpu:ahb 0x8000000..0x8100000 → 0x0..0x100000
#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include <fmt/format.h>
#include <tdm_c/tdm.h>
#include <tdm_c/tdm_inspect.h>

#include "address.h"
#include "format.h"
#include "memory_map.h"
#include "object_text.h"
#include "space_text.h"
#include "verbs.h"

namespace tool {

namespace {

class TextModel {
public:
  TextModel(const TextContext &context, const tdm_spec *spec, std::ostream &out)
      : context_(context), spec_(spec), memory_map_(spec), out_(out)
  {
  }

  void show() const
  {
    for (const tdm_processor *processor : processors_of(spec_)) print_tree(out_, of(processor));
    Node global{"global", {}, {}};
    add_buses(global, tdm_inspect_spec_buses(spec_));
    add_memories(global, tdm_spec_get_memories(spec_));
    if (!global.children.empty()) print_tree(out_, global);
    for (const std::string &failure : memory_map_.failures())
      out_ << "not shown: " << failure << '\n';
  }

private:
  [[nodiscard]] std::string place(const tdm_source_location *location) const
  {
    return place_text(context_.names, location);
  }

  [[nodiscard]] Node of(const tdm_processor *processor) const
  {
    Facts facts;
    facts.add("derivative " + text_of(tdm_processor_get_derivative_name(processor)));
    facts.add(place(tdm_processor_get_source_location(processor)));
    Node node = context_.node("processor", text_of(tdm_processor_get_name(processor)), facts,
                              TDM_OBJECT_PROCESSOR, processor);
    for (const tdm_core *core : cores_of(processor)) node.children.push_back(of(core));
    add_buses(node, tdm_inspect_processor_buses(processor));
    add_memories(node, tdm_processor_get_memories(processor));
    return node;
  }

  // ---- cores

  [[nodiscard]] static std::string names_of_cores(tdm_arr *cores)
  {
    std::string names;
    for (const tdm_core *core : take_elements<tdm_core *>(cores))
      names += " " + text_of(tdm_core_get_name(core));
    return names;
  }

  [[nodiscard]] Node of(const tdm_core *core) const
  {
    Facts facts;
    facts.add("architecture " + text_of(tdm_core_get_arch_name(core)));
    for (const int32_t order : take_elements<int32_t>(tdm_core_get_endianness(core)))
      facts.add(text_of(tdm_endianness_to_string(order)) + "-endian");
    if (const tdm_space *space = tdm_core_get_start_address_space(core))
      facts.add("starts in " + text_of(tdm_space_get_name(space)));
    if (const tdm_space *space = tdm_core_get_copytable_space(core))
      facts.add("copy table in " + text_of(tdm_space_get_name(space)));
    if (const int offset = tdm_inspect_core_space_id_offset(core))
      facts.add(fmt::format("space ids from {} on", offset));
    if (const std::string imported = names_of_cores(tdm_inspect_core_imported_cores(core));
        !imported.empty())
      facts.add("imports" + imported);
    facts.add(place(tdm_core_get_source_location(core)));
    Node node =
        context_.node("core", text_of(tdm_core_get_name(core)), facts, TDM_OBJECT_CORE, core);
    add_buses(node, tdm_inspect_core_buses(core));
    for (const tdm_space *space : spaces_of(core))
      node.children.push_back(space_node(context_, space, memory_map_.of(space)));
    return node;
  }

  // ---- buses

  void add_buses(Node &node, tdm_arr *buses) const
  {
    for (const tdm_bus *bus : take_elements<tdm_bus *>(buses)) node.children.push_back(of(bus));
  }

  [[nodiscard]] Node of(const tdm_bus *bus) const
  {
    Facts facts;
    facts.add(fmt::format("{}-bit MAUs", tdm_bus_get_mausize(bus)));
    facts.add(counted(static_cast<size_t>(tdm_bus_get_width(bus)), "data line"));
    if (const int width = tdm_bus_get_address_width(bus); width >= 0)
      facts.add(counted(static_cast<size_t>(width), "address line"));
    facts.add_if(tdm_bus_get_wishbone(bus) != 0, "wishbone");
    facts.add(place(tdm_bus_get_source_location(bus)));
    Node node = context_.node("bus", text_of(tdm_bus_get_name(bus)), facts, TDM_OBJECT_BUS, bus);
    node.children = context_.mappings({"bus", text_of(tdm_bus_get_full_name(bus))},
                                      tdm_inspect_bus_own_mappings(bus));
    return node;
  }

  // ---- memories

  void add_memories(Node &node, tdm_arr *arr) const
  {
    const auto memories = take_elements<tdm_memory *>(arr);
    if (memories.empty()) return;
    Table table;
    table.align_right(2);
    for (const tdm_memory *memory : memories)
      table.add({text_of(tdm_memory_get_name(memory)), memory_type_name(memory),
                 human_size(tdm_memory_get_size(memory), tdm_memory_get_mausize(memory)),
                 facts_of(memory)});
    const std::vector<std::string> lines = table.lines();
    Node list{"memories", {}, {}};
    for (size_t i = 0; i < memories.size(); ++i)
      list.children.push_back(
          {lines[i], context_.origins(TDM_OBJECT_MEMORY, memories[i]),
           context_.mappings({"memory", text_of(tdm_memory_get_full_name(memories[i]))},
                             tdm_inspect_memory_own_mappings(memories[i]))});
    node.children.push_back(std::move(list));
  }

  /// What few memories have is told of those alone.
  [[nodiscard]] static std::string facts_of(const tdm_memory *memory)
  {
    Facts facts;
    facts.add(fmt::format("{} MAUs of {} bits", hex(tdm_memory_get_size(memory)),
                          tdm_memory_get_mausize(memory)));
    facts.add_if(tdm_memory_is_reserved(memory) != 0, "reserved");
    const int priority = tdm_inspect_memory_priority(memory);
    const int exec_priority = tdm_inspect_memory_exec_priority(memory);
    if (priority != 1) facts.add(fmt::format("priority {}", priority));
    if (exec_priority != priority) facts.add(fmt::format("priority to execute {}", exec_priority));
    if (const int unit = tdm_inspect_memory_write_unit(memory); unit != 1)
      facts.add(fmt::format("write unit {}", unit));
    if (const char *mode = tdm_memory_get_write_mode(memory)) facts.add(text_of("written ") + mode);
    facts.add(fill_text(tdm_memory_get_fillspec(memory)));
    const std::pair<const char *, int> figures[] = {
        {"setup time", tdm_memory_get_setuptime(memory)},
        {"hold time", tdm_memory_get_holdtime(memory)},
        {"cycles", tdm_memory_get_cycles(memory)},
        {"area", tdm_memory_get_area(memory)}};
    for (const auto &[name, figure] : figures)
      if (figure != 0) facts.add(fmt::format("{} {}", name, figure));
    return facts.text();
  }

  TextContext context_;
  const tdm_spec *spec_;
  MemoryMap memory_map_;
  std::ostream &out_;
};

} // namespace

int show_text(const Options &options, const Session &session, std::ostream &out)
{
  TextModel({session.names(), options.origin}, session.spec(), out).show();
  return exit_ok;
}

} // namespace tool
