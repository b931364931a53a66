// Instantiates the chain of derivatives of a processor.
#include "model/processor.h"

#include "common/make_object.h"
#include "common/name_set.h"
#include "language/records.h"
#include "layout/record_values.h"
#include "mapping/inline_stack.h"
#include "mapping/interval_set.h"
#include "model/buses_in_reach.h"
#include "model/check_runner.h"
#include "model/section_items.h"
#include "model/templates.h"

namespace tdm {

namespace {

using DerivativeLevel = ChainLevel<TDMFileDerivative>;

/// Refuses reserved ranges of a space that overlap. They are taken in units of 8 bits, whatever
/// the space counts in.
void check_reserved_ranges(const TDMSpace &space)
{
  if (space.reserved_ranges.size() < 2) return; // nothing to meet
  IntervalSet occupied;
  for (const auto &range : space.reserved_ranges) {
    try {
      occupied.insert(
          Interval(AddressValue{range->low, 0, 8, -1}, AddressValue{range->high, 0, 8, -1}), true,
          false);
    } catch (IntervalSet::OverlapException *overlap) {
      delete overlap;
      throw new TDMSyntaxError("space " + space.full_name() + " has overlapping reserved ranges");
    }
  }
}

/// Builds the objects of a processor from its chain of derivatives: the first pass creates, and
/// the second wires by name.
class DerivativeInstance {
public:
  DerivativeInstance(TDMProcessor &processor, const Templates &templates)
      : processor_(processor), templates_(templates)
  {
  }

  void create(const TDMFileDerivative &first, Arguments arguments)
  {
    for (const TDMFileDerivative *record = &first;; record = &base_of(*record)) {
      const DerivativeLevel &level = chain_.emplace_back(bind(*record, std::move(arguments)));
      create_objects(*record, level.scope);
      if (!record->base) break;
      arguments = level.scope.substitute(record->baseArguments, place_of(*record, "base"));
    }
  }

  void resolve()
  {
    BusesInReach reach;
    reach.add(processor_.buses);
    for (const auto &core : processor_.cores) reach.add(core->buses, &core->name);
    InlineStack<Text, 8> destinations;
    size_t next_bus = 0;
    size_t next_memory = 0;
    for (const DerivativeLevel &level : chain_) {
      for (const auto &bus : level.record->buses)
        processor_.buses[next_bus++]->resolve_mappings(*bus, TDMBus::Form::forward, reach,
                                                       &processor_.name, nullptr);
      for (const auto &memory : level.record->memories) {
        destinations.cut(0);
        for (const auto &entry : memory->mappings) destinations.push_back(*entry->destination);
        processor_.memories[next_memory++]->resolve_mappings(
            {destinations.begin(), destinations.end()}, reach, &processor_.name);
      }
      for (const auto &core : level.record->cores) resolve_core(*core);
    }
  }

  /// Those of a base come before those of the derivative that extends it.
  void add_section_items(TDMCloneSpaceRegistry &registry)
  {
    SectionItems items(SectionTargets(registry, processor_));
    for (auto level = chain_.rbegin(); level != chain_.rend(); ++level) {
      for (const auto &layout : level->record->sectionLayouts)
        items.add_layout(*layout, level->scope);
      for (const auto &setup : level->record->sectionSetups)
        items.apply_setup(*setup, level->scope);
    }
  }

  /// The scope of the first level, to be kept when the records have gone.
  [[nodiscard]] ArgumentScope copy_parameters() const { return chain_.front().scope.copy(); }

private:
  DerivativeLevel bind(const TDMFileDerivative &record, Arguments arguments)
  {
    if (!visited_.add(*record.name))
      throw new TDMSyntaxException(place_of(record, "name"), "derivative " + *record.name +
                                                                 " used as recursive base in " +
                                                                 listed_names(chain_));
    DerivativeLevel level{&record, {}};
    try {
      level.scope.bind(record.parameters, std::move(arguments));
    } catch (TDMArgumentsException *failure) {
      const std::unique_ptr<TDMArgumentsException> owned(failure);
      throw new TDMSyntaxException(place_of(record, "name"),
                                   "cannot instantiate derivative \"" + *record.name +
                                       "\" for processor \"" + processor_.name +
                                       "\": " + owned->text());
    }
    return level;
  }

