// Instantiates the architecture of a core, and checks the core once its processor stands.
#include "model/core.h"

#include <algorithm>

#include "common/make_object.h"
#include "common/name_set.h"
#include "language/records.h"
#include "layout/record_values.h"
#include "model/buses_in_reach.h"
#include "model/check_runner.h"
#include "model/core_space_lookup.h"
#include "model/templates.h"

namespace tdm {

namespace {

using ArchitectureLevel = ChainLevel<TDMFileArchitecture>;

/// Builds the objects of a core from its chain of architectures. The first pass creates, and the
/// second wires by name once everything that a `map` entry may name exists.
class ArchitectureInstance {
public:
  ArchitectureInstance(TDMCore &core, const Templates &templates)
      : core_(core), templates_(templates)
  {
  }

  void create(const TDMFileArchitecture &first, Arguments arguments)
  {
    for (const TDMFileArchitecture *record = &first;; record = &base_of(*record)) {
      const ArchitectureLevel &level = chain_.emplace_back(bind(*record, std::move(arguments)));
      create_objects(*record, level.scope);
      merge_endianness(*record);
      if (!record->base) break;
      arguments = level.scope.substitute(record->baseArguments, place_of(*record, "base"));
    }
  }

  void resolve()
  {
    size_t next_bus = 0;
    size_t next_space = 0;
    BusesInReach reach;
    reach.add(core_.buses);
    for (const ArchitectureLevel &level : chain_) {
      for (const auto &bus : level.record->buses)
        core_.buses[next_bus++]->resolve_mappings(*bus, TDMBus::Form::forward, reach,
                                                  core_.processor_name, &core_.name);
      for (const auto &space : level.record->spaces)
        core_.spaces[next_space++]->resolve_mappings(core_, reach, *space);
    }
  }

private:
  ArchitectureLevel bind(const TDMFileArchitecture &record, Arguments arguments)
  {
    if (!visited_.add(*record.name))
      throw new TDMSyntaxException(place_of(record, "name"), "architecture " + *record.name +
                                                                 " used as recursive base in " +
                                                                 listed_names(chain_));
    ArchitectureLevel level{&record, {}};
    try {
      level.scope.bind(record.parameters, std::move(arguments));
    } catch (TDMArgumentsException *failure) {
      const std::unique_ptr<TDMArgumentsException> owned(failure);
      throw new TDMSyntaxException(place_of(record, "name"), "cannot instantiate architecture \"" +
                                                                 *record.name + "\" for core \"" +
                                                                 core_.full_name() +
                                                                 "\": " + owned->text());
    }
    return level;
  }

  void create_objects(const TDMFileArchitecture &record, const ArgumentScope &scope)
  {
    if (core_.buses.empty()) core_.buses.reserve(record.buses.size());
    for (const auto &bus_record : record.buses) {
      auto bus = make_object<TDMBus>(*bus_record, TDMBus::Form::forward, scope);
      bus->core_name = &core_.name;
      bus->processor_name = core_.processor_name;
      core_.buses.push_back(std::move(bus));
    }
    for (const auto &space_record : record.spaces)
      core_.add_space(make_object<TDMAllocSpace>(*space_record, core_, scope));
  }

  /// A core may narrow what its architecture offers, and a base must offer all that is left.
  void merge_endianness(const TDMFileArchitecture &record)
  {
    if (core_.endianness.empty()) {
      core_.endianness.assign(record.endianness.begin(), record.endianness.end());
      return;
    }
    bool offered[3] = {};
    for (const int32_t value : record.endianness) offered[value] = true;
    for (const int32_t value : core_.endianness)
      if (!offered[value])
        throw new TDMSyntaxException(place_of(record, "name"),
                                     "supported endiannesses not all declared for parent");
  }

  const TDMFileArchitecture &base_of(const TDMFileArchitecture &record) const
  {
    const TDMFileArchitecture *base = templates_.architecture(*record.base);
    if (base == nullptr)
      throw new TDMSyntaxException(place_of(record, "name"), "base architecture " + *record.base +
                                                                 " not found for architecture " +
                                                                 *record.name);
    return *base;
  }

  TDMCore &core_;
  const Templates &templates_;
  NameSet visited_;
  Chain<TDMFileArchitecture> chain_;
};

} // namespace

TDMSpace *CoreSpaceLookup::find(std::string_view name) const
{
  return core_.find_space(name);
}

std::vector<TDMSpace *> CoreSpaceLookup::resolve(const TDMFileCopySubTableSpace &reference) const
{
  if (reference.cpuName)
    throw new TDMSyntaxException(place_of(reference, "cpuName"),
                                 "processor name not allowed in space reference");
  if (reference.coreName)
    throw new TDMSyntaxException(place_of(reference, "coreName"),
                                 "core name not allowed in space reference");
  const Text names = reference.spaceName.value_or("");
  std::vector<TDMSpace *> members;
  for (size_t begin = 0, end = 0; end != std::string::npos; begin = end + 1) {
    end = names.find('|', begin);
    TDMSpace *space = core_.find_space(names.substr(begin, end - begin));
    if (space == nullptr) return {};
    members.push_back(space);
  }
  return members;
}

} // namespace tdm

