// Layouts and vector tables as JSON: the tree of statements, each with all that it says.
#include "model_json.h"

#include <utility>

namespace tool {

namespace {

using Make = Json (*)(const ModelContext &, tdm_statement *);

Json json_statement(const ModelContext &context, tdm_statement *statement);

Json json_statements(const ModelContext &context, const tdm_block *block)
{
  return json_list<tdm_statement *>(
      tdm_inspect_block_statements(block),
      [&](tdm_statement *statement) { return json_statement(context, statement); });
}

Json of_assignment(const ModelContext &context, tdm_statement *statement)
{
  return written(context, tdm_inspect_statement_assignment(statement));
}

Json of_block(const ModelContext &context, tdm_statement *statement)
{
  return {{"statements", json_statements(context, tdm_inspect_statement_block(statement))}};
}

Json of_if(const ModelContext &context, tdm_statement *statement)
{
  const tdm_if_statement *branches = tdm_inspect_statement_if(statement);
  Json json = written(context, branches);
  json["then"] = json_statement(context, tdm_inspect_if_statement_true_branch(branches));
  json["else"] = json_statement(context, tdm_inspect_if_statement_false_branch(branches));
  return json;
}

Json of_create_section(const ModelContext &context, tdm_statement *statement)
{
  const tdm_create_section_statement *section = tdm_inspect_statement_create_section(statement);
  tdm_inspect_create_section record;
  if (tdm_inspect_get_create_section(section, &record) == 0) return Json::object();
  Json json = written(context, section);
  json["statement"] = json_statement(context, record.statement);
  return json;
}

Json of_group(const ModelContext &context, tdm_statement *statement)
{
  const tdm_group *group = tdm_inspect_statement_group(statement);
  tdm_inspect_group record;
  if (tdm_inspect_get_group(group, &record) == 0) return Json::object();
  Json json = written(context, group);
  json["statement"] = json_statement(context, record.statement);
  return json;
}

Json of_heap(const ModelContext &context, tdm_statement *statement)
{
  return written(context, tdm_inspect_statement_heap(statement));
}

Json of_stack(const ModelContext &context, tdm_statement *statement)
{
  return written(context, tdm_inspect_statement_stack(statement));
}

Json of_memory_copy(const ModelContext &context, tdm_statement *statement)
{
  return written(context, tdm_inspect_statement_memory_copy(statement));
}

Json of_reserved(const ModelContext &context, tdm_statement *statement)
{
  return written(context, tdm_inspect_statement_reserved(statement));
}

Json of_selection(const ModelContext &context, tdm_statement *statement)
{
  return written(context, tdm_inspect_statement_selection(statement));
}

Json of_struct(const ModelContext &context, tdm_statement *statement)
{
  return written(context, tdm_inspect_statement_struct(statement));
}

Json of_table(const ModelContext &, tdm_statement *)
{
  return Json::object();
}

/// In the order of enum tdm_statement_kind, which begins at 1.
constexpr struct {
  const char *name;
  Make make;
} statement_kinds[] = {{"assignment", of_assignment},
                       {"block", of_block},
                       {"if", of_if},
                       {"section", of_create_section},
                       {"group", of_group},
                       {"heap", of_heap},
                       {"memcopy", of_memory_copy},
                       {"reserved", of_reserved},
                       {"select", of_selection},
                       {"stack", of_stack},
                       {"struct", of_struct},
                       {"copytable", of_table}};

Json json_statement(const ModelContext &context, tdm_statement *statement)
{
  if (statement == nullptr) return nullptr;
  const auto &kind = statement_kinds[tdm_inspect_statement_kind(statement) - 1];
  Json json{{"kind", kind.name}};
  json.update(kind.make(context, statement));
  return json_placed(context, TDM_OBJECT_STATEMENT, statement, std::move(json));
}

Json json_value(const ModelContext &context, const tdm_vector_value *value)
{
  if (value == nullptr) return nullptr;
  Json json = Json::object();
  switch (tdm_inspect_vector_value_kind(value)) {
  case TDM_VECTOR_SYMBOL:
    json["symbol"] = json_text(tdm_inspect_vector_value_symbol(value));
    break;
  case TDM_VECTOR_NUMBERS:
    json["numbers"] = json_list<int64_t>(tdm_inspect_vector_value_numbers(value),
                                         [](int64_t number) { return Json(number); });
    break;
  default:
    json["loop"] = {
        {"offset", json_expression(context, tdm_inspect_vector_value_loop_offset(value))}};
  }
  return json_placed(context, TDM_OBJECT_VECTOR_VALUE, value, std::move(json));
}

Json json_vector(const ModelContext &context, const tdm_vector *vector)
{
  return json_placed(
      context, TDM_OBJECT_VECTOR, vector,
      {{"ids", json_list<tdm_inspect_id_run>(tdm_inspect_vector_id_runs(vector),
                                             [](const tdm_inspect_id_run &run) -> Json {
                                               return {{"low", run.low}, {"high", run.high}};
                                             })},
       {"value", json_value(context, tdm_inspect_vector_value(vector))},
       {"optional", tdm_inspect_vector_is_optional(vector) != 0}});
}

Json json_location(const ModelContext &context, const tdm_group_location *location)
{
  tdm_inspect_group_location record;
  if (location == nullptr || tdm_inspect_get_group_location(location, &record) == 0) return nullptr;
  const auto number = [&](const tdm_mapping *mapping) {
    return mapping != nullptr ? Json(context.mappings.of(mapping)) : Json(nullptr);
  };
  return json_placed(context, TDM_OBJECT_GROUP_LOCATION, location,
                     {{"address", json_expression(context, record.address)},
                      {"memory", json_name(record.memory)},
                      {"mapping", number(record.mapping)},
                      {"ranges", json_list<tdm_inspect_location_range>(
                                     tdm_inspect_group_location_ranges(location),
                                     [&](const tdm_inspect_location_range &range) -> Json {
                                       return {{"memory", json_name(range.memory)},
                                               {"mapping", number(range.mapping)},
                                               {"low", json_expression(context, range.low)},
                                               {"high", json_expression(context, range.high)}};
                                     })}});
}

} // namespace

Json json_selector(const tdm_section_selector *selector)
{
  if (selector == nullptr) return nullptr;
  return {{"with", json_attributes(tdm_inspect_section_selector_required(selector))},
          {"without", json_attributes(tdm_inspect_section_selector_excluded(selector))},
          {"file", json_text(tdm_inspect_section_selector_file(selector))}};
}

Json written(const ModelContext &context, const tdm_assignment *statement)
{
  tdm_inspect_assignment record;
  if (tdm_inspect_get_assignment(statement, &record) == 0) return Json::object();
  return {{"symbol", json_text(record.symbol)},
          {"operator", record.plain != 0 ? "=" : ":="},
          {"value", json_expression(context, record.value)}};
}

Json written(const ModelContext &context, const tdm_if_statement *statement)
{
  return {{"condition", json_expression(context, tdm_inspect_if_statement_condition(statement))}};
}

Json written(const ModelContext &context, const tdm_create_section_statement *section)
{
  tdm_inspect_create_section record;
  if (tdm_inspect_get_create_section(section, &record) == 0) return Json::object();
  return {{"name", json_text(tdm_create_section_statement_get_name(section))},
          {"size", json_expression(context, record.size)},
          {"block_size", json_expression(context, record.block_size)},
          {"overflow", json_text(record.overflow_name)},
          {"attributes", json_attributes(tdm_create_section_statement_get_attributes(section))},
          {"fill", json_fill(context, record.fill)}};
}

Json written(const ModelContext &context, const tdm_group *group)
{
  tdm_inspect_group record;
  if (tdm_inspect_get_group(group, &record) == 0) return Json::object();
  const bool is_run = record.is_run_address != 0;
  const Json location = json_location(context, tdm_group_get_address(group));
  return {{"name", json_text(record.name)},
          {"contiguous", record.contiguous != 0},
          {"clustered", record.clustered != 0},
          {"ordered", record.ordered != 0},
          {"overlay", record.overlay != 0},
          {"copy", record.copy != 0},
          {"nocopy", record.nocopy != 0},
          {"allow_cross_references", record.cross_references != 0},
          {"load_time", record.load_time != 0},
          {"run_address", is_run ? location : Json(nullptr)},
          {"load_address", is_run ? Json(nullptr) : location},
          {"priority", record.priority},
          {"alignment", json_expression(context, record.alignment)},
          {"attributes", json_attributes(record.attributes)},
          {"fill", json_fill(context, record.fill)},
          {"create_section", json_text(record.output_section_name)},
          {"page", record.paged != 0},
          {"page_number", json_expression(context, record.page_number)},
          {"page_size", json_expression(context, record.page_size)},
          {"page_ranges", json_list<tdm_inspect_expression_range>(
                              tdm_inspect_group_pages(group),
                              [&](const tdm_inspect_expression_range &range) -> Json {
                                return {{"low", json_expression(context, range.low)},
                                        {"high", json_expression(context, range.high)}};
                              })}};
}

Json written(const ModelContext &context, const tdm_heap_statement *heap)
{
  return {{"name", json_text(tdm_heap_statement_get_name(heap))},
          {"size", json_expression(context, tdm_inspect_heap_statement_size(heap))}};
}

Json written(const ModelContext &context, const tdm_stack_statement *stack)
{
  return {{"name", json_text(tdm_stack_statement_get_name(stack))},
          {"size", json_expression(context, tdm_inspect_stack_statement_size(stack))}};
}

Json written(const ModelContext &context, const tdm_memory_copy_statement *statement)
{
  tdm_inspect_memory_copy record;
  if (tdm_inspect_get_memory_copy(statement, &record) == 0) return Json::object();
  return {{"name", json_text(record.name)},
          {"memory", json_name(record.memory)},
          {"fill", json_fill(context, record.fill)}};
}

Json written(const ModelContext &context, const tdm_reserved_statement *area)
{
  return {{"name", json_text(tdm_reserved_statement_get_name(area))},
          {"size", json_expression(context, tdm_inspect_reserved_statement_size(area))},
          {"attributes", json_attributes(tdm_reserved_statement_get_attributes(area))},
          {"fill", json_fill(context, tdm_inspect_reserved_statement_fill(area))},
          {"allows_absolute", tdm_reserved_statement_get_alloc_allowed_absolute(area) != 0},
          {"allows_ranged", tdm_reserved_statement_get_alloc_allowed_ranged(area) != 0}};
}

Json written(const ModelContext &, const tdm_selection_statement *statement)
{
  return {{"pattern", json_text(tdm_inspect_selection_statement_pattern(statement))},
          {"ref_tree", tdm_selection_statement_use_reference_tree(statement) != 0},
          {"selectors", json_list<tdm_section_selector *>(
                            tdm_selection_statement_get_selectors(statement), json_selector)}};
}

Json written(const ModelContext &context, const tdm_struct_statement *structure)
{
  return {{"name", json_text(tdm_inspect_struct_statement_name(structure))},
          {"members",
           json_list<tdm_inspect_struct_member>(
               tdm_inspect_struct_statement_members(structure),
               [&](const tdm_inspect_struct_member &member) -> Json {
                 return {{"value", json_expression(context, member.value)}, {"size", member.size}};
               })}};
}

Json written(const ModelContext &, const tdm_section_layout *layout)
{
  return {{"direction", json_direction(tdm_inspect_section_layout_direction(layout))}};
}

Json json_selection(const ModelContext &context, const tdm_selection_statement *statement)
{
  Json json{{"kind", "select"}};
  json.update(written(context, statement));
  return json_placed(context, TDM_OBJECT_SELECTION_STATEMENT, statement, std::move(json));
}

Json json_layout(const ModelContext &context, const tdm_section_layout *layout)
{
  Json json = written(context, layout);
  json["statements"] = json_statements(context, tdm_inspect_section_layout_block(layout));
  return json_placed(context, TDM_OBJECT_SECTION_LAYOUT, layout, std::move(json));
}

Json json_vector_table(const ModelContext &context, const tdm_vector_table *table)
{
  tdm_inspect_vector_table record;
  if (tdm_inspect_get_vector_table(table, &record) == 0) return nullptr;
  return json_placed(context, TDM_OBJECT_VECTOR_TABLE, table,
                     {{"name", json_text(tdm_vector_table_get_name(table))},
                      {"size", json_expression(context, record.size)},
                      {"vector_size", json_expression(context, record.vector_size)},
                      {"run_address", json_expression(context, record.run_address)},
                      {"id_symbol_prefix", json_text(record.id_symbol_prefix)},
                      {"vector_prefix", json_text(record.vector_name_prefix)},
                      {"template", json_text(record.template_name)},
                      {"template_symbol", json_text(record.template_symbol_name)},
                      {"default_value", json_value(context, record.default_value)},
                      {"inline", record.default_inline != 0},
                      {"copy", record.copy != 0},
                      {"vectors", json_list<tdm_vector *>(tdm_inspect_vector_table_vectors(table),
                                                          [&](const tdm_vector *vector) {
                                                            return json_vector(context, vector);
                                                          })}});
}

} // namespace tool