  void create_objects(const TDMFileDerivative &record, const ArgumentScope &scope)
  {
    const size_t first_core = processor_.cores.size();
    for (const auto &core : record.cores) {
      processor_.cores.push_back(make_object<TDMCore>(*core, processor_.name, templates_, scope));
    }
    if (processor_.buses.empty()) processor_.buses.reserve(record.buses.size());
    for (const auto &bus : record.buses) {
      processor_.buses.push_back(make_object<TDMBus>(*bus, TDMBus::Form::forward, scope));
      processor_.buses.back()->processor_name = &processor_.name;
    }
    if (processor_.memories.empty()) processor_.memories.reserve(record.memories.size());
    for (const auto &memory : record.memories) {
      processor_.memories.push_back(make_object<TDMMemory>(*memory, scope));
      processor_.memories.back()->processor_name = &processor_.name;
    }
    // The cores of earlier levels have passed already, and their ranges don't change.
    for (size_t i = first_core; i < processor_.cores.size(); ++i)
      for (const auto &space : processor_.cores[i]->spaces) check_reserved_ranges(*space);
  }

  const TDMFileDerivative &base_of(const TDMFileDerivative &record) const
  {
    const TDMFileDerivative *base = templates_.derivative(*record.base);
    if (base == nullptr)
      throw new TDMSyntaxException(place_of(record, "name"), "base derivative " + *record.base +
                                                                 " not found for derivative " +
                                                                 *record.name);
    return *base;
  }

  void resolve_core(const TDMFileCore &record)
  {
    TDMCore &core = *processor_.find_core(*record.name);
    if (record.copyTableCoreName) {
      const TDMCore *other = processor_.find_core(*record.copyTableCoreName);
      if (other == nullptr)
        throw new TDMSyntaxException(place_of(record, "name"),
                                     "copy table core " + *record.copyTableCoreName +
                                         " not found for core " + core.name);
      core.copytable_space = other->find_space(record.copyTableSpaceName.value_or(""));
    }
    for (const Text name : record.imports) {
      TDMCore *other = processor_.find_core(name);
      if (other == nullptr)
        throw new TDMSyntaxException(place_of(record, "name"),
                                     "imported core " + name + " not found for core " + core.name);
      other->imported = true;
      core.imported_cores.push_back(other);
    }
  }

  TDMProcessor &processor_;
  const Templates &templates_;
  NameSet visited_;
  Chain<TDMFileDerivative> chain_;
};

} // namespace

} // namespace tdm

TDMProcessor::TDMProcessor(const TDMFileCPU &record, const tdm::Templates &templates,
                           TDMCloneSpaceRegistry &registry, const tdm::CheckRunner &runner)
    : TDMObject{record.sourceLocations}, name(record.name.value_or("")),
      derivative_name(record.derivativeName.value_or(""))
{
  const TDMFileDerivative *derivative = templates.derivative(derivative_name);
  if (derivative == nullptr)
    throw new TDMSyntaxException(tdm::place_of(record, "name"),
                                 "parent derivative " + derivative_name +
                                     " not found for processor " + name);
  instantiate(*derivative, tdm::arguments_of(record.arguments), templates, registry, runner);
}

TDMProcessor::TDMProcessor(const TDMFileDerivative &derivative, const tdm::Templates &templates,
                           TDMCloneSpaceRegistry &registry, const tdm::CheckRunner &runner)
    : TDMObject{derivative.sourceLocations}, name(derivative.name.value_or("")),
      derivative_name(name)
{
  instantiate(derivative, {}, templates, registry, runner);
}

TDMProcessor::~TDMProcessor() = default;

void TDMProcessor::instantiate(const TDMFileDerivative &derivative, tdm::Arguments arguments,
                               const tdm::Templates &templates, TDMCloneSpaceRegistry &registry,
                               const tdm::CheckRunner &runner)
{
  tdm::DerivativeInstance instance(*this, templates);
  instance.create(derivative, std::move(arguments));
  core_index_.update();
  memory_index_.update();
  instance.resolve();
  instance.add_section_items(registry);
  parameters = instance.copy_parameters();
  parameter_names = parameters.parameter_names();
  for (const auto &core : cores) core->check(runner);
}

TDMMemory *TDMProcessor::find_memory(std::string_view full_name) const
{
  if (!full_name.starts_with(name) || full_name.substr(name.size(), 1) != ":") return nullptr;
  return memory_index_.find(full_name.substr(name.size() + 1));
}

// The full names of the objects of one kind differ where their names do.
void TDMProcessor::check_names() const
{
  if (const TDMCore *core = core_index_.first_repeated())
    throw new TDMSyntaxException(core->location_or("name"),
                                 "core " + core->full_name() +
                                     " defined more than once in processor " + name);
  if (const TDMBus *bus = tdm::first_repeated(buses))
    throw new TDMSyntaxException(bus->location_or("name"),
                                 "bus " + bus->full_name() +
                                     " defined more than once in processor " + name);
  if (const TDMMemory *memory = memory_index_.first_repeated())
    throw new TDMSyntaxException(memory->location_or("name"),
                                 "memory " + memory->full_name() +
                                     " defined more than once in processor " + name);
}
