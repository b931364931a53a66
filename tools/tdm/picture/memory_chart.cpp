#include "memory_chart.h"

#include <algorithm>
#include <limits>
#include <map>
#include <set>
#include <span>
#include <tuple>

#include <tdm_c/tdm_inspect.h>

#include "../address.h"
#include "../format.h"
#include "../object_text.h"
#include "../session.h"
#include "../usage_error.h"

namespace tool::picture {

namespace {

/// Fills a chart, object by object.
class Reader {
public:
  Reader(const Session &session, MemoryChart &chart) : names_(session.names()), chart_(chart) {}

  void add_columns(const tdm_processor *processor);
  void add_global_buses(const tdm_spec *spec);
  void add_windows();
  void add_memory(tdm_memory *memory, bool global);
  void add_collisions(const tdm_spec *spec);
  void add_mapping_collisions(const tdm_spec *spec);

private:
  void add(const tdm_space *space, const std::string &owner);
  void add(const tdm_bus *bus, const std::string &owner);
  void add_window(const tdm_mapping *mapping);
  void add_pieces(size_t memory, tdm_memory *handle,
                  const std::vector<const tdm_mapping *> &mappings);
  void add_piece(size_t memory, const tdm_interval &cells, std::span<const tdm_inspect_hop> hops);
  [[nodiscard]] std::vector<Step> route_of(std::span<const tdm_inspect_hop> hops,
                                           const tdm_interval &cells) const;

  /// Nothing for an object that the picture leaves out.
  [[nodiscard]] std::optional<size_t> column_of(const void *object) const;
  [[nodiscard]] std::optional<size_t> column_of(tdm_mapsource *source) const;
  [[nodiscard]] std::optional<size_t> column_of(tdm_mapdestination *destination) const;
  [[nodiscard]] std::string place_of(const tdm_mapping *mapping) const;
  [[nodiscard]] Collision collision_at(size_t column, const tdm_interval &at, int64_t bits) const;

