// Instantiates the chain of derivatives of a processor.
#include "model/processor.h"

#include <string_view>
#include <unordered_set>

#include "language/records.h"
#include "layout/record_values.h"
#include "mapping/interval_set.h"
#include "model/buses_in_reach.h"
#include "model/check_runner.h"
#include "model/section_items.h"
#include "model/templates.h"

namespace tdm {

namespace {

using Arguments = tdm::RecordList<std::unique_ptr<TDMFileExpression>>;
using DerivativeLevel = ChainLevel<TDMFileDerivative>;

/// Refuses reserved ranges of a space that overlap. They are taken in units of 8 bits, whatever
/// the space counts in.
void check_reserved_ranges(const TDMSpace &space)
{
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

  void create(const TDMFileDerivative &first, const Arguments &arguments)
  {
    const TDMFileDerivative *record = &first;
    Arguments passed_on;
    const Arguments *bound = &arguments;
    while (record != nullptr) {
      DerivativeLevel level = bind(*record, *bound);
      create_objects(*record, level.scope);
      if (record->base)
        passed_on = level.scope.substitute(record->baseArguments, place_of(*record, "base"));
      bound = &passed_on;
      const TDMFileDerivative *base = find_base(*record);
      chain_.push_back(std::move(level));
      record = base;
    }
  }

  void resolve()
  {
    BusesInReach reach;
    reach.add(processor_.buses);
    for (const auto &core : processor_.cores) reach.add(core->buses);
    size_t next_bus = 0;
    size_t next_memory = 0;
    for (const DerivativeLevel &level : chain_) {
      for (const auto &bus : level.record->buses)
        processor_.buses[next_bus++]->resolve_mappings(*bus, TDMBus::Form::forward, reach,
                                                       &processor_.name, nullptr, level.scope);
      for (const auto &memory : level.record->memories)
        processor_.memories[next_memory++]->resolve_mappings(*memory, reach, &processor_.name);
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

  /// The scope of the first level; the instance is done then.
  [[nodiscard]] ArgumentScope take_parameters() { return std::move(chain_.front().scope); }

private:
  DerivativeLevel bind(const TDMFileDerivative &record, const Arguments &arguments)
  {
    if (!visited_.insert(*record.name).second)
      throw new TDMSyntaxException(place_of(record, "name"), "derivative " + *record.name +
                                                                 " used as recursive base in " +
                                                                 listed(visited_));
    DerivativeLevel level{&record, {}};
    try {
      level.scope.bind(record.parameters, arguments);
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
      processor_.cores.push_back(
          std::make_unique<TDMCore>(*core, processor_.name, templates_, scope));
      core_index_.emplace(processor_.cores.back()->name, processor_.cores.back().get());
    }
    for (const auto &bus : record.buses) {
      processor_.buses.push_back(std::make_unique<TDMBus>(*bus, TDMBus::Form::forward, scope));
      processor_.buses.back()->processor_name = &processor_.name;
    }
    for (const auto &memory : record.memories) {
      processor_.memories.push_back(std::make_unique<TDMMemory>(*memory, scope));
      processor_.memories.back()->processor_name = &processor_.name;
    }
    // The cores of earlier levels have passed already, and their ranges don't change.
    for (size_t i = first_core; i < processor_.cores.size(); ++i)
      for (const auto &space : processor_.cores[i]->spaces) check_reserved_ranges(*space);
  }

  const TDMFileDerivative *find_base(const TDMFileDerivative &record) const
  {
    if (!record.base) return nullptr;
    const TDMFileDerivative *base = templates_.derivative(*record.base);
    if (base == nullptr)
      throw new TDMSyntaxException(place_of(record, "name"), "base derivative " + *record.base +
                                                                 " not found for derivative " +
                                                                 *record.name);
    return base;
  }

  [[nodiscard]] TDMCore *find_core(const std::string &name) const
  {
    const auto found = core_index_.find(name);
    return found != core_index_.end() ? found->second : nullptr;
  }

  void resolve_core(const TDMFileCore &record)
  {
    TDMCore &core = *find_core(*record.name);
    if (record.copyTableCoreName) {
      const TDMCore *other = find_core(*record.copyTableCoreName);
      if (other == nullptr)
        throw new TDMSyntaxException(place_of(record, "name"),
                                     "copy table core " + *record.copyTableCoreName +
                                         " not found for core " + core.name);
      core.copytable_space = other->find_space(record.copyTableSpaceName.value_or(""));
    }
    for (const std::string &name : record.imports) {
      TDMCore *other = find_core(name);
      if (other == nullptr)
        throw new TDMSyntaxException(place_of(record, "name"),
                                     "imported core " + name + " not found for core " + core.name);
      other->imported = true;
      core.imported_cores.push_back(other);
    }
  }

  TDMProcessor &processor_;
  const Templates &templates_;
  std::set<std::string> visited_;
  std::vector<DerivativeLevel> chain_;
  std::unordered_map<std::string, TDMCore *> core_index_; ///< the first core of each name
};

/// The first object whose full name an earlier one has, or null.
template <typename Object>
const Object *first_repeated(const std::vector<std::unique_ptr<Object>> &objects)
{
  std::unordered_set<std::string> names;
  for (const auto &object : objects)
    if (!names.insert(object->full_name()).second) return object.get();
  return nullptr;
}

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
  instantiate(*derivative, record.arguments, templates, registry, runner);
}

TDMProcessor::TDMProcessor(const TDMFileDerivative &derivative, const tdm::Templates &templates,
                           TDMCloneSpaceRegistry &registry, const tdm::CheckRunner &runner)
    : TDMObject{derivative.sourceLocations}, name(derivative.name.value_or("")),
      derivative_name(name)
{
  instantiate(derivative, {}, templates, registry, runner);
}

TDMProcessor::~TDMProcessor() = default;

void TDMProcessor::instantiate(const TDMFileDerivative &derivative,
                               const tdm::RecordList<std::unique_ptr<TDMFileExpression>> &arguments,
                               const tdm::Templates &templates, TDMCloneSpaceRegistry &registry,
                               const tdm::CheckRunner &runner)
{
  tdm::DerivativeInstance instance(*this, templates);
  instance.create(derivative, arguments);
  core_index_.build(cores, [](const TDMCore &core) { return core.name; });
  memory_index_.build(memories, [](const TDMMemory &memory) { return memory.full_name(); });
  instance.resolve();
  instance.add_section_items(registry);
  parameters = instance.take_parameters();
  std::unordered_set<std::string_view> seen;
  for (const tdm::FileParameter &parameter : derivative.parameters)
    if (seen.insert(parameter.name).second) parameter_names.push_back(parameter.name);
  for (const auto &core : cores) core->check(runner);
}

void TDMProcessor::check_names() const
{
  if (const TDMCore *core = tdm::first_repeated(cores))
    throw new TDMSyntaxException(core->location_or("name"),
                                 "core " + core->full_name() +
                                     " defined more than once in processor " + name);
  if (const TDMBus *bus = tdm::first_repeated(buses))
    throw new TDMSyntaxException(bus->location_or("name"),
                                 "bus " + bus->full_name() +
                                     " defined more than once in processor " + name);
  if (const TDMMemory *memory = tdm::first_repeated(memories))
    throw new TDMSyntaxException(memory->location_or("name"),
                                 "memory " + memory->full_name() +
                                     " defined more than once in processor " + name);
}
