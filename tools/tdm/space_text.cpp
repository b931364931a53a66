#include "space_text.h"

#include <algorithm>
#include <utility>

#include <fmt/format.h>

#include "address.h"
#include "format.h"
#include "session.h"

namespace tool {

// ---- what all objects share

std::vector<std::string> TextContext::origins(int kind, const void *object) const
{
  return wants_origins ? origin_lines(names, kind, object) : std::vector<std::string>();
}

Node TextContext::node(const std::string &what, const std::string &name, const Facts &facts,
                       int kind, const void *object) const
{
  std::string text = what;
  if (!name.empty()) text += " " + name;
  if (!facts.text().empty()) text += "  " + facts.text();
  return {std::move(text), origins(kind, object), {}};
}

namespace {

/// Whether a `map` of a bus gave both, one for each direction.
bool is_way_back(const tdm_inspect_mapping &mapping, const tdm_inspect_mapping &other)
{
  return end_of(mapping.source).name == end_of(other.destination).name &&
         end_of(mapping.destination).name == end_of(other.source).name &&
         mapping.src_offset == other.dest_offset && mapping.dest_offset == other.src_offset;
}

/// "0x0..0x100", with the name of the end and its unit where they differ from those of the owner.
std::string text_of_end(const End &end, const End &owner, const tdm_interval &at, int other_mau)
{
  std::string text;
  if (end.name != owner.name) text = std::string(end.kind) + " " + end.name + " ";
  text += span_text(at);
  if (at.low.mau != other_mau) text += " " + unit_text(at.low.mau);
  return text;
}

std::string mapping_text(const End &owner, const tdm_inspect_mapping &mapping, bool both_ways)
{
  const End source = end_of(mapping.source);
  const End destination = end_of(mapping.destination);
  const tdm_interval &from = mapping.source_interval;
  const tdm_interval &to = mapping.destination_interval;
  std::string text = "map";
  if (mapping.name != nullptr) text += std::string(" ") + mapping.name;
  text += "  " + text_of_end(source, owner, from, to.low.mau) + (both_ways ? " ↔ " : " → ") +
          text_of_end(destination, owner, to, from.low.mau);
  Facts facts;
  facts.add(lines_text(mapping, true));
  facts.add_if(mapping.reserved != 0, "reserved");
  // As it was written: what crossing it from its owner on adds.
  const int32_t sign = destination.name == owner.name ? -1 : 1;
  facts.add(priority_text(sign * mapping.priority, sign * mapping.exec_priority));
  return facts.text().empty() ? text : text + "  " + facts.text();
}

} // namespace

std::vector<Node> TextContext::mappings(const End &owner, tdm_arr *mappings) const
{
  std::vector<tdm_inspect_mapping> records;
  std::vector<const tdm_mapping *> handles;
  for (const tdm_mapping *mapping : take_elements<tdm_mapping *>(mappings)) {
    tdm_inspect_mapping record;
    if (tdm_inspect_get_mapping(mapping, &record) == 0) continue;
    records.push_back(record);
    handles.push_back(mapping);
  }
  std::vector<Node> nodes;
  for (size_t i = 0; i < records.size(); ++i) {
    const bool both_ways = i + 1 < records.size() && is_way_back(records[i], records[i + 1]);
    nodes.push_back(
        {mapping_text(owner, records[i], both_ways), origins(TDM_OBJECT_MAPPING, handles[i]), {}});
    if (both_ways) ++i;
  }
  return nodes;
}

// ---- spaces

namespace {

std::string quoted(const char *name)
{
  return name != nullptr ? "\"" + std::string(name) + "\"" : "";
}

std::string name_of(const tdm_space *space)
{
  return space != nullptr ? text_of(tdm_space_get_name(space)) : "";
}

std::string with_word(const char *word, const std::string &text)
{
  return text.empty() ? "" : std::string(word) + " " + text;
}

std::string grows_text(int direction)
{
  return direction == TDM_HIGH_TO_LOW ? "grows high_to_low" : "grows low_to_high";
}

std::string names_of(tdm_arr *spaces)
{
  std::string names;
  for (const tdm_space *space : take_elements<tdm_space *>(spaces))
    names += (names.empty() ? "" : "|") + name_of(space);
  return names;
}

void add_destinations(Facts &facts, const tdm_space *by_default, tdm_arr *destinations)
{
  facts.add(with_word("dest", name_of(by_default)));
  for (const auto &pair : take_elements<tdm_inspect_copy_destination>(destinations))
    facts.add("dest " + name_of(pair.source) + " = " + name_of(pair.destination));
}

class SpaceText {
public:
  SpaceText(const TextContext &context, const tdm_space *space)
      : context_(context), space_(space), mau_(tdm_space_get_mausize(space))
  {
  }

