// The additive readers of groups: their rules, where they go as it is written, and the rules in
// force at a statement.
#include "interface/inspect_lists.h"
#include "interface/tdm_inspect_layout.h"
#include "layout/group.h"
#include "layout/statement_env.h"
#include "model/memory.h"
#include "model/space.h"

using tdm::guarded;
using tdm::guarded_array;
using tdm::handle;
using tdm::text_result;

namespace {

tdm_memory *memory_of(const tdm::LayoutMemory &memory)
{
  return handle(dynamic_cast<const TDMMemory *>(memory.object));
}

tdm_attributes *attributes_of(const std::optional<TDMAttributes> &attributes)
{
  return attributes ? handle(&*attributes) : nullptr;
}

tdm_srcpos position_of(const TDMSourceLocation &place)
{
  return {text_result(place.file.text()), place.line, place.column, nullptr};
}

} // namespace

int tdm_inspect_get_group(const tdm_group *group, tdm_inspect_group *out)
{
  return guarded([&] {
    *out = {.name = text_result(group->name),
            .contiguous = group->contiguous,
            .clustered = group->clustered,
            .ordered = group->ordered,
            .overlay = group->overlay,
            .copy = group->copy,
            .nocopy = group->nocopy,
            .cross_references = group->cross_references,
            .load_time = group->load_time,
            .is_run_address = group->is_run_address,
            .paged = group->paged,
            .priority = group->priority,
            .alignment = group->alignment.get(),
            .page_number = group->page_number.get(),
            .page_size = group->page_size.get(),
            .attributes = attributes_of(group->attributes),
            .fill = group->fill.get(),
            .output_section_name = text_result(group->output_section_name),
            .statement = group->statement.get()};
    return 1;
  });
}

tdm_arr *tdm_inspect_group_pages(const tdm_group *group)
{
  return guarded_array<tdm_inspect_expression_range>([&] {
    return tdm::array_of(group->pages, [](const auto &page) -> tdm_inspect_expression_range {
      return {page.first.get(), page.second.get()};
    });
  });
}

int tdm_inspect_group_location_form(const tdm_group_location *location)
{
  if (!location->is_address()) return TDM_LOCATION_RANGES;
  return location->memory.object != nullptr ? TDM_LOCATION_MEMORY_ADDRESS : TDM_LOCATION_ADDRESS;
}

int tdm_inspect_get_group_location(const tdm_group_location *location,
                                   tdm_inspect_group_location *out)
{
  return guarded([&] {
    *out = {handle(dynamic_cast<const TDMSpace *>(&location->space->source())),
            location->address.get(), memory_of(location->memory), handle(location->mapping),
            position_of(location->group_place)};
    return 1;
  });
}

tdm_arr *tdm_inspect_group_location_ranges(const tdm_group_location *location)
{
  return guarded_array<tdm_inspect_location_range>([&] {
    return tdm::array_of(location->ranges,
                         [](const TDMGroupLocation::Range &range) -> tdm_inspect_location_range {
                           return {memory_of(range.memory), handle(range.mapping), range.low.get(),
                                   range.high.get()};
                         });
  });
}

int tdm_inspect_get_statement_env(const tdm_statement_env *env, tdm_inspect_statement_env *out)
{
  return guarded([&] {
    *out = {.contiguous = env->contiguous,
            .clustered = env->clustered,
            .ordered = env->ordered,
            .overlay = env->overlay,
            .copy = env->copy,
            .nocopy = env->nocopy,
            .allow_cross_references = env->allow_cross_references,
            .load_time = env->load_time,
            .paged = env->paged,
            .page_size = env->page_size,
            .priority = env->priority,
            .direction = env->direction - 1,
            .overlay_depth = env->overlay_depth,
            .alignment = env->alignment,
            .page_number = env->page_number,
            .attributes = handle(env->attributes),
            .fill = handle(env->fill),
            .location = handle(env->location),
            .output_section_name = text_result(env->output_section_name),
            .group_name = text_result(env->group_name)};
    return 1;
  });
}

tdm_arr *tdm_inspect_statement_env_page_ranges(const tdm_statement_env *env)
{
  return guarded_array<void *>([&] {
    if (env->page_ranges == nullptr) return tdm::empty_array(sizeof(void *));
    return tdm::array_of(*env->page_ranges, [](const TDMRange &range) { return handle(&range); });
  });
}
