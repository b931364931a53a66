// Builds the space that stands for a group of spaces: each memory interval that the members reach
// is reached through one of them, at the same address.
#include <algorithm>
#include <map>
#include <set>
#include <unordered_map>
#include <utility>

#include "common/failures.h"
#include "mapping/interval_set.h"
#include "mapping/walk.h"
#include "model/core.h"
#include "model/mapping_builder.h"
#include "model/memory.h"
#include "model/spec.h"
#include "preprocessor/string_pool.h"

namespace {

/// The addresses of a member space that are looked at.
constexpr int64_t walked_span = 0x100000000;

std::string lower_case(std::string text)
{
  for (char &c : text)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  return text;
}

/// Intervals that share a position count as equal: the first one that comes stays.
using DistinctIntervals = std::set<Interval, tdm::IntervalBefore>;

/// What the members reach, memory by memory, in the order in which the memories are first reached.
class ReachedMemories {
public:
  void collect(const TDMSpace &space)
  {
    walk(space, -1);
    if (space.bank_def != nullptr)
      for (const int32_t bank : space.bank_def->banks) walk(space, bank);
  }

  [[nodiscard]] const std::vector<std::pair<TDMMapDestination *, DistinctIntervals>> &
  memories() const
  {
    return memories_;
  }

private:
  void walk(const TDMSpace &space, int32_t bank)
  {
    const auto mau = static_cast<int16_t>(space.mau_size);
    const Interval all(AddressValue{0, 0, mau, bank}, AddressValue{walked_span, 0, mau, bank});
    for (const auto &route : tdm::map_to_memory<Interval>(space, all)) {
      const auto [place, added] = places_.emplace(route.object, memories_.size());
      if (added) memories_.emplace_back(route.object, DistinctIntervals());
      memories_[place->second].second.insert(route.value);
    }
  }

  std::map<TDMMapDestination *, size_t> places_;
  std::vector<std::pair<TDMMapDestination *, DistinctIntervals>> memories_;
};

/// Which members are worth a walk back from a memory: of a few all; of many those that one walk to
/// all spaces finds, so that the walks don't multiply with the members.
class MembersInReach {
public:
  explicit MembersInReach(const tdm::ObjectList<TDMSpace *> &members) : members_(members)
  {
    if (members.size() <= few) return;
    for (size_t i = 0; i < members.size(); ++i) numbers_.emplace(members[i], i);
  }

  /// In the order of the members; all that reach the interval, and perhaps more.
  [[nodiscard]] tdm::ObjectList<TDMSpace *> of(const TDMMapDestination &memory,
                                               const Interval &interval) const
  {
    if (members_.size() <= few) return members_;
    std::set<size_t> found;
    for (const auto &route : tdm::map_back_to(tdm::NodeKind::space, memory, interval))
      if (const auto number = numbers_.find(route.object); number != numbers_.end())
        found.insert(number->second);
    tdm::ObjectList<TDMSpace *> in_reach;
    in_reach.reserve(found.size());
    for (const size_t number : found) in_reach.push_back(members_[number]);
    return in_reach;
  }

private:
  static constexpr size_t few = 8;

  const tdm::ObjectList<TDMSpace *> &members_;
  std::unordered_map<const TDMMapSource *, size_t> numbers_;
};

using Connections = std::vector<std::pair<Interval, TDMSpace *>>;

/// One for each address at which members reach the interval; where several do so at overlapping
/// addresses, the last of them gets it.
void append_connections(const TDMMapDestination &memory, const Interval &interval,
                        const MembersInReach &members, Connections &connections)
{
  std::multimap<Interval, TDMSpace *, tdm::IntervalBefore> routes;
  for (TDMSpace *space : members.of(memory, interval))
    for (const auto &route : tdm::map_back_to_object<Interval>(*space, memory, interval))
      routes.emplace(route.value, space);
  while (!routes.empty()) {
    const auto first = routes.begin();
    if (routes.count(first->first) == 1) connections.emplace_back(*first);
    routes.erase(first);
  }
}

} // namespace

