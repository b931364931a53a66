/// @file
/// Where a group is to go: an address, or ranges, each written in addresses of the space, of the
/// space's literal space, or of a memory. What is asked is told in addresses of the space, through
/// the mappings, and computed anew each time.
#pragma once

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "common/tdm_object.h"
#include "common/tdm_types.h"
#include "expressions/expression.h"
#include "layout/layout_memory.h"

struct TDMMapping;

namespace tdm {
class LayoutSpace;
} // namespace tdm

struct TDM_CLIENT_API TDMGroupLocation final : TDMObject {
  /// A range as it is written.
  struct Range {
    tdm::LayoutMemory memory;            ///< without an object: addresses of the space
    const TDMMapping *mapping = nullptr; ///< of the memory, if one was named
    std::unique_ptr<TDMExpression> low;  ///< null: from the beginning of the memory
    std::unique_ptr<TDMExpression> high; ///< null: to the end of the memory
  };

  /// Low and high, in MAUs of the space.
  using Bounds = std::pair<int64_t, int64_t>;

  /// Of a layout of the space; holds nothing yet.
  explicit TDMGroupLocation(const tdm::LayoutSpace &of) : space(&of) {}

  /// Whether it is an address, and not ranges.
  bool is_address() const { return address != nullptr; }

  /// In MAUs of the space. A memory or literal space that doesn't reach the space is a failure.
  int64_t address_in_space() const;

  /// All ranges in the space, in order: a range of a memory gives one for each route. An address
  /// gives one range, from the address to the address.
  std::vector<Bounds> ranges_in_space() const;

  std::unique_ptr<TDMExpression> address; ///< null: ranges
  tdm::LayoutMemory memory;               ///< the memory that the address is an offset in, if any
  tdm::ObjectList<Range> ranges;          ///< none for an address
  const tdm::LayoutSpace *space;          ///< of the layout; not owned
  const TDMMapping *mapping = nullptr;    ///< of the memory, if one was named
  TDMSourceLocation group_place; ///< for reports where the location has no place of its own

private:
  int64_t from_literal_space(int64_t value, LocationKey key) const;
  void append_memory_range(const Range &range, std::vector<Bounds> &bounds) const;
  TDMSourceLocation place(LocationKey key) const { return location_or(key, group_place); }
  [[noreturn]] void no_route() const;
};
