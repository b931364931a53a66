// What layouts have to know of the address space that they lie in and of the memories that they
// name, without knowing the model: implemented where spaces and memories are known.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "layout/layout_memory.h"
#include "layout/range.h"
#include "mapping/map_graph.h"

namespace tdm {

/// An address space. Lives as long as the space: groups look at it when they are asked.
class LayoutSpace {
public:
  /// The space as the ends of mappings.
  [[nodiscard]] virtual const TDMMapSource &source() const = 0;
  [[nodiscard]] virtual const TDMMapDestination &destination() const = 0;
  /// 0 if the space has none.
  [[nodiscard]] virtual int32_t page_size() const = 0;
  [[nodiscard]] virtual const ObjectList<std::unique_ptr<TDMRange>> &page_ranges() const = 0;
  /// The space that literal addresses are meant in, as it is set at the moment, or null.
  [[nodiscard]] virtual const LayoutSpace *address_literal_space() const = 0;

protected:
  ~LayoutSpace() = default;
};

[[nodiscard]] inline std::string full_name(const LayoutSpace &space)
{
  std::string name;
  space.source().get_full_name(name);
  return name;
}

/// The memories that can be named from one place.
class MemoryLookup {
public:
  /// The memory of that name or full name; its object is null if there is none.
  [[nodiscard]] virtual LayoutMemory find(std::string_view name) const = 0;

  /// The first mapping of that name of a memory that was found here, or null.
  [[nodiscard]] virtual const TDMMapping *find_mapping(const TDMMapDestination &memory,
                                                       std::string_view name) const = 0;

protected:
  ~MemoryLookup() = default;
};

} // namespace tdm