TDMCore::TDMCore(const TDMFileCore &record, const tdm::Text &processor,
                 const tdm::Templates &templates, const tdm::ArgumentScope &scope)
    : TDMObject{record.sourceLocations}, name(record.name.value_or("")),
      architecture_name(record.archName.value_or("")), processor_name(&processor),
      endianness(record.endianness.begin(), record.endianness.end()),
      space_id_offset(record.spaceIdOffset)
{
  const TDMFileArchitecture *architecture = templates.architecture(architecture_name);
  if (architecture == nullptr)
    throw new TDMSyntaxException(tdm::place_of(record, "name"), "parent architecture " +
                                                                    architecture_name +
                                                                    " not found for core " + name);
  tdm::Arguments arguments = scope.substitute(record.arguments, tdm::place_of(record, "archName"));
  tdm::ArchitectureInstance instance(*this, templates);
  instance.create(*architecture, std::move(arguments));
  instance.resolve();
}

TDMCore::~TDMCore() = default;

std::string TDMCore::full_name() const
{
  return *processor_name + ":" + name;
}

void TDMCore::add_space(std::unique_ptr<TDMSpace> space)
{
  largest_space_id_ = std::max(largest_space_id_, space->id);
  tdm::append(spaces, std::move(space));
  by_name_.update();
}

TDMSpace *TDMCore::find_space_by_any_name(std::string_view wanted) const
{
  const uint32_t place = std::min(place_by_full_name(wanted), by_name_.place_of(wanted));
  return place != tdm::NameTable::none ? spaces[place].get() : nullptr;
}

TDMSpace *TDMCore::find_space_by_id(int64_t id) const
{
  for (const auto &space : spaces)
    if (space->id == id) return space.get();
  return nullptr;
}

TDMSpace *TDMCore::find_space_by_full_name(std::string_view full_name) const
{
  const uint32_t place = place_by_full_name(full_name);
  return place != tdm::NameTable::none ? spaces[place].get() : nullptr;
}

TDMSpace *TDMCore::find_space_by_plain_name(std::string_view plain_name) const
{
  return by_name_.find(plain_name);
}

/// The placeholder has another prefix than the others; so the first of that plain name needn't be
/// the one.
uint32_t TDMCore::place_by_full_name(std::string_view full_name) const
{
  const size_t core_begin = processor_name->size() + 1;
  const size_t name_begin = core_begin + name.size() + 1;
  const auto is_colon = [full_name](size_t i) {
    return i < full_name.size() && full_name[i] == ':';
  };
  std::string_view plain_name;
  if (is_colon(core_begin - 1) && is_colon(name_begin - 1))
    plain_name = full_name.substr(name_begin);
  else if (is_colon(0) && is_colon(1))
    plain_name = full_name.substr(2);
  else
    return tdm::NameTable::none;
  for (size_t i = by_name_.place_of(plain_name); i < spaces.size(); ++i)
    if (tdm::is_prefixed_name(full_name, *spaces[i]->processor_name, *spaces[i]->core_name,
                              spaces[i]->name))
      return static_cast<uint32_t>(i);
  return tdm::NameTable::none;
}

void TDMCore::check(const tdm::CheckRunner &runner)
{
  const TDMSourceLocation at_name = location_or("name");
  if (buses.empty()) throw new TDMSyntaxException(at_name, "core " + full_name() + " has no buses");
  if (spaces.empty())
    throw new TDMSyntaxException(at_name, "core " + full_name() + " has no spaces");
  check_names();
  for (const auto &space : spaces) runner.run([&space] { space->check_mappings(); });
  if (!imported) add_space(tdm::make_object<TDMVoidSpace>("non alloc", 0, 8));
  for (const auto &space : spaces)
    if (space->start_address != nullptr)
      set_start_address(*space, space->location_or("start_address"));
  for (const auto &space : spaces)
    if (space->copy_table != nullptr) set_copy_table_space(*space, space->location_or("table"));
}

// What stands before the plain names is the same for all objects of a core by now.
void TDMCore::check_names() const
{
  tdm::NameSet stack_names;
  tdm::NameSet heap_names;
  for (const auto &space : spaces) {
    if (space.get() == by_name_.first_repeated())
      throw new TDMSyntaxException(space->location_or("name"),
                                   "space " + space->full_name() +
                                       " defined more than once in core " + full_name());
    for (const auto &stack : space->stacks)
      if (!stack_names.add(stack->name))
        throw new TDMSyntaxException(stack->location_or("name"),
                                     "stack " + stack->name + " defined more than once in core " +
                                         full_name());
    for (const auto &heap : space->heaps)
      if (!heap_names.add(heap->name))
        throw new TDMSyntaxException(heap->location_or("name"),
                                     "heap " + heap->name + " defined more than once in core " +
                                         full_name());
  }
  if (const TDMBus *bus = tdm::first_repeated(buses))
    throw new TDMSyntaxException(bus->location_or("name"), "bus " + bus->full_name() +
                                                               " defined more than once in core " +
                                                               full_name());
}

void TDMCore::set_start_address(TDMSpace &space, const TDMSourceLocation &place)
{
  if (start_address != nullptr)
    throw new TDMSyntaxException(place, "start address for core " + full_name() +
                                            " defined in more than one space");
  start_address = space.start_address.get();
  start_address_space = &space;
}

void TDMCore::set_copy_table_space(TDMSpace &space, const TDMSourceLocation &place)
{
  if (copytable_space == nullptr) copytable_space = &space;
  if (copytable_space != &space)
    throw new TDMSyntaxException(place, "copy table for " + full_name() + " refers to " +
                                            copytable_space->full_name() +
                                            " and defined locally in " + space.name);
}