  [[nodiscard]] Node node(const std::vector<Region> &regions) const
  {
    Node node = context_.node("space", name_of(space_), own_facts(), TDM_OBJECT_SPACE, space_);
    for (std::string &line : table_of(regions)) node.details.push_back(std::move(line));
    node.children = context_.mappings({"space", text_of(tdm_space_get_full_name(space_))},
                                      tdm_inspect_space_own_mappings(space_));
    add_start_address(node);
    add_list(node, tdm_inspect_space_stacks(space_), &SpaceText::of_stack);
    add_list(node, tdm_inspect_space_heaps(space_), &SpaceText::of_heap);
    add_tables(node);
    add_list(node, tdm_inspect_space_vector_tables(space_), &SpaceText::of_vector_table);
    add_restrictions(node);
    add_list(node, tdm_inspect_space_section_layouts(space_), &SpaceText::of_layout);
    return node;
  }

private:
  template <class Object>
  void add_list(Node &node, tdm_arr *objects, Node (SpaceText::*make)(Object *) const) const
  {
    for (Object *object : take_elements<Object *>(objects))
      node.children.push_back((this->*make)(object));
  }

  [[nodiscard]] std::string pages_text() const
  {
    const int page = tdm_space_get_pagesize(space_);
    if (page == 0) return "";
    std::string text = "pages of " + hex(page) + " MAUs (" + human_size(page, mau_) + ")";
    const char *before = " with ";
    for (const tdm_range *range : take_elements<tdm_range *>(tdm_space_get_page_ranges(space_))) {
      tdm_addressvalue start;
      tdm_range_get_start_address(range, &start);
      text += before + hex(start.value) + ".." + hex(start.value + tdm_range_get_size(range));
      before = " | ";
    }
    return text;
  }

  [[nodiscard]] Facts own_facts() const
  {
    tdm_interval valid;
    tdm_space_get_valid_interval(space_, &valid);
    Facts facts;
    facts.add(fmt::format("id {}", tdm_space_get_id(space_)));
    facts.add(fmt::format("{}-bit MAUs", mau_));
    facts.add(span_text(valid));
    if (const int alignment = tdm_space_get_alignment(space_))
      facts.add("align " + counted(static_cast<size_t>(alignment), "MAU"));
    facts.add(pages_text());
    facts.add_if(tdm_space_get_page_restrict_sections(space_) != 0, "sections within a page");
    facts.add_if(tdm_space_get_locate_direction(space_) == TDM_HIGH_TO_LOW, "filled from the top");
    facts.add(
        with_word("address literals in", name_of(tdm_space_get_address_literal_space(space_))));
    facts.add(with_word("stands for", names_of(tdm_inspect_space_members(space_))));
    return facts;
  }

  [[nodiscard]] std::vector<std::string> table_of(const std::vector<Region> &regions) const
  {
    Table table;
    table.align_right(1);
    int digits = 1;
    for (const Region &region : regions)
      digits = std::max(digits, static_cast<int>(hex(region.span.high.value).size()) - 2);
    for (const Region &region : regions) {
      Facts facts;
      facts.add_if(region.reserved, "reserved");
      facts.add(mask_text(region.span));
      table.add({span_text(region.span, digits), human_size_of(region.span),
                 text_of(tdm_memory_get_full_name(region.memory)), facts.text()});
    }
    return table.lines();
  }

