// A sweep over what is taken of each bus, from low to high. Claims that share addresses without
// overlapping lie on data lines of their own, so that the list of those that are open stays short
// as long as few overlaps have been found.
#include "model/overlaps.h"

#include <algorithm>
#include <bit>
#include <limits>
#include <unordered_map>

#include "mapping/translation.h"
#include "model/spec.h"

namespace tdm {

namespace {

/// What a mapping of a memory takes of a bus.
struct Claim {
  const TDMMemory *memory;
  TDMMapping *mapping;
  Interval interval;
  size_t order;
};

struct Found {
  size_t first_order;
  size_t second_order;
  Overlap overlap;
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

class Search {
public:
  void add(const TDMMemory &memory)
  {
    for (TDMMapping *mapping : memory.incoming_mappings()) {
      Interval interval;
      if (map_back(*mapping, memory.address_range(), interval) && !interval.is_empty())
        claims_[mapping->source()].push_back({&memory, mapping, interval, order_++});
    }
  }

  std::vector<Overlap> run()
  {
    for (auto &[source, claims] : claims_) sweep(*source, claims);
    std::sort(found_.begin(), found_.end(), [](const Found &a, const Found &b) {
      return a.second_order != b.second_order ? a.second_order < b.second_order
                                              : a.first_order < b.first_order;
    });
    std::vector<Overlap> overlaps;
    overlaps.reserve(found_.size());
    for (const Found &found : found_) overlaps.push_back(found.overlap);
    return overlaps;
  }

private:
  void sweep(TDMMapSource &source, std::vector<Claim> &claims)
  {
    std::sort(claims.begin(), claims.end(), [](const Claim &a, const Claim &b) {
      if (a.interval.low != b.interval.low) return a.interval.low < b.interval.low;
      return a.order < b.order;
    });
    std::vector<const Claim *> open;
    for (const Claim &claim : claims) {
      std::erase_if(open,
                    [&](const Claim *other) { return other->interval.high <= claim.interval.low; });
      for (const Claim *other : open)
        if (!compare(source, *other, claim)) return;
      open.push_back(&claim);
    }
  }

  /// False if there have been enough.
  bool compare(TDMMapSource &source, const Claim &a, const Claim &b)
  {
    Interval range;
    if (!a.interval.intersect(b.interval, range)) return true;
    const Claim &first = a.order < b.order ? a : b;
    const Claim &second = a.order < b.order ? b : a;
    found_.push_back({first.order,
                      second.order,
                      {&source, first.memory, second.memory, first.mapping, second.mapping, range,
                       bits_held(range)}});
    return found_.size() < most_overlaps;
  }

  std::unordered_map<TDMMapSource *, std::vector<Claim>> claims_;
  size_t order_ = 0;
  std::vector<Found> found_;
};

} // namespace

std::vector<Overlap> find_overlaps(const TDMSpec &spec)
{
  Search search;
  for (const auto &memory : spec.memories) search.add(*memory);
  for (const auto &processor : spec.processors)
    for (const auto &memory : processor->memories) search.add(*memory);
  return search.run();
}

} // namespace tdm
