// Takes layouts and setups apart. The order of the items of a setup is the order of the checks.
#include "model/section_items.h"

#include "common/failures.h"
#include "common/make_object.h"
#include "language/records.h"
#include "layout/layout_builder.h"
#include "layout/memory_routes.h"
#include "layout/record_values.h"
#include "layout/space_lookup.h"
#include "model/spec.h"

namespace tdm {

namespace {

/// The place of a property of a setup, else that of the setup.
TDMSourceLocation location_in(const TDMFileSectionSetup &record, LocationKey key)
{
  if (const TDMSourceLocation *found = record.find_location(key)) return *found;
  return place_of(record, "section_setup");
}

class TargetMemories final : public MemoryLookup {
public:
  TargetMemories(SectionTargets &targets, const TDMProcessor &processor)
      : targets_(targets), processor_(processor)
  {
  }

  [[nodiscard]] LayoutMemory find(std::string_view name) const override
  {
    return targets_.find_memory(processor_, name);
  }

  [[nodiscard]] const TDMMapping *find_mapping(const TDMMapDestination &memory,
                                               std::string_view name) const override
  {
    return targets_.find_mapping(memory, name);
  }

private:
  SectionTargets &targets_;
  const TDMProcessor &processor_;
};

/// What `addressof` and `sizeof` of a memory mean in a layout: the first address of the space that
/// reaches offset 0, and the size in the memory's own MAUs.
class LayoutMemoryReferences final : public MemoryReferences {
public:
  LayoutMemoryReferences(const MemoryLookup &memories, const LayoutSpace &space)
      : memories_(memories), space_(space)
  {
  }

  std::optional<int64_t> memory_address(const std::string &name) override
  {
    const LayoutMemory memory = memories_.find(name);
    if (memory.object == nullptr) return std::nullopt;
    const AddressValue start(0, 0, memory.object->get_mau_size());
    const auto routes = memory_to_space(space_, *memory.object, nullptr, start);
    if (routes.empty()) return std::nullopt;
    return routes.front().value;
  }

  std::optional<int64_t> memory_size(const std::string &name) override
  {
    const LayoutMemory memory = memories_.find(name);
    if (memory.object == nullptr) return std::nullopt;
    return memory.size;
  }

private:
  const MemoryLookup &memories_;
  const LayoutSpace &space_;
};

/// Destinations of a copy table are spaces of the core; its sub tables refer to any.
class SetupSpaceLookup final : public SpaceLookup {
public:
  SetupSpaceLookup(SectionTargets &targets, const TDMCore &core) : targets_(targets), core_(core) {}

  [[nodiscard]] TDMSpace *find(std::string_view name) const override
  {
    return core_.find_space(name);
  }

