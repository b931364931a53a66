// The end of a route is translated back to its beginning, hop by hop, and cut to what was there on
// the way out. What is left is found by a sweep over the ends of all parts: between two of them the
// same patterns are at work everywhere.
#include "parts.h"

#include <algorithm>
#include <map>
#include <numeric>
#include <tuple>
#include <utility>

#include "session.h"

namespace tool {

namespace {

/// The longest period of a pattern.
constexpr int32_t most_lines = 64;

/// The period and the bits of a pattern.
using Pattern = std::pair<int32_t, uint64_t>;

auto key_of(const tdm_addressvalue &address)
{
  return std::tuple(address.value, address.bits);
}

bool comes_before(const tdm_addressvalue &a, const tdm_addressvalue &b)
{
  return key_of(a) < key_of(b);
}

uint64_t lowest(int32_t count)
{
  return ~uint64_t{0} >> (most_lines - count);
}

/// Where in its period a pattern stands at an address.
int32_t phase_of(const tdm_addressvalue &address, int32_t period)
{
  const int64_t phase =
      (address.value % period * (address.mau % period) + address.bits % period) % period;
  return static_cast<int32_t>(phase < 0 ? phase + period : phase);
}

/// How many bits lie between the two, if that is no more than the most.
int32_t distance(const tdm_addressvalue &low, const tdm_addressvalue &high, int32_t most)
{
  if (!comes_before(low, high)) return 0;
  const int64_t units = high.value - low.value;
  if (units > most + int64_t{1}) return most;
  return static_cast<int32_t>(std::clamp<int64_t>(units * low.mau + high.bits - low.bits, 0, most));
}

/// Those bits of a pattern that come up between the two addresses.
uint64_t bits_between(const tdm_addressvalue &low, const tdm_addressvalue &high,
                      const Pattern &pattern)
{
  const auto [period, bits] = pattern;
  const int32_t count = distance(low, high, period);
  const int32_t phase = phase_of(low, period);
  uint64_t met = lowest(period);
  if (count < period) {
    met = count == 0 ? 0 : lowest(count) << phase;
    if (phase + count > period) met |= lowest(phase + count - period);
  }
  return bits & met;
}

/// Of a place that was translated back, what lies in the one that the route came through. That
/// knows the bank, too, which a mapping may have taken away.
tdm_interval cut(tdm_interval part, const tdm_interval &passed)
{
  if (comes_before(part.low, passed.low)) part.low = passed.low;
  if (comes_before(passed.high, part.high)) part.high = passed.high;
  if (comes_before(part.high, part.low)) part.high = part.low;
  part.low.bank = part.high.bank = passed.low.bank;
  return part;
}

/// What of the span reaches the end of the route; nothing if not one bit does, though the ends of
/// the span may be translated.
std::optional<tdm_interval> part_of(const Answer &answer, const Route &route)
{
  const auto translate_back = answer.forward ? tdm_inspect_mapping_map_interval_backward
                                             : tdm_inspect_mapping_map_interval_forward;
  tdm_interval part = route.end.at;
  for (auto hop = route.hops.rbegin(); hop != route.hops.rend(); ++hop) {
    if (!holds_something(part)) return std::nullopt;
    const bool mapped = checked([&] { return translate_back(hop->handle, &part, &part); }) != 0;
    if (!mapped) return std::nullopt;
    const auto before = std::next(hop);
    part = cut(part, before != route.hops.rend() ? before->at : answer.at);
  }
  part.priority = part.exec_priority = 0;
  return holds_something(part) ? std::optional(part) : std::nullopt;
}

/// The bits of a pattern in a period that is a multiple of its own.
uint64_t repeated(const Pattern &pattern, int32_t period)
{
  uint64_t bits = 0;
  for (int32_t at = 0; at < period; at += pattern.first) bits |= pattern.second << at;
  return bits;
}

/// Whether two patterns hold the same bits between two addresses.
bool are_alike(const Pattern &a, const Pattern &b, const tdm_addressvalue &low,
               const tdm_addressvalue &high)
{
  const int32_t period = std::lcm(a.first, b.first);
  return period <= most_lines &&
         bits_between(low, high, {period, repeated(a, period) ^ repeated(b, period)}) == 0;
}

/// The bits that none of the patterns has; nothing if that repeats too late to be a pattern.
template <class Counts> std::optional<Pattern> outside(const Counts &patterns)
{
  int32_t period = 1;
  for (const auto &[pattern, count] : patterns) {
    if (pattern.second == lowest(pattern.first)) return Pattern{1, 0};
    period = std::lcm(period, pattern.first);
    if (period > most_lines) return std::nullopt;
  }
  uint64_t inside = 0;
  for (const auto &[pattern, count] : patterns) inside |= repeated(pattern, period);
  return Pattern{period, ~inside & lowest(period)};
}

/// With the shortest period that is one of whole units.
Pattern reduced(const Pattern &pattern, int32_t mau)
{
  for (int32_t period = mau; period < pattern.first; period += mau) {
    if (pattern.first % period != 0) continue;
    const uint64_t shifted = pattern.second >> period;
    if (shifted == (pattern.second & lowest(pattern.first - period)))
      return {period, pattern.second & lowest(period)};
  }
  return pattern;
}

/// Goes over the span from one end of a part to the next.
class Sweep {
public:
  explicit Sweep(const Answer &answer) : here_(answer.at.low), end_(answer.at.high)
  {
    for (const Route &route : answer.routes) {
      if (!route.part.has_value()) continue;
      const Pattern pattern{route.part->width, route.part->bits};
      edges_.push_back({route.part->low, pattern, 1});
      edges_.push_back({route.part->high, pattern, -1});
    }
    std::sort(edges_.begin(), edges_.end(),
              [](const Edge &a, const Edge &b) { return comes_before(a.at, b.at); });
  }

