#include "item_reader.h"

#include <optional>
#include <utility>

#include "session.h"

namespace tool {

namespace {

std::string letters_of(const tdm_attributes *attributes)
{
  std::string letters;
  const auto add = [&](int flag, char letter) {
    if (flag != 0) letters += letter;
  };
  add(tdm_attributes_is_readable(attributes), 'r');
  add(tdm_attributes_is_writable(attributes), 'w');
  add(tdm_attributes_is_executable(attributes), 'x');
  add(tdm_attributes_is_inited(attributes), 'i');
  add(tdm_attributes_is_scratch(attributes), 's');
  add(tdm_attributes_is_blanked(attributes), 'b');
  add(tdm_inspect_attributes_is_p(attributes), 'p');
  return letters;
}

const char *allowance_of(const tdm_reserved_statement *statement)
{
  if (tdm_reserved_statement_get_alloc_allowed_ranged(statement) != 0) return "ranged";
  return tdm_reserved_statement_get_alloc_allowed_absolute(statement) != 0 ? "absolute" : "";
}

} // namespace

void ItemReader::keep_failure(const std::string &text)
{
  if (seen_.insert(text).second) failures_.push_back(text);
}

Item ItemReader::of(ItemKind kind)
{
  return {kind, {}, nullptr, {}, {}};
}

// ---- definitions of the space

Item ItemReader::of(const tdm_stack_def *definition)
{
  return {ItemKind::stack_definition,
          text_of(tdm_stack_def_get_name(definition)),
          tdm_stack_def_get_source_location(definition),
          {{"min_size", ask<Size>(tdm_stack_def_get_minimal_size, definition)},
           {"align", Alignment{tdm_stack_def_get_alignment(definition)}},
           {"fixed", tdm_stack_def_get_fixed(definition) != 0}},
          {}};
}

Item ItemReader::of(const tdm_heap_def *definition)
{
  return {ItemKind::heap_definition,
          text_of(tdm_heap_def_get_name(definition)),
          tdm_heap_def_get_source_location(definition),
          {{"min_size", ask<Size>(tdm_heap_def_get_minimal_size, definition)},
           {"align", Alignment{tdm_heap_def_get_alignment(definition)}},
           {"fixed", tdm_heap_def_get_fixed(definition) != 0}},
          {}};
}

Item ItemReader::of(const tdm_vector_table *table)
{
  return {ItemKind::vector_table,
          text_of(tdm_vector_table_get_name(table)),
          tdm_vector_table_get_source_location(table),
          {{"vectors", ask<Vectors>(tdm_vector_table_get_size, table)},
           {"vector_size", ask<Size>(tdm_vector_table_get_vector_size, table)},
           {"run_addr", ask<Address>(tdm_vector_table_get_run_address, table)}},
          {}};
}

Item ItemReader::of(const tdm_reserved_range *range)
{
  const Range bounds{tdm_reserved_range_get_low(range), tdm_reserved_range_get_high(range)};
  return {ItemKind::reserved_range, {}, nullptr, {{"range", bounds}}, {}};
}

// ---- statements

Item ItemReader::of(const tdm_section_layout *layout)
{
  return {ItemKind::layout, {}, tdm_section_layout_get_source_location(layout), {}, {}};
}

Item ItemReader::of(const tdm_heap_statement *statement)
{
  return {ItemKind::heap,
          text_of(tdm_heap_statement_get_name(statement)),
          tdm_heap_statement_get_source_location(statement),
          {{"size", ask<Size>(tdm_heap_statement_get_size, statement)}},
          {}};
}

Item ItemReader::of(const tdm_stack_statement *statement)
{
  return {ItemKind::stack,
          text_of(tdm_stack_statement_get_name(statement)),
          tdm_stack_statement_get_source_location(statement),
          {{"size", ask<Size>(tdm_stack_statement_get_size, statement)}},
          {}};
}

Item ItemReader::of(const tdm_reserved_statement *statement)
{
  return {ItemKind::reserved,
          text_of(tdm_reserved_statement_get_name(statement)),
          tdm_reserved_statement_get_source_location(statement),
          {{"size", ask<Size>(tdm_reserved_statement_get_size, statement)},
           {"attributes", letters_of(tdm_reserved_statement_get_attributes(statement))},
           {"alloc_allowed", allowance_of(statement)}},
          {}};
}

Item ItemReader::of(const tdm_selection_statement *statement)
{
  const char *name = tdm_selection_statement_get_literal_section_name(statement);
  const auto selectors =
      take_elements<const tdm_section_selector *>(tdm_selection_statement_get_selectors(statement));
  return {ItemKind::select,
          name != nullptr ? std::optional<std::string>(name) : std::nullopt,
          tdm_selection_statement_get_source_location(statement),
          {{"attribute_conditions", Conditions{static_cast<int64_t>(selectors.size())}},
           {"ref_tree", tdm_selection_statement_use_reference_tree(statement) != 0}},
          {}};
}

Item ItemReader::of(const tdm_table_statement *statement)
{
  return {ItemKind::copytable, {}, tdm_table_statement_get_source_location(statement), {}, {}};
}

Item ItemReader::of(const tdm_create_section_statement *statement)
{
  return {ItemKind::section,
          text_of(tdm_create_section_statement_get_name(statement)),
          tdm_create_section_statement_get_source_location(statement),
          {{"size", ask<Size>(tdm_create_section_statement_get_size, statement)},
           {"attributes", letters_of(tdm_create_section_statement_get_attributes(statement))}},
          {}};
}

Item ItemReader::of(const tdm_group *group, const tdm_statement_env *outer,
                    const tdm_statement_env *inner)
{
  Item item{ItemKind::group, {}, tdm_group_get_source_location(group), {}, {}};
  if (const tdm_group_location *location = tdm_group_get_address(group))
    item.facts.push_back(fact_of(location));
  int64_t own = 0;
  int64_t inherited = 0;
  const bool known = succeeds([&] {
    own = tdm_statement_env_get_alignment(inner);
    inherited = tdm_statement_env_get_alignment(outer);
  });
  if (!known)
    item.facts.push_back({"align", Unknown{}});
  else if (own != inherited)
    item.facts.push_back({"align", Alignment{own}});
  return item;
}

Fact ItemReader::fact_of(const tdm_group_location *location)
{
  if (tdm_group_location_is_address(location) != 0)
    return {"address", ask<Address>(tdm_group_location_get_address, location)};
  std::vector<Range> ranges;
  const bool known = succeeds([&] {
    const int count = tdm_group_location_count_ranges(location);
    for (int i = 0; i < count; ++i)
      ranges.push_back({tdm_group_location_get_range_start(location, i),
                        tdm_group_location_get_range_end(location, i)});
  });
  return {"ranges", known ? Value(std::move(ranges)) : Value(Unknown{})};
}

} // namespace tool
