// Turns the location of a group into numbers of its space.
#include "layout/group_location.h"

#include "common/failures.h"
#include "layout/layout_space.h"
#include "layout/memory_routes.h"
#include "mapping/mapping.h"
#include "mapping/walk.h"

namespace tdm {

template <class Value>
std::vector<Value> memory_to_space(const LayoutSpace &space, const TDMMapDestination &memory,
                                   const TDMMapping *mapping, const Value &value)
{
  const TDMMapDestination *from = &memory;
  Value start = value;
  if (mapping != nullptr) {
    if (!map_back(*mapping, value, start)) return {};
    if (mapping->source() == &space.source()) return {start};
    from = mapping->source_as_destination();
    if (from == nullptr) return {};
  }
  std::vector<Value> values;
  for (const auto &route : map_back_to_object(space.source(), *from, start))
    values.push_back(route.value);
  return values;
}

template std::vector<AddressValue> memory_to_space(const LayoutSpace &, const TDMMapDestination &,
                                                   const TDMMapping *, const AddressValue &);
template std::vector<Interval> memory_to_space(const LayoutSpace &, const TDMMapDestination &,
                                               const TDMMapping *, const Interval &);

} // namespace tdm

int64_t TDMGroupLocation::address_in_space() const
{
  if (address == nullptr) return 0;
  const int64_t value = address->value();
  if (memory.object == nullptr) return from_literal_space(value, "address");
  const AddressValue position(value, 0, memory.object->get_mau_size());
  const auto routes = tdm::memory_to_space(*space, *memory.object, mapping, position);
  if (routes.empty()) no_route();
  return routes.front().value;
}

std::vector<TDMGroupLocation::Bounds> TDMGroupLocation::ranges_in_space() const
{
  std::vector<Bounds> bounds;
  if (is_address()) {
    const int64_t value = address_in_space();
    bounds.emplace_back(value, value);
  }
  for (const Range &range : ranges) {
    if (range.memory.object != nullptr) {
      append_memory_range(range, bounds);
      continue;
    }
    const int64_t low = from_literal_space(range.low->value(), "range");
    const int64_t high = from_literal_space(range.high->value(), "range");
    bounds.emplace_back(low, high);
  }
  return bounds;
}

/// A number of the text is meant in the literal space, if the space has one. It counts in MAUs of
/// the space all the same.
int64_t TDMGroupLocation::from_literal_space(int64_t value, LocationKey key) const
{
  const tdm::LayoutSpace *literal = space->address_literal_space();
  if (literal == nullptr) return value;
  const AddressValue position(value, 0, space->source().get_mau_size());
  const auto routes = tdm::map_back_to_object(space->source(), literal->destination(), position);
  if (routes.empty())
    throw new TDMUnexpectedErrorException(
        place(key), "Failed to map the address " + std::to_string(value) + " from space " +
                        tdm::full_name(*literal) + " to space " + tdm::full_name(*space));
  return routes.front().value.value;
}

void TDMGroupLocation::append_memory_range(const Range &range, std::vector<Bounds> &bounds) const
{
  const int32_t mau = range.memory.object->get_mau_size();
  const int64_t low = range.low != nullptr ? range.low->value() : 0;
  const int64_t high = range.high != nullptr ? range.high->value() : range.memory.size;
  const Interval interval(AddressValue(low, 0, mau), AddressValue(high, 0, mau));
  const auto routes = tdm::memory_to_space(*space, *range.memory.object, range.mapping, interval);
  if (routes.empty()) no_route();
  for (const Interval &route : routes) bounds.emplace_back(route.low.value, route.high.value);
}

void TDMGroupLocation::no_route() const
{
  const TDMSourceLocation *at = location("memoryReference");
  throw new TDMSyntaxException(at != nullptr ? *at : place("range"),
                               "absolute location in memory for group does not map to space " +
                                   tdm::full_name(*space));
}
