// The model as a tree for people: what there is, how large it is, and where it shows up.
//
//   processor chip  derivative chip, chip.tdm:40
//   ├─ core cpu  architecture arm, little-endian
//   │  └─ space linear  id 1, 8-bit MAUs, 0x0..0x20010000
//   │        0x08000000..0x08100000    1 MiB  flash
//   │        0x20000000..0x20010000   64 KiB  sram
//   └─ memories
//      ├─ flash  rom    1 MiB  0x100000 MAUs of 8 bits
//      └─ sram   ram   64 KiB  0x10000 MAUs of 8 bits
#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include <tdm_c/tdm.h>

#include "address.h"
#include "format.h"
#include "memory_map.h"
#include "tree.h"
#include "verbs.h"

namespace tool {

namespace {

class TextModel {
public:
  TextModel(const Session &session, std::ostream &out)
      : session_(session), memory_map_(session.spec()), out_(out)
  {
  }

  void show() const
  {
    for (const tdm_processor *processor : processors_of(session_.spec()))
      print_tree(out_, of(processor));
    const auto global = take_elements<tdm_memory *>(tdm_spec_get_memories(session_.spec()));
    if (!global.empty()) print_tree(out_, {"global memories", {}, of(global)});
    for (const std::string &failure : memory_map_.failures())
      out_ << "not shown: " << failure << '\n';
  }

private:
  [[nodiscard]] std::string place(const tdm_source_location *location) const
  {
    return place_text(session_.names(), location);
  }

  [[nodiscard]] Node of(const tdm_processor *processor) const
  {
    Facts facts;
    facts.add("derivative " + text_of(tdm_processor_get_derivative_name(processor)));
    facts.add(place(tdm_processor_get_source_location(processor)));
    Node node{
        "processor " + text_of(tdm_processor_get_name(processor)) + "  " + facts.text(), {}, {}};
    for (const tdm_core *core : cores_of(processor)) node.children.push_back(of(core));
    const auto memories = take_elements<tdm_memory *>(tdm_processor_get_memories(processor));
    if (!memories.empty()) node.children.push_back({"memories", {}, of(memories)});
    return node;
  }

  [[nodiscard]] static Node of_placeholder(const tdm_space *space)
  {
    return {"space " + text_of(tdm_space_get_name(space)) + "  for what isn't allocated", {}, {}};
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
    Node node{"core " + text_of(tdm_core_get_name(core)) + "  " + facts.text(), {}, {}};
    for (const tdm_space *space : spaces_of(core))
      node.children.push_back(is_placeholder(space) ? of_placeholder(space) : of(space));
    return node;
  }

  [[nodiscard]] Node of(const tdm_space *space) const
  {
    tdm_interval valid;
    tdm_space_get_valid_interval(space, &valid);
    const int mau = tdm_space_get_mausize(space);
    Facts facts;
    facts.add("id " + std::to_string(tdm_space_get_id(space)));
    facts.add(std::to_string(mau) + "-bit MAUs");
    facts.add(span_text(valid));
    if (const int alignment = tdm_space_get_alignment(space))
      facts.add("align " + counted(static_cast<size_t>(alignment), "MAU"));
    if (const int page = tdm_space_get_pagesize(space))
      facts.add("pages of " + hex(page) + " MAUs (" + human_size(page, mau) + ")");
    facts.add_if(tdm_space_get_page_restrict_sections(space) != 0, "sections within a page");
    facts.add_if(tdm_space_get_locate_direction(space) == TDM_HIGH_TO_LOW, "filled from the top");
    if (const tdm_space *literals = tdm_space_get_address_literal_space(space))
      facts.add("address literals in " + text_of(tdm_space_get_name(literals)));
    return {"space " + text_of(tdm_space_get_name(space)) + "  " + facts.text(),
            regions(space, mau),
            {}};
  }

  [[nodiscard]] std::vector<std::string> regions(const tdm_space *space, int mau) const
  {
    Table table;
    table.align_right(1);
    int digits = 1;
    for (const Region &region : memory_map_.of(space))
      digits = std::max(digits, static_cast<int>(hex(region.span.high.value).size()) - 2);
    for (const Region &region : memory_map_.of(space)) {
      Facts facts;
      facts.add_if(region.reserved, "reserved");
      facts.add(mask_text(region.span));
      table.add({span_text(region.span, digits), human_size(size_of(region.span), mau),
                 text_of(tdm_memory_get_full_name(region.memory)), facts.text()});
    }
    return table.lines();
  }

  [[nodiscard]] static std::vector<Node> of(const std::vector<tdm_memory *> &memories)
  {
    Table table;
    table.align_right(2);
    for (const tdm_memory *memory : memories) {
      const int mau = tdm_memory_get_mausize(memory);
      const int64_t size = tdm_memory_get_size(memory);
      Facts facts;
      facts.add(hex(size) + " MAUs of " + std::to_string(mau) + " bits");
      facts.add_if(tdm_memory_is_reserved(memory) != 0, "reserved");
      if (const char *mode = tdm_memory_get_write_mode(memory))
        facts.add(text_of("written ") + mode);
      table.add({text_of(tdm_memory_get_name(memory)), memory_type_name(memory),
                 human_size(size, mau), facts.text()});
    }
    std::vector<Node> nodes;
    for (std::string &line : table.lines()) nodes.push_back({std::move(line), {}, {}});
    return nodes;
  }

  const Session &session_;
  MemoryMap memory_map_;
  std::ostream &out_;
};

} // namespace

int show_text(const Session &session, std::ostream &out)
{
  TextModel(session, out).show();
  return exit_ok;
}

} // namespace tool
