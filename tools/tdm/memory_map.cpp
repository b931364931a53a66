#include "memory_map.h"

#include <algorithm>
#include <tuple>

#include <fmt/format.h>
#include <tdm_c/tdm_inspect.h>

#include "format.h"
#include "session.h"

namespace tool {

namespace {

bool comes_before(const Region &a, const Region &b)
{
  const auto key = [](const Region &region) {
    return std::tuple(region.span.low.value, region.span.low.bits, region.span.low.bank,
                      region.span.high.value);
  };
  return key(a) < key(b);
}

} // namespace

MemoryMap::MemoryMap(const tdm_spec *spec)
{
  for (const tdm_memory *memory : memories_of(spec)) add(memory);
  for (auto &[space, regions] : regions_)
    std::stable_sort(regions.begin(), regions.end(), comes_before);
}

void MemoryMap::add(const tdm_memory *memory)
{
  tdm_interval whole;
  tdm_memory_get_addressrange(memory, &whole);
  whole.priority = whole.exec_priority = 0;
  const int64_t failures_before = tdm_inspect_failure_count();
  tdm_arr *results = nullptr;
  tdm_memory_map_interval_backward_to_space(memory, &whole, &results);
  for (auto &result : take_elements<tdm_map_interval_result>(results)) {
    // On the way back all is taken off that the way there adds.
    result.interval.priority = negated(result.interval.priority);
    result.interval.exec_priority = negated(result.interval.exec_priority);
    const tdm_space *space = tdm_mapsource_get_space(static_cast<tdm_mapsource *>(result.object));
    regions_[space].push_back({memory, result.interval, result.reserved != 0});
  }
  if (tdm_inspect_failure_count() != failures_before)
    failures_.push_back(text_of(tdm_memory_get_full_name(memory)) + ": " +
                        tdm_inspect_failure_text());
}

const std::vector<Region> &MemoryMap::of(const tdm_space *space) const
{
  static const std::vector<Region> nothing;
  const auto found = regions_.find(space);
  return found != regions_.end() ? found->second : nothing;
}

bool is_plain(const tdm_interval &interval)
{
  const uint64_t all = ~uint64_t{0} >> (64 - std::clamp(interval.width, 1, 64));
  return interval.bits == all;
}

int64_t size_of(const tdm_interval &interval)
{
  return static_cast<int64_t>(static_cast<uint64_t>(interval.high.value) -
                              static_cast<uint64_t>(interval.low.value));
}

std::string human_size_of(const tdm_interval &interval)
{
  const int64_t units = size_of(interval);
  const int32_t mau = interval.low.mau;
  const int64_t rest = int64_t{interval.high.bits} - interval.low.bits;
  int64_t bits = 0;
  if (!is_plain(interval)) return human_size(units + (interval.high.bits > 0 ? 1 : 0), mau);
  if (rest == 0 || __builtin_mul_overflow(units, int64_t{mau}, &bits) ||
      __builtin_add_overflow(bits, rest, &bits))
    return human_size(units, mau);
  return human_size(bits, 1);
}

std::string mask_text(const tdm_interval &interval)
{
  if (is_plain(interval)) return "";
  return fmt::format("bits 0x{:X} of {}", interval.bits, interval.width);
}

} // namespace tool
