// Translations of a place, read whole: each route with its hops, and where else the cells at its
// end show up.
#pragma once

#include <optional>
#include <vector>

#include <tdm_c/tdm_inspect.h>

#include "address.h"
#include "object_text.h"

namespace tool {

/// Somewhere that a place shows up. A point has low = high.
struct Appearance {
  End end;
  tdm_interval at;
  bool reserved;
};

/// A mapping on the way, and what it leads to.
struct Hop {
  const tdm_mapping *handle;
  tdm_inspect_mapping mapping;
  End end;
  tdm_interval at;
};

struct Route {
  Appearance end;
  std::vector<Hop> hops; ///< never empty; the last one leads to the end
  /// Of a span: what of it reaches the end, in units of the start; nothing if not one bit does.
  std::optional<tdm_interval> part;
  std::vector<Appearance> also; ///< forward: the spaces that lead to the same cells
};

/// All that was asked and answered.
struct Answer {
  End from;
  int mau = 0;
  tdm_interval at{};
  bool is_span = false;
  bool forward = true;
  std::vector<Route> routes;
  /// Of a span: what no route carries, in ascending order; nothing if no interval can say that.
  std::optional<std::vector<tdm_interval>> unused;
};

/// From a space to memories. Throws std::runtime_error if the library can't translate that.
[[nodiscard]] Answer routes_from(tdm_space *space, const Place &place);
/// From a memory back to spaces, then to buses. Without a place from all of it.
[[nodiscard]] Answer routes_from(tdm_memory *memory, const std::optional<Place> &place);

} // namespace tool