  [[nodiscard]] std::vector<TDMSpace *>
  resolve(const TDMFileCopySubTableSpace &reference) const override
  {
    TDMSpace *space = targets_.resolve(reference);
    return space != nullptr ? std::vector<TDMSpace *>{space} : std::vector<TDMSpace *>{};
  }

private:
  SectionTargets &targets_;
  const TDMCore &core_;
};

} // namespace

/// Calls with what can be named in a layout of the target.
template <class Build>
void SectionItems::with_context(const Target &target, const ArgumentScope &scope, Build build)
{
  const TargetMemories memories(targets_, *target.processor);
  LayoutMemoryReferences references(memories, target.space->layout_view());
  const ArgumentScope names(scope, references);
  build(LayoutContext{names,
                      target.space->layout_view(),
                      &memories,
                      target.core->section_names,
                      {*target.core->processor_name, target.core->name}});
}

void SectionItems::add_layout(const TDMFileSectionLayout &record, const ArgumentScope &scope)
{
  const Target target = targets_.find(record);
  with_context(target, scope, [&](const LayoutContext &context) {
    target.space->section_layouts.push_back(build_section_layout(record, context));
  });
}

void SectionItems::apply_setup(const TDMFileSectionSetup &record, const ArgumentScope &scope)
{
  const Target target = targets_.find(record);
  TDMSpace &space = *target.space;
  with_context(target, scope, [&](const LayoutContext &context) {
    for (const auto &table : record.vectorTables)
      space.vector_tables.push_back(build_vector_table(*table, context));
    add_reserved_ranges(record, context.scope, space);
    for (const auto &stack : record.stacks)
      space.stacks.push_back(make_object<TDMStackDef>(*stack, context.scope));
    for (const auto &heap : record.heaps)
      space.heaps.push_back(make_object<TDMHeapDef>(*heap, context.scope));
    add_copy_table(record, context.scope, target);
    set_start_address(record, context.scope, target);
    prohibit_references(record, space);
    add_input_modifications(record, space);
  });
}

std::unique_ptr<TDMExpression> SectionItems::translate(const TDMFileExpression &record,
                                                       const Target &target,
                                                       const ArgumentScope &scope,
                                                       const TDMSourceLocation &place)
{
  std::unique_ptr<TDMExpression> expression;
  with_context(target, scope, [&](const LayoutContext &context) {
    expression = tdm_translate_expression(&record, context.scope, place);
  });
  return expression;
}

void SectionItems::add_reserved_ranges(const TDMFileSectionSetup &record,
                                       const ArgumentScope &scope, TDMSpace &space)
{
  const TDMSourceLocation place = location_in(record, "section_setup");
  for (const FileRange &range : record.reservedRanges) {
    const int64_t low = evaluate(*range.low, scope, place);
    const int64_t high = evaluate(*range.high, scope, place);
    space.reserved_ranges.push_back(make_object<TDMReservedRange>(low, high));
  }
}

/// The first one counts, and only where the space has none of its own.
void SectionItems::add_copy_table(const TDMFileSectionSetup &record, const ArgumentScope &scope,
                                  const Target &target)
{
  TDMSpace &space = *target.space;
  if (record.copyTables.empty() || space.copy_table != nullptr) return;
  const TDMFileCopyTable &table = *record.copyTables.front();
  space.copy_table = make_object<TDMCopyTable>(table, scope);
  space.copy_table->resolve(table, SetupSpaceLookup(targets_, *target.core));
  const TDMSourceLocation place = location_in(record, "section_setup");
  space.sourceLocations.store("table", place);
  // The core of a derivative takes it over when it is checked; at file level that is past.
  if (targets_.at_file_level()) target.core->set_copy_table_space(space, place);
}

void SectionItems::set_start_address(const TDMFileSectionSetup &record, const ArgumentScope &scope,
                                     const Target &target) const
{
  if (record.startAddress == nullptr) return;
  TDMSpace &space = *target.space;
  const TDMSourceLocation place = location_in(record, "startAddress");
  if (space.start_address != nullptr)
    throw new TDMSyntaxException(
        place, "trying to set start address in a section setup while it was already set elsewhere");
  space.start_address = make_object<TDMStartAddress>(*record.startAddress, scope);
  space.sourceLocations.store("start_address", place);
  if (targets_.at_file_level()) target.core->set_start_address(space, place);
}

void SectionItems::prohibit_references(const TDMFileSectionSetup &record, TDMSpace &space)
{
  for (const auto &reference : record.prohibitedSpaces) {
    const TDMSpace *prohibited = targets_.resolve(*reference);
    if (prohibited == nullptr)
      throw new TDMSyntaxException(location_in(record, "section_setup"),
                                   "could not find space \"" + reference->spaceName.value_or("") +
                                       "\" for no_references_to");
    space.prohibited_spaces.insert(prohibited->id);
  }
}

void SectionItems::add_input_modifications(const TDMFileSectionSetup &record, TDMSpace &space)
{
  for (const auto &entry : record.inputModifications) {
    auto modification = make_object<TDMInputModification>();
    modification->sourceLocations = entry->sourceLocations;
    if (entry->space != nullptr) {
      modification->space = targets_.resolve(*entry->space);
      if (modification->space == nullptr)
        throw new TDMSyntaxException(place_of(*entry->space, "spaceRef"),
                                     "could not find space \"" +
                                         entry->space->spaceName.value_or("") +
                                         "\" for input section modification");
    }
    if (entry->selector != nullptr) modification->selector = build_selector(*entry->selector);
    for (const auto &select : entry->selects)
      modification->selects.push_back(build_selection(*select));
    space.input_modifications.push_back(std::move(modification));
  }
}

} // namespace tdm
