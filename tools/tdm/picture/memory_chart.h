// What a picture of a memory map shows, read from the library once and then plain data: columns
// (spaces and buses), memories, where each memory appears in each column, and the mappings between
// columns. Knows nothing of how it is drawn.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <tdm_c/tdm.h>

namespace tool {
class Session;
}

namespace tool::picture {

struct ChartMemory {
  std::string name;
  std::string full_name;
  std::string type;
  bool reserved = false;
  int mau = 8;
  int64_t size = 0;  ///< in MAUs
  std::string place; ///< "chip.tdm:40"
};

struct ChartColumn {
  bool is_space = false;
  std::string owner; ///< the core, or "" where it belongs to no core
  std::string name;
  std::string full_name;
  int mau = 8;
  std::string place;
};

/// One mapping on the way from a column to a memory.
struct Step {
  std::string to;    ///< "bus chip:fabric"
  tdm_interval at{}; ///< there
  std::string name;  ///< of the `map`, may be ""
  std::string place;
};

/// A memory in a column: one piece of its cells at one piece of the column's addresses.
struct Appearance {
  size_t memory = 0;
  size_t column = 0;
  tdm_interval at{}; ///< in units of the column
  bool reserved = false;
  std::vector<Step> route; ///< to the memory, never empty
  int64_t cells_low = 0;   ///< what is seen of the memory at the most, in bits
  int64_t cells_high = 0;  ///< first bit behind it

  /// Whether the memory hangs on this bus.
  [[nodiscard]] bool attached() const { return route.size() == 1; }
};

/// A mapping from column to column.
struct Window {
  size_t from = 0;
  size_t to = 0;
  tdm_interval source{};
  tdm_interval destination{};
  std::string place;
};

/// Two mappings of memories that claim the same addresses of a bus, or two of a space that claim
/// the same of its addresses. No description may have that; it is drawn nevertheless, for people to
/// see what is wrong.
struct Collision {
  size_t column = 0;
  tdm_interval at{};
  std::optional<std::pair<size_t, size_t>> memories; ///< nothing for mappings of a space
  std::string label;                                 ///< "overlap 4 KiB"
  std::string text;                                  ///< all that there is to say
};

struct MemoryChart {
  std::string title;
  std::vector<ChartColumn> columns;
  std::vector<ChartMemory> memories;
  std::vector<Appearance> appearances; ///< in the order of their columns
  std::vector<Window> windows;
  std::vector<Collision> collisions;
  std::vector<std::string> failures; ///< what the library couldn't translate
};

/// Of one processor, or of all if the name is empty. Throws UsageError if there is no such one.
[[nodiscard]] MemoryChart read_chart(const Session &session, const std::string &processor);

/// The appearances in a column, from first to behind the last one.
[[nodiscard]] std::pair<const Appearance *, const Appearance *>
appearances_in(const MemoryChart &chart, size_t column);

/// Counted in bits, so that columns of different units compare. What has no place in 63 bits and a
/// sign stands at their ends.
[[nodiscard]] int64_t bit_position(const tdm_addressvalue &address);

} // namespace tool::picture