  // ---- definitions

  void add_start_address(Node &node) const
  {
    const tdm_start_address *start = tdm_space_get_start_address(space_);
    tdm_inspect_start_address record;
    if (start == nullptr || tdm_inspect_get_start_address(start, &record) == 0) return;
    Facts facts;
    facts.add(with_word("run_addr", address_text(record.address)));
    if (record.bank >= 0) facts.add(fmt::format("bank {}", record.bank));
    node.children.push_back(context_.node("start_address", quoted(record.symbol), facts,
                                          TDM_OBJECT_START_ADDRESS, start));
  }

  [[nodiscard]] Node of_stack(tdm_stack_def *stack) const
  {
    Facts facts;
    facts.add(with_word("min_size", size_text(tdm_inspect_stack_def_minimal_size(stack), mau_)));
    add_room_facts(facts, tdm_stack_def_get_alignment(stack), tdm_stack_def_get_fixed(stack),
                   tdm_inspect_stack_def_direction(stack));
    facts.add(with_word("id", number_text(tdm_inspect_stack_def_id(stack))));
    return context_.node("stack", quoted(tdm_stack_def_get_name(stack)), facts,
                         TDM_OBJECT_STACK_DEF, stack);
  }

  [[nodiscard]] Node of_heap(tdm_heap_def *heap) const
  {
    Facts facts;
    facts.add(with_word("min_size", size_text(tdm_inspect_heap_def_minimal_size(heap), mau_)));
    add_room_facts(facts, tdm_heap_def_get_alignment(heap), tdm_heap_def_get_fixed(heap),
                   tdm_inspect_heap_def_direction(heap));
    return context_.node("heap", quoted(tdm_heap_def_get_name(heap)), facts, TDM_OBJECT_HEAP_DEF,
                         heap);
  }

  static void add_room_facts(Facts &facts, int alignment, int fixed, int direction)
  {
    if (alignment > 1) facts.add(fmt::format("align {}", alignment));
    facts.add_if(fixed != 0, "fixed");
    facts.add(grows_text(direction));
  }

  void add_tables(Node &node) const
  {
    if (const tdm_copy_table *copies = tdm_inspect_space_copy_table(space_))
      node.children.push_back(
          context_.node("copytable", "", facts_of(copies), TDM_OBJECT_COPY_TABLE, copies));
    if (const tdm_direct_init *direct = tdm_inspect_space_direct_init(space_))
      node.children.push_back(
          context_.node("direct_init", "", facts_of(direct), TDM_OBJECT_DIRECT_INIT, direct));
  }

  [[nodiscard]] Node of_vector_table(tdm_vector_table *table) const
  {
    tdm_inspect_vector_table record{};
    tdm_inspect_get_vector_table(table, &record);
    Facts facts;
    facts.add(with_word("size", number_text(record.size)));
    facts.add(with_word("vector_size", number_text(record.vector_size)));
    facts.add(with_word("run_addr", address_text(record.run_address)));
    facts.add(with_word("template", quoted(record.template_name)));
    facts.add(with_word("vector_prefix", quoted(record.vector_name_prefix)));
    facts.add(with_word("id_symbol_prefix", quoted(record.id_symbol_prefix)));
    facts.add_if(record.copy != 0, "copy");
    const size_t defined =
        take_elements<tdm_vector *>(tdm_inspect_vector_table_vectors(table)).size();
    facts.add(counted(defined, "definition") + " of vectors");
    return context_.node("vector_table", quoted(tdm_vector_table_get_name(table)), facts,
                         TDM_OBJECT_VECTOR_TABLE, table);
  }

