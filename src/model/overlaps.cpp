// A sweep over what is taken of each source, from low to high. Claims that share addresses without
// overlapping lie on data lines of their own, so that the list of those that are open stays short
// as long as few overlaps have been found.
#include "model/overlaps.h"

#include <algorithm>
#include <bit>
#include <limits>
#include <memory>
#include <unordered_map>

#include "mapping/translation.h"
#include "model/spec.h"

namespace tdm {

namespace {

/// What a mapping takes of its source.
struct Claim {
  TDMMapping *mapping;
  const TDMMemory *memory; ///< null for a mapping of a space
  Interval interval;
  size_t order;
};

/// Two claims on the same, in their order.
struct Pair {
  Claim first;
  Claim second;
  Interval range;
};

int64_t positive_remainder(int64_t value, int64_t divisor)
{
  const int64_t rest = value % divisor;
  return rest < 0 ? rest + divisor : rest;
}

/// The bits of the mask that lie in the span.
int64_t bits_held(const Interval &interval)
{
  constexpr int64_t most = std::numeric_limits<int64_t>::max();
  const int64_t mau = interval.low.mau;
  const int64_t width = interval.pattern.width;
  const int64_t units = wrap_sub(interval.high.value, interval.low.value);
  if (mau < 1 || units < 0 || units >= most / mau) return most;
  const int64_t length = units * mau + interval.high.bits - interval.low.bits;
  const int64_t begin = positive_remainder(
      positive_remainder(interval.low.value, width) * mau + interval.low.bits, width);
  int64_t held = length / width * std::popcount(interval.pattern.bits);
  for (int64_t i = 0; i < length % width; ++i)
    held += static_cast<int64_t>(interval.pattern.bits >> ((begin + i) % width) & 1);
  return held;
}

/// Whether the step succeeded. What would need a mask of more than 64 bits is passed over, so that
/// the rest can be told.
template <typename Step> bool unless_too_wide(Step step)
{
  try {
    return step();
  } catch (const Interval::PatternOverflowException *failure) {
    const std::unique_ptr<const Interval::PatternOverflowException> owned(failure);
    return false;
  }
}

class Search {
public:
  /// Claims are given in the order in which they are to be told.
  void add(TDMMapping &mapping, const TDMMemory *memory, const Interval &interval)
  {
    // What holds no bit is in nobody's way, and would stay open for long.
    if (interval.is_empty() || interval.pattern.bits == 0) return;
    const auto [place, is_new] = places_.try_emplace(mapping.source(), claims_.size());
    if (is_new) claims_.emplace_back();
    claims_[place->second].push_back({&mapping, memory, interval, order_++});
  }

  std::vector<Pair> run()
  {
    for (auto &claims : claims_) sweep(claims);
    std::sort(found_.begin(), found_.end(), [](const Pair &a, const Pair &b) {
      return a.second.order != b.second.order ? a.second.order < b.second.order
                                              : a.first.order < b.first.order;
    });
    return std::move(found_);
  }

private:
  void sweep(std::vector<Claim> &claims)
  {
    std::sort(claims.begin(), claims.end(), [](const Claim &a, const Claim &b) {
      if (a.interval.low != b.interval.low) return a.interval.low < b.interval.low;
      return a.order < b.order;
    });
    std::vector<const Claim *> open;
    for (const Claim &claim : claims) {
      std::erase_if(open,
                    [&](const Claim *other) { return other->interval.high <= claim.interval.low; });
      for (const Claim *other : open) {
        if (found_.size() >= most_overlaps) return;
        compare(*other, claim);
      }
      open.push_back(&claim);
    }
  }

  void compare(const Claim &a, const Claim &b)
  {
    Interval range;
    if (!unless_too_wide([&] { return a.interval.intersect(b.interval, range); })) return;
    found_.push_back(a.order < b.order ? Pair{a, b, range} : Pair{b, a, range});
  }

  std::unordered_map<TDMMapSource *, size_t> places_; ///< in `claims_`
  std::vector<std::vector<Claim>> claims_;            ///< of each source
  size_t order_ = 0;
  std::vector<Pair> found_;
};

void add_memory(Search &search, const TDMMemory &memory)
{
  for (TDMMapping *mapping : memory.incoming_mappings()) {
    Interval interval;
    if (unless_too_wide([&] { return map_back(*mapping, memory.address_range(), interval); }))
      search.add(*mapping, &memory, interval);
  }
}

} // namespace

std::vector<Overlap> find_overlaps(const TDMSpec &spec)
{
  Search search;
  for (const auto &memory : spec.memories) add_memory(search, *memory);
  for (const auto &processor : spec.processors)
    for (const auto &memory : processor->memories) add_memory(search, *memory);
  std::vector<Overlap> overlaps;
  for (const auto &[first, second, range] : search.run())
    overlaps.push_back({first.mapping->source(), first.memory, second.memory, first.mapping,
                        second.mapping, range, bits_held(range)});
  return overlaps;
}

std::vector<MappingOverlap> find_mapping_overlaps(const TDMSpec &spec)
{
  Search search;
  for (const auto &processor : spec.processors)
    for (const auto &core : processor->cores)
      for (const auto &space : core->spaces) {
        // What is made up from other spaces isn't checked.
        if (dynamic_cast<const TDMAllocSpace *>(space.get()) == nullptr) continue;
        for (TDMMapping *mapping : space->outgoing_mappings())
          search.add(*mapping, nullptr, mapping->source_interval());
      }
  std::vector<MappingOverlap> overlaps;
  for (const auto &[first, second, range] : search.run())
    overlaps.push_back({static_cast<TDMSpace *>(first.mapping->source()), first.mapping,
                        second.mapping, range, bits_held(range)});
  return overlaps;
}

} // namespace tdm
