// The nodes of the mapping graph, as the mapping engine sees them: what mappings leave (spaces and
// buses) and what they reach (buses, spaces and memories). The model's classes implement these
// interfaces; nothing here owns a mapping.
#pragma once

#include <cstdint>
#include <string>

#include "mapping/mapping_list.h"

/// The order of the operations is the order of the virtual slots.
struct TDMMapSource {
  /// Bits of one MAU.
  virtual int get_mau_size() const = 0;
  virtual void get_full_name(std::string &out) const = 0;
  virtual void add_outgoing_mapping(TDMMapping *mapping) = 0;
  /// Those that leave this object, in the order in which a translation tries them.
  virtual const tdm::MappingList &outgoing_mappings() const = 0;

protected:
  ~TDMMapSource() = default;
};

/// The order of the operations is the order of the virtual slots.
struct TDMMapDestination {
  /// Bits of one MAU.
  virtual int get_mau_size() const = 0;
  virtual void get_full_name(std::string &out) const = 0;
  virtual void add_incoming_mapping(TDMMapping *mapping) = 0;
  /// Those that reach this object, in the order in which a translation tries them.
  virtual const tdm::MappingList &incoming_mappings() const = 0;

protected:
  ~TDMMapDestination() = default;
};

namespace tdm {

enum class NodeKind : uint8_t { space, bus, memory };

/// What the mapping engine has to know of the object at an end of a mapping.
struct MapEnd {
  NodeKind kind;
  int32_t width;                  ///< number of data lines: the width of a bus, else the MAU size
  TDMMapSource *source;           ///< the object as what mappings leave, or null
  TDMMapDestination *destination; ///< the object as what mappings reach, or null
};

} // namespace tdm