  void add_restrictions(Node &node) const
  {
    const tdm_bank_def *banks = tdm_inspect_space_bank_def(space_);
    tdm_inspect_bank_def record;
    if (banks != nullptr && tdm_inspect_get_bank_def(banks, &record) != 0) {
      Facts facts;
      const auto numbers = take_elements<int32_t>(tdm_inspect_bank_def_banks(banks));
      facts.add(with_word("banks", fmt::format("{}", fmt::join(numbers, " "))));
      facts.add(with_word("space", text_of(record.space_name)));
      facts.add(with_word("stub template", quoted(record.stub_template)));
      facts.add(with_word("switch template", quoted(record.switch_template)));
      node.children.push_back(context_.node("bank", "", facts, TDM_OBJECT_BANK_DEF, banks));
    }
    for (const tdm_reserved_range *range :
         take_elements<tdm_reserved_range *>(tdm_inspect_space_reserved_ranges(space_)))
      node.children.push_back({"reserved  " + hex(tdm_reserved_range_get_low(range)) + ".." +
                                   hex(tdm_reserved_range_get_high(range)),
                               {},
                               {}});
    const auto ids = take_elements<int32_t>(tdm_inspect_space_prohibited_spaces(space_));
    if (!ids.empty())
      node.children.push_back(
          {fmt::format("prohibit_references_to  space ids {}", fmt::join(ids, ", ")), {}, {}});
    add_list(node, tdm_inspect_space_input_modifications(space_), &SpaceText::of_modification);
  }

  [[nodiscard]] Node of_modification(tdm_input_modification *modification) const
  {
    Facts facts;
    facts.add(with_word("space", name_of(tdm_inspect_input_modification_space(modification))));
    const size_t selections = take_elements<tdm_selection_statement *>(
                                  tdm_inspect_input_modification_selections(modification))
                                  .size();
    facts.add(counted(selections, "select"));
    return context_.node("modify input", "", facts, TDM_OBJECT_INPUT_MODIFICATION, modification);
  }

  [[nodiscard]] Node of_layout(tdm_section_layout *layout) const
  {
    Facts facts;
    const int direction = tdm_inspect_section_layout_direction(layout);
    if (direction >= 0)
      facts.add(direction == TDM_HIGH_TO_LOW ? "direction high_to_low" : "direction low_to_high");
    const auto statements = take_elements<tdm_statement *>(
        tdm_inspect_block_statements(tdm_inspect_section_layout_block(layout)));
    facts.add(counted(statements.size(), "statement"));
    facts.add(place_text(context_.names, tdm_section_layout_get_source_location(layout)));
    return context_.node("section_layout", "", facts, TDM_OBJECT_SECTION_LAYOUT, layout);
  }

  const TextContext &context_;
  const tdm_space *space_;
  int mau_;
};

} // namespace

Facts facts_of(const tdm_copy_table *copies)
{
  Facts facts;
  tdm_inspect_copy_table table;
  if (tdm_inspect_get_copy_table(copies, &table) == 0) return facts;
  if (table.alignment > 1) facts.add(fmt::format("align {}", table.alignment));
  if (table.copy_unit > 0) facts.add(fmt::format("copy_unit {}", table.copy_unit));
  facts.add_if(table.page_restrict_rom_copies != 0, "page");
  add_destinations(facts, table.default_destination, tdm_inspect_copy_table_destinations(copies));
  for (const auto *part :
       take_elements<tdm_copy_sub_table *>(tdm_inspect_copy_table_sub_tables(copies)))
    facts.add("table " + quoted(tdm_inspect_copy_sub_table_symbol(part)) + " of " +
              names_of(tdm_inspect_copy_sub_table_spaces(part)));
  return facts;
}

Facts facts_of(const tdm_direct_init *direct)
{
  Facts facts;
  tdm_inspect_direct_init init;
  if (tdm_inspect_get_direct_init(direct, &init) == 0) return facts;
  if (init.alignment > 1) facts.add(fmt::format("align {}", init.alignment));
  add_destinations(facts, init.default_destination, tdm_inspect_direct_init_destinations(direct));
  return facts;
}

Node space_node(const TextContext &context, const tdm_space *space,
                const std::vector<Region> &regions)
{
  if (is_placeholder(space))
    return {"space " + name_of(space) + "  for what isn't allocated", {}, {}};
  return SpaceText(context, space).node(regions);
}

} // namespace tool