TDMCloneSpace::TDMCloneSpace(tdm::ObjectList<TDMSpace *> spaces, tdm::Text core,
                             tdm::Text processor, int32_t space_id, const TDMSourceLocation &place)
    : members(std::move(spaces)), owned_core_name_(core), owned_processor_name_(processor)
{
  core_name = &owned_core_name_;
  processor_name = &owned_processor_name_;
  id = space_id;
  std::string names;
  for (const TDMSpace *space : members) {
    if (!names.empty()) names += '|';
    names += lower_case(space->full_name());
    if (space == members.front()) mau_size = space->mau_size;
    if (space->mau_size != mau_size)
      throw new TDMSyntaxException(place, "the address spaces making up clone space \"" + names +
                                              "...\" do not all have the same MAU size");
  }
  name = tdm::pooled_text(names);
  connect();
  compute_valid_interval();
}

/// The mappings come when all walks are done. No walk to a member leads through the space that is
/// being made, but many lead past the lists of mappings that its members have.
void TDMCloneSpace::connect()
{
  ReachedMemories reached;
  for (const TDMSpace *space : members) reached.collect(*space);
  const MembersInReach in_reach(members);
  Connections connections;
  for (const auto &[memory, intervals] : reached.memories())
    for (const Interval &interval : intervals)
      append_connections(*memory, interval, in_reach, connections);
  for (const auto &[span, member] : connections) add_member_mapping(span, *member);
}

void TDMCloneSpace::add_member_mapping(const Interval &span, TDMSpace &member)
{
  tdm::MapEntry entry;
  entry.src_dbits = {0, mau_size - 1};
  entry.src_offset = span.low.value;
  entry.dest_dbits = {0, member.mau_size - 1};
  entry.dest_offset = span.low.value;
  entry.size = static_cast<int64_t>(static_cast<uint64_t>(span.high.value) -
                                    static_cast<uint64_t>(span.low.value));
  auto mapping = TDMMapping::forward(entry, *this, tdm::map_end(*this));
  TDMMapping &own = *mapping;
  outgoing_.push_back_own(std::move(mapping));
  own.set_destination(member, tdm::map_end(member));
}

namespace {

/// The space of a full name, `<processor>:<core>:<space>`, or null. The processor at hand is not
/// in the list of the spec before it is complete.
TDMSpace *find_by_full_name(const std::string &full_name, const TDMSpec &spec,
                            std::string_view own_processor,
                            const tdm::PooledVector<std::unique_ptr<TDMCore>> &siblings)
{
  const size_t first = full_name.find(':');
  const size_t second = first == std::string::npos ? first : full_name.find(':', first + 1);
  if (second == std::string::npos) return nullptr;
  const std::string processor_name = full_name.substr(0, first);
  const std::string core_name = full_name.substr(first + 1, second - first - 1);

  const auto find_in = [&](const tdm::PooledVector<std::unique_ptr<TDMCore>> &cores) -> TDMSpace * {
    for (const auto &core : cores)
      if (core->name == core_name)
        if (TDMSpace *space = core->find_space_by_full_name(full_name)) return space;
    return nullptr;
  };
  if (processor_name == own_processor) return find_in(siblings);
  const TDMProcessor *other = spec.find_processor(processor_name);
  return other != nullptr ? find_in(other->cores) : nullptr;
}

/// Above all ids that the core can meet: its own and those of the cores that it imports.
int32_t next_space_id(const TDMCore &core)
{
  int32_t largest = core.largest_space_id();
  for (const TDMCore *imported : core.imported_cores)
    largest = std::max(largest, imported->largest_space_id());
  return static_cast<int32_t>(static_cast<uint32_t>(largest) + 1U);
}

} // namespace

TDMCloneSpace *TDMSpec::find_clone_space(const std::set<std::string> &names) const
{
  const auto found = clone_spaces.find(names);
  return found != clone_spaces.end() ? found->second : nullptr;
}

TDMCloneSpace *
TDMSpec::create_clone_space(TDMCore &core,
                            const tdm::PooledVector<std::unique_ptr<TDMCore>> &siblings,
                            const std::set<std::string> &names, const TDMSourceLocation &place)
{
  tdm::ObjectList<TDMSpace *> members;
  for (const std::string &full_name : names)
    if (TDMSpace *space = find_by_full_name(full_name, *this, *core.processor_name, siblings))
      members.push_back(space);
  if (members.empty()) return nullptr;
  auto space = std::make_unique<TDMCloneSpace>(std::move(members), core.name, *core.processor_name,
                                               next_space_id(core), place);
  TDMCloneSpace *created = space.get();
  core.add_space(std::move(space));
  clone_spaces.emplace(names, created);
  return created;
}
