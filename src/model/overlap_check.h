// Refuses memories that lie over each other on a bus. The check goes memory by memory, in the order
// that decides which one is reported. Most descriptions are seen to be free of overlaps without it.
#pragma once

#include <unordered_map>
#include <utility>
#include <vector>

#include "mapping/interval_set.h"
#include "mapping/map_graph.h"

struct TDMMemory;
struct TDMSpec;

namespace tdm {

/// Whether all memories plainly lie beside each other. False says nothing: there may be data lines
/// or banks of which a simple comparison of addresses knows nothing.
[[nodiscard]] bool memories_lie_apart(const TDMSpec &spec);

/// Takes the memories one after the other and throws at the first that collides.
class OverlapCheck {
public:
  void add(const TDMMemory &memory);

private:
  /// What is taken of one bus. The list is read only when there is a collision to explain.
  struct Occupied {
    IntervalSet ranges;
    std::vector<std::pair<Interval, const TDMMemory *>> owners;
  };

  [[noreturn]] static void report(const TDMMemory &memory, const TDMMapSource &bus,
                                  const Interval &interval, const Occupied &occupied);

  std::unordered_map<const TDMMapSource *, Occupied, std::hash<const TDMMapSource *>,
                     std::equal_to<>, PoolAllocator<std::pair<const TDMMapSource *const, Occupied>>>
      buses_;
};

} // namespace tdm