  /// What is in no part; nothing if no interval can say that.
  [[nodiscard]] std::optional<std::vector<tdm_interval>> unused()
  {
    for (const Edge &edge : edges_) {
      if (!go_to(edge.at)) return std::nullopt;
      if ((patterns_[edge.pattern] += edge.change) == 0) patterns_.erase(edge.pattern);
    }
    if (!go_to(end_)) return std::nullopt;
    return std::move(found_);
  }

private:
  struct Edge {
    tdm_addressvalue at;
    Pattern pattern;
    int change; ///< of the number of parts with that pattern
  };

  bool go_to(const tdm_addressvalue &next)
  {
    if (!comes_before(here_, next)) return true;
    const std::optional<Pattern> pattern = outside(patterns_);
    if (!pattern.has_value()) return false;
    if (const uint64_t left = bits_between(here_, next, *pattern); left != 0) {
      const bool all = left == bits_between(here_, next, {pattern->first, ~uint64_t{0}});
      add(next, all ? Pattern{1, 1} : reduced(*pattern, here_.mau));
    }
    here_ = next;
    return true;
  }

  /// Goes on with the latest one where that holds the same bits, by the pattern of either.
  void add(const tdm_addressvalue &end, const Pattern &pattern)
  {
    if (!found_.empty() && key_of(found_.back().high) == key_of(here_)) {
      tdm_interval &latest = found_.back();
      const Pattern old{latest.width, latest.bits};
      const bool is_old = are_alike(pattern, old, here_, end);
      if (is_old || are_alike(pattern, old, latest.low, here_)) {
        std::tie(latest.width, latest.bits) = is_old ? old : pattern;
        latest.high = end;
        return;
      }
    }
    found_.push_back({here_, end, pattern.first, pattern.second, 0, 0});
  }

  tdm_addressvalue here_;
  tdm_addressvalue end_;
  std::vector<Edge> edges_;
  std::map<Pattern, int> patterns_; ///< of the parts here, and how many have each
  std::vector<tdm_interval> found_;
};

} // namespace

bool holds_something(const tdm_interval &interval)
{
  return bits_between(interval.low, interval.high, {interval.width, interval.bits}) != 0;
}

void tell_parts(Answer &answer)
{
  for (Route &route : answer.routes) route.part = part_of(answer, route);
  answer.unused = Sweep(answer).unused();
}

} // namespace tool