  const FileNames &names_;
  MemoryChart &chart_;
  std::map<const void *, size_t> columns_;
  std::map<const tdm_memory *, size_t> memories_;
  std::vector<const tdm_space *> spaces_;
  std::vector<const tdm_bus *> buses_;
};

// ---- columns

void Reader::add_columns(const tdm_processor *processor)
{
  for (const tdm_core *core : cores_of(processor)) {
    const std::string owner = text_of(tdm_core_get_name(core));
    for (const tdm_space *space : spaces_of(core))
      if (tdm_inspect_space_kind(space) == TDM_SPACE_DEFINED) add(space, owner);
    for (const tdm_bus *bus : take_elements<tdm_bus *>(tdm_inspect_core_buses(core)))
      add(bus, owner);
  }
  for (const tdm_bus *bus : take_elements<tdm_bus *>(tdm_inspect_processor_buses(processor)))
    add(bus, "");
}

void Reader::add_global_buses(const tdm_spec *spec)
{
  for (const tdm_bus *bus : take_elements<tdm_bus *>(tdm_inspect_spec_buses(spec))) add(bus, "");
}

void Reader::add(const tdm_space *space, const std::string &owner)
{
  if (!columns_.try_emplace(space, chart_.columns.size()).second) return;
  spaces_.push_back(space);
  tdm_srcpos position{};
  const bool known = tdm_inspect_position(TDM_OBJECT_SPACE, space, "name", &position) == 1;
  chart_.columns.push_back(
      {true, owner, text_of(tdm_space_get_name(space)), text_of(tdm_space_get_full_name(space)),
       tdm_space_get_mausize(space),
       known ? names_.shown(text_of(position.file)) + ":" + std::to_string(position.line) : ""});
}

void Reader::add(const tdm_bus *bus, const std::string &owner)
{
  if (!columns_.try_emplace(bus, chart_.columns.size()).second) return;
  buses_.push_back(bus);
  chart_.columns.push_back({false, owner, text_of(tdm_bus_get_name(bus)),
                            text_of(tdm_bus_get_full_name(bus)), tdm_bus_get_mausize(bus),
                            place_text(names_, tdm_bus_get_source_location(bus))});
}

std::optional<size_t> Reader::column_of(const void *object) const
{
  const auto found = columns_.find(object);
  return found != columns_.end() ? std::optional(found->second) : std::nullopt;
}

std::optional<size_t> Reader::column_of(tdm_mapsource *source) const
{
  if (const tdm_bus *bus = tdm_mapsource_get_bus(source)) return column_of(bus);
  return column_of(static_cast<const void *>(tdm_mapsource_get_space(source)));
}

std::optional<size_t> Reader::column_of(tdm_mapdestination *destination) const
{
  if (const tdm_bus *bus = tdm_mapdestination_get_bus(destination)) return column_of(bus);
  return column_of(static_cast<const void *>(tdm_mapdestination_get_space(destination)));
}

// ---- mappings

/// Of the first part of it that has a place.
std::string Reader::place_of(const tdm_mapping *mapping) const
{
  tdm_srcpos best{};
  for (const char *key :
       take_elements<const char *>(tdm_inspect_position_keys(TDM_OBJECT_MAPPING, mapping))) {
    tdm_srcpos position{};
    if (tdm_inspect_position(TDM_OBJECT_MAPPING, mapping, key, &position) == 0) continue;
    if (best.line == 0 || position.line < best.line) best = position;
  }
  return best.line == 0 ? "" : names_.shown(text_of(best.file)) + ":" + std::to_string(best.line);
}

void Reader::add_windows()
{
  const auto add_all = [this](tdm_arr *mappings) {
    for (const tdm_mapping *mapping : take_elements<tdm_mapping *>(mappings)) add_window(mapping);
  };
  for (const tdm_space *space : spaces_) add_all(tdm_inspect_space_outgoing_mappings(space));
  for (const tdm_bus *bus : buses_) add_all(tdm_inspect_bus_outgoing_mappings(bus));
}

void Reader::add_window(const tdm_mapping *mapping)
{
  tdm_inspect_mapping facts;
  if (tdm_inspect_get_mapping(mapping, &facts) == 0) return;
  const auto from = column_of(facts.source);
  const auto to = column_of(facts.destination);
  if (!from || !to) return;
  chart_.windows.push_back(
      {*from, *to, facts.source_interval, facts.destination_interval, place_of(mapping)});
}

// ---- memories

/// Where the cells that mappings show begin and end, ascending, in bits.
std::set<int64_t> cuts_of(const std::vector<const tdm_mapping *> &mappings)
{
  std::set<int64_t> cuts;
  for (const tdm_mapping *mapping : mappings) {
    tdm_inspect_mapping facts;
    if (tdm_inspect_get_mapping(mapping, &facts) == 0) continue;
    cuts.insert(bit_position(facts.destination_interval.low));
    cuts.insert(bit_position(facts.destination_interval.high));
  }
  return cuts;
}

void Reader::add_memory(tdm_memory *memory, bool global)
{
  std::vector<const tdm_mapping *> mappings;
  for (const tdm_mapping *mapping :
       take_elements<tdm_mapping *>(tdm_inspect_memory_incoming_mappings(memory)))
    mappings.push_back(mapping);
  const size_t index = chart_.memories.size();
  chart_.memories.push_back({text_of(tdm_memory_get_name(memory)),
                             text_of(tdm_memory_get_full_name(memory)), memory_type_name(memory),
                             tdm_memory_is_reserved(memory) != 0, tdm_memory_get_mausize(memory),
                             tdm_memory_get_size(memory),
                             place_text(names_, tdm_memory_get_source_location(memory))});
  const size_t before = chart_.appearances.size();
  add_pieces(index, memory, mappings);
  // A global memory belongs to the picture of a processor only where the processor sees it.
  if (global && chart_.appearances.size() == before)
    chart_.memories.pop_back();
  else
    memories_[memory] = index;
}

/// Each piece that mappings delimit is translated on its own, so that it is known which cells
/// appear where.
void Reader::add_pieces(size_t memory, tdm_memory *handle,
                        const std::vector<const tdm_mapping *> &mappings)
{
  const tdm_mapdestination *destination = tdm_inspect_memory_as_destination(handle);
  tdm_interval cells;
  tdm_memory_get_addressrange(handle, &cells);
  const int mau = std::max(cells.low.mau, 1);
  const std::set<int64_t> cuts = cuts_of(mappings);
  for (auto cut = cuts.begin(); cut != cuts.end() && std::next(cut) != cuts.end(); ++cut) {
    const int64_t end = *std::next(cut);
    cells.low.value = *cut / mau;
    cells.low.bits = static_cast<int32_t>(*cut % mau);
    cells.high.value = end / mau;
    cells.high.bits = static_cast<int32_t>(end % mau);
    const int64_t failures_before = tdm_inspect_failure_count();
    for (const int ends : {TDM_ROUTE_TO_SPACE, TDM_ROUTE_TO_BUS}) {
      const auto hops = take_elements<tdm_inspect_hop>(
          tdm_inspect_interval_routes_back(destination, ends, &cells));
      for (size_t first = 0, last = 0; first < hops.size(); first = last) {
        while (last < hops.size() && hops[last].route == hops[first].route) ++last;
        add_piece(memory, cells, std::span(hops).subspan(first, last - first));
      }
    }
    if (tdm_inspect_failure_count() != failures_before)
      chart_.failures.push_back(chart_.memories[memory].full_name + ": " +
                                tdm_inspect_failure_text());
  }
}

/// `hops` lead from the cells of the memory back to where they appear.
void Reader::add_piece(size_t memory, const tdm_interval &cells,
                       std::span<const tdm_inspect_hop> hops)
{
  const tdm_inspect_hop &last = hops.back();
  const auto column = column_of(last.source);
  if (!column) return;
  Appearance piece;
  piece.memory = memory;
  piece.column = *column;
  piece.at = last.interval;
  piece.reserved = last.reserved != 0;
  piece.cells_low = bit_position(cells.low);
  piece.cells_high = bit_position(cells.high);
  piece.route = route_of(hops, cells);
  chart_.appearances.push_back(std::move(piece));
}

/// The other way around: each step leads to where the hop in front of it had come from.
std::vector<Step> Reader::route_of(std::span<const tdm_inspect_hop> hops,
                                   const tdm_interval &cells) const
{
  std::vector<Step> route;
  for (size_t i = hops.size(); i-- > 0;) {
    tdm_inspect_mapping facts{};
    tdm_inspect_get_mapping(hops[i].mapping, &facts);
    const End to = end_of(hops[i].destination);
    route.push_back({to.kind + (" " + to.name), i > 0 ? hops[i - 1].interval : cells,
                     text_of(facts.name), place_of(hops[i].mapping)});
  }
  return route;
}

/// Without what collides there.
Collision Reader::collision_at(size_t column, const tdm_interval &at, int64_t bits) const
{
  const std::string size = human_size(bits, 1);
  return {column,
          at,
          {},
          "overlap " + size,
          "overlap on " + chart_.columns[column].full_name + "  " + span_text(at) + ", " + size};
}

void Reader::add_collisions(const tdm_spec *spec)
{
  for (const auto &overlap : take_elements<tdm_inspect_overlap>(tdm_inspect_spec_overlaps(spec))) {
    const auto column = column_of(overlap.source);
    const auto first = memories_.find(overlap.first);
    const auto second = memories_.find(overlap.second);
    if (!column || first == memories_.end() || second == memories_.end()) continue;
    Collision collision = collision_at(*column, overlap.range, overlap.bits);
    collision.memories.emplace(first->second, second->second);
    const auto add_owner = [&](size_t memory, const tdm_mapping *mapping) {
      collision.text += "\n" + chart_.memories[memory].full_name + ", map at " + place_of(mapping);
    };
    add_owner(first->second, overlap.first_mapping);
    add_owner(second->second, overlap.second_mapping);
    chart_.collisions.push_back(std::move(collision));
  }
}

void Reader::add_mapping_collisions(const tdm_spec *spec)
{
  for (const auto &overlap :
       take_elements<tdm_inspect_mapping_overlap>(tdm_inspect_spec_mapping_overlaps(spec))) {
    const auto column = column_of(static_cast<const void *>(overlap.space));
    if (!column) continue;
    Collision collision = collision_at(*column, overlap.range, overlap.bits);
    for (const tdm_mapping *mapping : {overlap.first, overlap.second})
      collision.text += "\n" + mapping_text(mapping) + ", " + place_of(mapping);
    chart_.collisions.push_back(std::move(collision));
  }
}

// ---- pieces of one appearance put together again

auto order_of(const Appearance &piece)
{
  return std::tuple(piece.column, piece.memory, piece.at.low.bank, piece.at.bits,
                    bit_position(piece.at.low), bit_position(piece.at.high), piece.cells_low);
}

bool continues(const Step &first, const Step &next)
{
  return first.to == next.to && first.place == next.place &&
         bit_position(first.at.high) == bit_position(next.at.low);
}

bool continues(const Appearance &first, const Appearance &next)
{
  return first.column == next.column && first.memory == next.memory &&
         first.reserved == next.reserved && first.at.low.bank == next.at.low.bank &&
         first.at.bits == next.at.bits && first.at.width == next.at.width &&
         bit_position(first.at.high) == bit_position(next.at.low) &&
         first.cells_high == next.cells_low &&
         std::equal(first.route.begin(), first.route.end(), next.route.begin(), next.route.end(),
                    [](const Step &a, const Step &b) { return continues(a, b); });
}

void append(Appearance &first, const Appearance &next)
{
  first.at.high = next.at.high;
  first.cells_high = next.cells_high;
  for (size_t i = 0; i < first.route.size(); ++i) first.route[i].at.high = next.route[i].at.high;
}

bool is_same(const Appearance &a, const Appearance &b)
{
  return order_of(a) == order_of(b) && a.reserved == b.reserved;
}

void join_pieces(std::vector<Appearance> &pieces)
{
  std::stable_sort(pieces.begin(), pieces.end(), [](const Appearance &a, const Appearance &b) {
    // Of several routes to the same place the shortest one is told.
    return std::tuple(order_of(a), a.route.size()) < std::tuple(order_of(b), b.route.size());
  });
  std::vector<Appearance> joined;
  for (Appearance &piece : pieces) {
    if (!joined.empty() && continues(joined.back(), piece)) {
      append(joined.back(), piece);
    } else if (joined.empty() || !is_same(joined.back(), piece)) {
      joined.push_back(std::move(piece));
    }
  }
  pieces = std::move(joined);
}

std::vector<tdm_processor *> chosen_processors(const tdm_spec *spec, const std::string &name)
{
  std::vector<tdm_processor *> chosen;
  std::string candidates;
  for (tdm_processor *processor : processors_of(spec)) {
    const std::string own = text_of(tdm_processor_get_name(processor));
    candidates += "\n  " + own;
    if (name.empty() || own == name) chosen.push_back(processor);
  }
  if (chosen.empty() && !name.empty())
    throw UsageError{"there is no processor \"" + name + "\"; there are:" + candidates};
  return chosen;
}

} // namespace

std::pair<const Appearance *, const Appearance *> appearances_in(const MemoryChart &chart,
                                                                 size_t column)
{
  Appearance probe;
  probe.column = column;
  const Appearance *begin = chart.appearances.data();
  return std::equal_range(
      begin, begin + chart.appearances.size(), probe,
      [](const Appearance &a, const Appearance &b) { return a.column < b.column; });
}

int64_t bit_position(const tdm_addressvalue &address)
{
  int64_t position = 0;
  if (__builtin_mul_overflow(address.value, static_cast<int64_t>(address.mau), &position) ||
      __builtin_add_overflow(position, static_cast<int64_t>(address.bits), &position))
    return address.value < 0 ? -std::numeric_limits<int64_t>::max()
                             : std::numeric_limits<int64_t>::max();
  return position;
}

MemoryChart read_chart(const Session &session, const std::string &processor)
{
  MemoryChart chart;
  Reader reader(session, chart);
  const std::vector<tdm_processor *> processors = chosen_processors(session.spec(), processor);
  for (const tdm_processor *one : processors) {
    chart.title += (chart.title.empty() ? "" : ", ") + text_of(tdm_processor_get_name(one));
    reader.add_columns(one);
  }
  reader.add_global_buses(session.spec());
  reader.add_windows();
  for (const tdm_processor *one : processors)
    for (tdm_memory *memory : take_elements<tdm_memory *>(tdm_processor_get_memories(one)))
      reader.add_memory(memory, false);
  for (tdm_memory *memory : take_elements<tdm_memory *>(tdm_spec_get_memories(session.spec())))
    reader.add_memory(memory, !processor.empty());
  reader.add_collisions(session.spec());
  reader.add_mapping_collisions(session.spec());
  join_pieces(chart.appearances);
  return chart;
}

} // namespace tool::picture
