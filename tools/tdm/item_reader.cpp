#include "item_reader.h"

#include <utility>

#include "address.h"
#include "format.h"
#include "group_text.h"
#include "location_banks.h"
#include "object_text.h"
#include "outline_json.h"
#include "session.h"
#include "space_text.h"

namespace tool {

namespace {

const char *allowance_of(const tdm_reserved_statement *statement)
{
  if (tdm_reserved_statement_get_alloc_allowed_ranged(statement) != 0) return "ranged";
  return tdm_reserved_statement_get_alloc_allowed_absolute(statement) != 0 ? "absolute" : "";
}

Fact phrase(const std::string &text)
{
  return {"", Phrase{text}};
}

std::optional<tdm_srcpos> place_of(const tdm_source_location *location)
{
  if (location == nullptr) return std::nullopt;
  return tdm_srcpos{tdm_source_location_get_filename(location),
                    tdm_source_location_get_line_number(location),
                    tdm_source_location_get_column_number(location), nullptr};
}

/// By the first of its parts that is known.
std::optional<tdm_srcpos> place_of(int kind, const void *object)
{
  for (const char *key : take_elements<const char *>(tdm_inspect_position_keys(kind, object))) {
    tdm_srcpos place;
    if (tdm_inspect_position(kind, object, key, &place) == 1) return place;
  }
  return std::nullopt;
}

const char *direction_phrase(int direction)
{
  return direction == TDM_HIGH_TO_LOW   ? "direction high_to_low"
         : direction == TDM_LOW_TO_HIGH ? "direction low_to_high"
                                        : "";
}

std::string with_word(const char *word, const std::string &text)
{
  return text.empty() ? "" : std::string(word) + " " + text;
}

} // namespace

void ItemReader::keep_failure(const std::string &text)
{
  if (seen_.insert(text).second) failures_.push_back(text);
}

// ---- definitions of the space

Item ItemReader::of(const tdm_stack_def *definition)
{
  const bool falls = tdm_inspect_stack_def_direction(definition) == TDM_HIGH_TO_LOW;
  return {.kind = ItemKind::stack_definition,
          .name = text_of(tdm_stack_def_get_name(definition)),
          .place = place_of(tdm_stack_def_get_source_location(definition)),
          .facts = {{"min_size", ask<Size>(tdm_stack_def_get_minimal_size, definition,
                                           tdm_inspect_stack_def_minimal_size(definition))},
                    {"align", Alignment{tdm_stack_def_get_alignment(definition)}},
                    {"fixed", tdm_stack_def_get_fixed(definition) != 0},
                    phrase(falls ? "grows high_to_low" : ""),
                    phrase(with_word("id", quietly([&] {
                                       return number_text(tdm_inspect_stack_def_id(definition));
                                     })))},
          .written = json_of(definition)};
}

Item ItemReader::of(const tdm_heap_def *definition)
{
  const bool falls = tdm_inspect_heap_def_direction(definition) == TDM_HIGH_TO_LOW;
  return {.kind = ItemKind::heap_definition,
          .name = text_of(tdm_heap_def_get_name(definition)),
          .place = place_of(tdm_heap_def_get_source_location(definition)),
          .facts = {{"min_size", ask<Size>(tdm_heap_def_get_minimal_size, definition,
                                           tdm_inspect_heap_def_minimal_size(definition))},
                    {"align", Alignment{tdm_heap_def_get_alignment(definition)}},
                    {"fixed", tdm_heap_def_get_fixed(definition) != 0},
                    phrase(falls ? "grows high_to_low" : "")},
          .written = json_of(definition)};
}

Item ItemReader::of(const tdm_copy_table *table)
{
  return {.kind = ItemKind::copy_table,
          .place = place_of(TDM_OBJECT_COPY_TABLE, table),
          .facts = {phrase(facts_of(table).text())},
          .written = json_of(table)};
}

Item ItemReader::of(const tdm_direct_init *init)
{
  return {.kind = ItemKind::direct_init,
          .place = place_of(TDM_OBJECT_DIRECT_INIT, init),
          .facts = {phrase(facts_of(init).text())},
          .written = json_of(init)};
}

Item ItemReader::of(const tdm_vector_table *table)
{
  tdm_inspect_vector_table record{};
  tdm_inspect_get_vector_table(table, &record);
  Facts templates;
  if (record.template_name != nullptr)
    templates.add("template \"" + std::string(record.template_name) + "\"");
  if (record.copy != 0) templates.add("copy");
  return {.kind = ItemKind::vector_table,
          .name = text_of(tdm_vector_table_get_name(table)),
          .place = place_of(tdm_vector_table_get_source_location(table)),
          .facts = {{"vectors", ask<Vectors>(tdm_vector_table_get_size, table, record.size)},
                    {"vector_size",
                     ask<Size>(tdm_vector_table_get_vector_size, table, record.vector_size)},
                    {"run_addr",
                     ask<Address>(tdm_vector_table_get_run_address, table, record.run_address)},
                    phrase(templates.text())},
          .written = quietly([&] { return json_vector_table(context_, table); })};
}

Item ItemReader::of(const tdm_reserved_range *range)
{
  const Range bounds{tdm_reserved_range_get_low(range), tdm_reserved_range_get_high(range)};
  return {.kind = ItemKind::reserved_range, .facts = {{"range", bounds}}};
}

// ---- statements

Item ItemReader::of(const tdm_section_layout *layout)
{
  return {.kind = ItemKind::layout,
          .place = place_of(tdm_section_layout_get_source_location(layout)),
          .facts = {phrase(direction_phrase(tdm_inspect_section_layout_direction(layout)))},
          .written = json_of(layout)};
}

Item ItemReader::of(const tdm_block *block)
{
  return {.kind = ItemKind::block, .place = place_of(TDM_OBJECT_BLOCK, block)};
}

Item ItemReader::of(const tdm_assignment *statement, const tdm_statement_env *env)
{
  tdm_inspect_assignment record{};
  tdm_inspect_get_assignment(statement, &record);
  const std::string value = quietly([&] {
    const std::string text = text_of(tdm_inspect_expression_text(record.value));
    const bool is_number = number_text(record.value) == text;
    const std::string number = address_text(record.value);
    return is_number || number == text ? text : number + " (" + text + ")";
  });
  return {.kind = ItemKind::assignment,
          .name = text_of(record.symbol),
          .place = place_of(TDM_OBJECT_ASSIGNMENT, statement),
          .head = (record.plain != 0 ? " = " : " := ") + value,
          .written = json_of(statement),
          .rules = rules_of(env)};
}

Item ItemReader::of(const tdm_if_statement *statement)
{
  const std::string condition = quietly([&] {
    return text_of(tdm_inspect_expression_text(tdm_inspect_if_statement_condition(statement)));
  });
  return {.kind = ItemKind::if_statement,
          .place = place_of(TDM_OBJECT_IF_STATEMENT, statement),
          .head = " (" + condition + ")",
          .written = json_of(statement)};
}

Item ItemReader::of(const tdm_heap_statement *statement, const tdm_statement_env *env)
{
  return {.kind = ItemKind::heap,
          .name = text_of(tdm_heap_statement_get_name(statement)),
          .place = place_of(tdm_heap_statement_get_source_location(statement)),
          .facts = {{"size", ask<Size>(tdm_heap_statement_get_size, statement,
                                       tdm_inspect_heap_statement_size(statement))}},
          .written = json_of(statement),
          .rules = rules_of(env)};
}

Item ItemReader::of(const tdm_stack_statement *statement, const tdm_statement_env *env)
{
  return {.kind = ItemKind::stack,
          .name = text_of(tdm_stack_statement_get_name(statement)),
          .place = place_of(tdm_stack_statement_get_source_location(statement)),
          .facts = {{"size", ask<Size>(tdm_stack_statement_get_size, statement,
                                       tdm_inspect_stack_statement_size(statement))}},
          .written = json_of(statement),
          .rules = rules_of(env)};
}

Item ItemReader::of(const tdm_reserved_statement *statement, const tdm_statement_env *env)
{
  return {.kind = ItemKind::reserved,
          .name = text_of(tdm_reserved_statement_get_name(statement)),
          .place = place_of(tdm_reserved_statement_get_source_location(statement)),
          .facts = {{"size", ask<Size>(tdm_reserved_statement_get_size, statement,
                                       tdm_inspect_reserved_statement_size(statement))},
                    {"attributes", letters_of(tdm_reserved_statement_get_attributes(statement))},
                    {"alloc_allowed", allowance_of(statement)},
                    phrase(fill_phrase(tdm_inspect_reserved_statement_fill(statement)))},
          .written = json_of(statement),
          .rules = rules_of(env)};
}

Item ItemReader::of(const tdm_memory_copy_statement *statement, const tdm_statement_env *env)
{
  tdm_inspect_memory_copy record{};
  tdm_inspect_get_memory_copy(statement, &record);
  return {.kind = ItemKind::memcopy,
          .name = text_of(record.name),
          .place = place_of(TDM_OBJECT_MEMORY_COPY_STATEMENT, statement),
          .facts = {phrase("memory " + text_of(tdm_memory_get_full_name(record.memory))),
                    phrase(fill_phrase(record.fill))},
          .written = json_of(statement),
          .rules = rules_of(env)};
}

Item ItemReader::of(const tdm_struct_statement *statement, const tdm_statement_env *env)
{
  Table members;
  for (const auto &member :
       take_elements<tdm_inspect_struct_member>(tdm_inspect_struct_statement_members(statement)))
    members.add(
        {quietly([&] { return number_text(member.value); }), ": " + std::to_string(member.size)});
  return {.kind = ItemKind::struct_statement,
          .name = text_of(tdm_inspect_struct_statement_name(statement)),
          .place = place_of(TDM_OBJECT_STRUCT_STATEMENT, statement),
          .lines = members.lines(),
          .written = json_of(statement),
          .rules = rules_of(env)};
}

Item ItemReader::of(const tdm_selection_statement *statement, const tdm_statement_env *env)
{
  const char *name = tdm_selection_statement_get_literal_section_name(statement);
  const char *pattern = tdm_inspect_selection_statement_pattern(statement);
  const size_t conditions =
      take_elements<const tdm_section_selector *>(tdm_selection_statement_get_selectors(statement))
          .size();
  Item item{.kind = ItemKind::select,
            .place = place_of(tdm_selection_statement_get_source_location(statement)),
            .facts = {phrase(with_word("attributes", conditions_text(statement))),
                      {"attribute_conditions", Count{static_cast<int64_t>(conditions)}, false},
                      {"ref_tree", tdm_selection_statement_use_reference_tree(statement) != 0}},
            .written = json_of(statement),
            .rules = rules_of(env)};
  if (name != nullptr)
    item.name = name;
  else if (pattern != nullptr)
    item.head = " \"" + std::string(pattern) + "\"";
  return item;
}

Item ItemReader::of(const tdm_table_statement *statement, const tdm_statement_env *env)
{
  return {.kind = ItemKind::copytable,
          .place = place_of(tdm_table_statement_get_source_location(statement)),
          .rules = rules_of(env)};
}

Item ItemReader::of(const tdm_create_section_statement *statement, const tdm_statement_env *env)
{
  tdm_inspect_create_section record{};
  tdm_inspect_get_create_section(statement, &record);
  Facts more;
  more.add(with_word("blocksize", quietly([&] { return size_text(record.block_size, mau_); })));
  if (record.overflow_name != nullptr)
    more.add("overflow \"" + std::string(record.overflow_name) + "\"");
  more.add(fill_phrase(record.fill));
  return {
      .kind = ItemKind::section,
      .name = text_of(tdm_create_section_statement_get_name(statement)),
      .place = place_of(tdm_create_section_statement_get_source_location(statement)),
      .facts = {{"size", ask<Size>(tdm_create_section_statement_get_size, statement, record.size)},
                {"attributes", letters_of(tdm_create_section_statement_get_attributes(statement))},
                phrase(more.text())},
      .written = json_of(statement),
      .rules = rules_of(env)};
}

// ---- groups

Item ItemReader::of(const tdm_group *group, const tdm_statement_env *outer,
                    const tdm_statement_env *inner)
{
  tdm_inspect_group record{};
  tdm_inspect_get_group(group, &record);
  Item item{.kind = ItemKind::group,
            .place = place_of(tdm_group_get_source_location(group)),
            .written = json_of(group),
            .rules = rules_of(inner)};
  if (record.name != nullptr) item.name = record.name;
  if (const tdm_group_location *location = tdm_group_get_address(group)) {
    Resolved resolved = resolve(location);
    item.facts.push_back(phrase(location_text(location, resolved, record.is_run_address != 0)));
    const bool is_address = tdm_group_location_is_address(location) != 0;
    item.facts.push_back({is_address ? "address" : "ranges", std::move(resolved.value), false});
    if (is_address) item.facts.push_back({"bank", Bank{resolved.bank}, false});
  }
  add_alignment(item, outer, inner);
  Facts rules;
  quietly([&] {
    add_rules(rules, group);
    return 0;
  });
  item.facts.push_back(phrase(rules.text()));
  item.facts.push_back(phrase(inherited_text(group, outer)));
  return item;
}

void ItemReader::add_alignment(Item &item, const tdm_statement_env *outer,
                               const tdm_statement_env *inner)
{
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
}

ItemReader::Resolved ItemReader::resolve(const tdm_group_location *location)
{
  if (tdm_group_location_is_address(location) == 0) return resolve_ranges(location);
  Value address = ask<Address>(tdm_group_location_get_address, location, nullptr);
  const auto *known = std::get_if<Address>(&address);
  if (known == nullptr) return {std::move(address), "?"};
  const int32_t bank = quietly([&] { return bank_of_address(location, known->value); });
  std::string text = address_text({known->value, 0, mau_, bank});
  return {std::move(address), std::move(text), bank};
}

ItemReader::Resolved ItemReader::resolve_ranges(const tdm_group_location *location)
{
  std::vector<BankedRange> ranges;
  const bool known = succeeds([&] {
    const int count = tdm_group_location_count_ranges(location);
    for (int i = 0; i < count; ++i)
      ranges.push_back({tdm_group_location_get_range_start(location, i),
                        tdm_group_location_get_range_end(location, i)});
  });
  if (!known) return {Unknown{}, "?"};
  quietly([&] {
    set_banks(location, ranges);
    return 0;
  });
  std::string text;
  for (const BankedRange &range : ranges) text += (text.empty() ? "" : " | ") + range_text(range);
  return {std::move(ranges), std::move(text)};
}

/// "run_addr 0x0..0x10000 (mem:flash)"
std::string ItemReader::location_text(const tdm_group_location *location, const Resolved &resolved,
                                      bool is_run_address)
{
  const std::string text = (is_run_address ? "run_addr " : "load_addr ") + resolved.text;
  const std::string as_written = quietly([&] { return written_text(location); });
  const bool says_more = as_written != resolved.text && as_written != "[" + resolved.text + "]";
  return says_more ? text + " (" + as_written + ")" : text;
}

/// "inherited (run_addr 0x100, ordered)"
std::string ItemReader::inherited_text(const tdm_group *group, const tdm_statement_env *outer)
{
  tdm_inspect_statement_env record;
  if (tdm_inspect_get_statement_env(outer, &record) == 0) return "";
  Facts rules;
  if (record.location != nullptr) {
    const Resolved resolved = resolve(record.location);
    rules.add((record.load_time != 0 ? "load_addr " : "run_addr ") + resolved.text);
  }
  quietly([&] {
    add_inherited(rules, outer, group);
    return 0;
  });
  return rules.text().empty() ? "" : "inherited (" + rules.text() + ")";
}

std::string ItemReader::fill_phrase(const tdm_fillspec *fill)
{
  return quietly([&] { return fill_text(fill); });
}

// ---- the environment

Json ItemReader::rules_of(const tdm_statement_env *env)
{
  tdm_inspect_statement_env record;
  if (tdm_inspect_get_statement_env(env, &record) == 0) return nullptr;
  Json location = nullptr;
  if (record.location != nullptr) {
    const bool is_address = tdm_group_location_is_address(record.location) != 0;
    const Resolved resolved = resolve(record.location);
    location = {
        {"address", nullptr}, {"bank", json_value(Bank{resolved.bank})}, {"ranges", nullptr}};
    location[is_address ? "address" : "ranges"] = json_value(resolved.value);
  }
  return quietly([&]() -> Json {
    return {{"contiguous", record.contiguous != 0},
            {"clustered", record.clustered != 0},
            {"ordered", record.ordered != 0},
            {"overlay", record.overlay != 0},
            {"overlay_depth", record.overlay_depth},
            {"copy", record.copy != 0},
            {"nocopy", record.nocopy != 0},
            {"load_time", record.load_time != 0},
            {"allow_cross_references", record.allow_cross_references != 0},
            {"location", std::move(location)},
            {"direction", json_direction(record.direction)},
            {"priority", record.priority},
            {"alignment", json_expression(context_, record.alignment)},
            {"attributes", json_attributes(record.attributes)},
            {"fill", json_fill(context_, record.fill)},
            {"create_section", json_text(record.output_section_name)},
            {"page", record.paged != 0},
            {"page_number", json_expression(context_, record.page_number)},
            {"page_size", record.page_size},
            {"page_ranges",
             json_list<tdm_range *>(
                 tdm_inspect_statement_env_page_ranges(env),
                 [](const tdm_range *range) -> Json {
                   tdm_addressvalue start;
                   tdm_range_get_start_address(range, &start);
                   return {{"low", start.value}, {"high", start.value + tdm_range_get_size(range)}};
                 })},
            {"group", json_text(record.group_name)}};
  });
}

} // namespace tool
