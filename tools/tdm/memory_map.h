// What a space holds: the spans of its addresses at which each memory shows up, in ascending order.
// The library has no list of them; they are what the whole of each memory translates back to.
#pragma once

#include <map>
#include <string>
#include <vector>

#include <tdm_c/tdm.h>

namespace tool {

/// A memory in a space.
struct Region {
  const tdm_memory *memory;
  tdm_interval span; ///< in units of the space; with what the way to the memory adds to priorities
  bool reserved;
};

class MemoryMap {
public:
  explicit MemoryMap(const tdm_spec *spec);

  [[nodiscard]] const std::vector<Region> &of(const tdm_space *space) const;

  /// What the library couldn't translate.
  [[nodiscard]] const std::vector<std::string> &failures() const { return failures_; }

private:
  void add(const tdm_memory *memory);

  std::map<const tdm_space *, std::vector<Region>> regions_;
  std::vector<std::string> failures_;
};

/// A priority that is taken off; they wrap, as they do in the library.
[[nodiscard]] constexpr int32_t negated(int32_t priority)
{
  return static_cast<int32_t>(0U - static_cast<uint32_t>(priority));
}

/// Whether the interval holds every bit of its span, for units of `mau` bits.
[[nodiscard]] bool is_plain(const tdm_interval &interval);

/// The number of whole units from low to high.
[[nodiscard]] int64_t size_of(const tdm_interval &interval);

/// "127 B", to the bit: ends that aren't whole units count, too. Of an interval with a mask, that
/// of the units which it lies in.
[[nodiscard]] std::string human_size_of(const tdm_interval &interval);

/// Some data lines of each unit only: "bits 0xFF00 of 16"; "" for all.
[[nodiscard]] std::string mask_text(const tdm_interval &interval);

} // namespace tool
