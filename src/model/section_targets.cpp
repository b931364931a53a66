// Looks names up, and refuses those that mean nothing or too much.
#include "model/section_targets.h"

#include <algorithm>
#include <set>

#include "common/failures.h"
#include "language/records.h"
#include "model/spec.h"

namespace tdm {

/// What a layout and a setup are called in reports, and the key that these stand at.
struct TargetWords {
  LocationKey key;
  const char *no_processor;
  const char *no_core;
  const char *no_space;
  const char *purpose; ///< behind the name of what could not be found
};

namespace {

constexpr TargetWords layout_words = {"section_layout", "no processor specified for section layout",
                                      "no core specified for section layout",
                                      "no space specified for section layout",
                                      " for section layout"};

constexpr TargetWords setup_words = {"section_setup", "no processor specified for section setup",
                                     "no core specified for section setup",
                                     "no space specified for section setup", " for section setup"};

TDMSourceLocation place_of(const TDMFileObject &record, LocationKey key, LocationKey otherwise)
{
  if (const TDMSourceLocation *found = record.find_location(key)) return *found;
  if (const TDMSourceLocation *found = record.find_location(otherwise)) return *found;
  return {};
}

/// The one element of a list, or null if it has more or less.
template <class Object> Object *only_one(const PooledVector<std::unique_ptr<Object>> &objects)
{
  return objects.size() == 1 ? objects.front().get() : nullptr;
}

/// The one space of a core that a description defines. The placeholder, and the spaces that stand
/// for others, come with the library and don't count.
TDMSpace *only_space(const TDMCore &core)
{
  TDMSpace *only = nullptr;
  for (const auto &space : core.spaces) {
    if (dynamic_cast<const TDMAllocSpace *>(space.get()) == nullptr) continue;
    if (only != nullptr) return nullptr;
    only = space.get();
  }
  return only;
}

/// The names of a group of spaces, without the processor and the core before them.
std::vector<std::string> split_members(std::string_view names)
{
  const size_t first = names.find(':');
  const size_t second = first == std::string::npos ? first : names.find(':', first + 1);
  std::vector<std::string> members;
  size_t begin = second == std::string::npos ? 0 : second + 1;
  for (size_t end = 0; end != std::string::npos; begin = end + 1) {
    end = names.find('|', begin);
    members.emplace_back(names.substr(begin, end - begin));
  }
  return members;
}

} // namespace

SectionTargets::SectionTargets(TDMSpec &spec) : registry_(spec), spec_(&spec) {}

SectionTargets::SectionTargets(TDMCloneSpaceRegistry &registry, TDMProcessor &processor)
    : registry_(registry), processor_(&processor)
{
}

SectionTargets::Target SectionTargets::find(const TDMFileSectionLayout &record)
{
  return find(record, layout_words);
}

SectionTargets::Target SectionTargets::find(const TDMFileSectionSetup &record)
{
  return find(record, setup_words);
}

template <class Record>
SectionTargets::Target SectionTargets::find(const Record &record, const TargetWords &words)
{
  const TDMSourceLocation place = place_of(record, words.key, "spaceName");
  TDMProcessor &processor = find_processor(record.cpuName, words, place);

  TDMCore *core =
      record.coreName ? processor.find_core(*record.coreName) : only_one(processor.cores);
  if (core == nullptr)
    throw new TDMSyntaxException(place, record.coreName ? "could not find core " +
                                                              *record.coreName + words.purpose
                                                        : words.no_core);

  const TDMSourceLocation space_place = place_of(record, "spaceName", words.key);
  TDMSpace *space = record.spaceName
                        ? find_space(processor, *core, *record.spaceName, space_place, place)
                        : only_space(*core);
  if (space == nullptr)
    throw new TDMSyntaxException(
        space_place, record.spaceName ? "could not find space " + *record.spaceName + words.purpose
                                      : words.no_space);
  return {&processor, core, space};
}

TDMProcessor &SectionTargets::find_processor(const std::optional<Text> &name,
                                             const TargetWords &words,
                                             const TDMSourceLocation &place) const
{
  if (processor_ != nullptr) return *processor_;
  TDMProcessor *processor = name ? spec_->find_processor(*name) : only_one(spec_->processors);
  if (processor == nullptr)
    throw new TDMSyntaxException(place, name ? "could not find processor " + *name + words.purpose
                                             : words.no_processor);
  return *processor;
}

TDMSpace *SectionTargets::find_space(TDMProcessor &processor, TDMCore &core, std::string_view name,
                                     const TDMSourceLocation &place, const TDMSourceLocation &asked)
{
  if (name.find('|') != std::string::npos) return clone_space(processor, core, name, place, asked);
  return core.find_space(name);
}

TDMSpace *SectionTargets::clone_space(TDMProcessor &processor, TDMCore &core,
                                      std::string_view names, const TDMSourceLocation &place,
                                      const TDMSourceLocation &asked)
{
  if (core.imported)
    throw new TDMSyntaxException(place, "clone spaces are not allowed in imported core \"" +
                                            processor.name + ":" + core.name + "\"");
  std::set<std::string> full_names;
  for (const std::string &member : split_members(names)) {
    const TDMSpace *found = find_member(processor, core, member);
    if (found == nullptr)
      throw new TDMSyntaxException(place, "could not resolve address space reference \"" + member +
                                              "\" in clone address space section layout \"" +
                                              std::string(names) + "\"");
    full_names.insert(found->full_name());
  }
  if (TDMCloneSpace *known_clone = registry_.find_clone_space(full_names)) return known_clone;
  return registry_.create_clone_space(core, processor.cores, full_names, asked);
}

/// A space of the core by plain name, else any of the processor as `<processor>_<core>_<space>` or
/// `<core>_<space>`. Spaces that are made later stand for others and have no such names.
TDMSpace *SectionTargets::find_member(const TDMProcessor &processor, const TDMCore &core,
                                      const std::string &member)
{
  if (TDMSpace *own = core.find_space_by_plain_name(member)) return own;
  const auto [entry, added] = members_.try_emplace(&processor);
  Members &members = entry->second;
  if (added)
    for (const auto &each : processor.cores)
      for (const auto &space : each->spaces) {
        std::string name = space->full_name();
        const size_t first_colon = name.find(':');
        std::replace(name.begin(), name.end(), ':', '_');
        members.emplace(name, space.get());
        members.emplace(name.substr(first_colon + 1), space.get());
      }
  const auto found = members.find(member);
  return found != members.end() ? found->second : nullptr;
}

TDMSpace *SectionTargets::resolve(const TDMFileCopySubTableSpace &reference)
{
  TDMProcessor &processor = referenced_processor(reference);
  TDMCore *core =
      reference.coreName ? processor.find_core(*reference.coreName) : only_one(processor.cores);
  if (core == nullptr) {
    const TDMSourceLocation place = place_of(reference, "coreName", "spaceRef");
    if (!reference.coreName)
      throw new TDMSyntaxException(place, "core name required in space reference");
    throw new TDMSyntaxException(place,
                                 "could not find core with name \"" + *reference.coreName + "\"");
  }
  const TDMSourceLocation place = place_of(reference, "spaceName", "spaceRef");
  return find_space(processor, *core, reference.spaceName.value_or(""), place, place);
}

TDMProcessor &SectionTargets::referenced_processor(const TDMFileCopySubTableSpace &reference) const
{
  const TDMSourceLocation place = place_of(reference, "cpuName", "spaceRef");
  if (processor_ != nullptr) {
    if (reference.cpuName)
      throw new TDMSyntaxException(place, "processor name not allowed in space reference");
    return *processor_;
  }
  TDMProcessor *processor =
      reference.cpuName ? spec_->find_processor(*reference.cpuName) : only_one(spec_->processors);
  if (processor != nullptr) return *processor;
  if (!reference.cpuName)
    throw new TDMSyntaxException(place, "processor name required in space reference");
  throw new TDMSyntaxException(place,
                               "could not find processor with name \"" + *reference.cpuName + "\"");
}

LayoutMemory SectionTargets::find_memory(const TDMProcessor &processor, std::string_view name) const
{
  const TDMMemory *memory = processor.find_memory_by_plain_name(name);
  if (memory == nullptr) memory = processor.find_memory(name);
  if (memory == nullptr && spec_ != nullptr) memory = spec_->find_memory(name);
  return memory != nullptr ? LayoutMemory{memory, memory->size} : LayoutMemory{};
}

const TDMMapping *SectionTargets::find_mapping(const TDMMapDestination &memory,
                                               std::string_view name)
{
  const auto [entry, added] = mappings_.try_emplace(&memory);
  NamedMappings &mappings = entry->second;
  if (added)
    for (const TDMMapping *mapping : memory.incoming_mappings())
      if (const auto its_name = mapping->name()) mappings.emplace(*its_name, mapping);
  const auto found = mappings.find(name);
  return found != mappings.end() ? found->second : nullptr;
}

} // namespace tdm
