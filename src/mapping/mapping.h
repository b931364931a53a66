// The edge of the mapping graph: a span of a source's addresses that shows up at a span of a
// destination's, over some of the data lines of each.
//
// A mapping is made with the end that defines it; the other end is set once its name is resolved,
// and then the two intervals are computed that translations work with (translation.h). Until then
// no translation crosses it.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "common/tdm_object.h"
#include "common/text.h"
#include "mapping/interval.h"
#include "mapping/map_graph.h"

namespace tdm {

/// A run of data lines, both numbers included.
struct DataLines {
  int32_t low = 0;
  int32_t high = 0;

  [[nodiscard]] int64_t count() const { return int64_t{high} - low + 1; }
};

/// A `map` entry in plain numbers, named as they are written, seen from the defining object.
struct MapEntry {
  std::optional<DataLines> src_dbits;
  int64_t src_offset = 0;
  std::optional<DataLines> dest_dbits;
  int64_t dest_offset = 0;
  int64_t size = 0; ///< in MAUs of the defining object
  int32_t bank = -1;
  int32_t dest_bank = -1;
  bool reserved = false;
  int32_t priority = 0;       ///< whole number
  int32_t exec_priority = -1; ///< whole number; below 0: as the priority
};

} // namespace tdm

struct TDMMapping : TDMObject {
  /// The defining object is the source: a map of a space, or of a bus of a template.
  [[nodiscard]] static std::unique_ptr<TDMMapping>
  forward(const tdm::MapEntry &entry, TDMMapSource &source, const tdm::MapEnd &end);
  /// The defining object is the destination: a map of a memory or of a global bus. The entry's
  /// destination is the model's source, priorities count negative, and the size is rescaled when
  /// the source is known.
  [[nodiscard]] static std::unique_ptr<TDMMapping>
  reversed(const tdm::MapEntry &entry, TDMMapDestination &destination, const tdm::MapEnd &end);

  /// The edge back that the same entry makes between two buses, to be completed with the same end
  /// as this one, which isn't complete yet.
  [[nodiscard]] std::unique_ptr<TDMMapping> opposite() const;

  ~TDMMapping();
  TDMMapping(const TDMMapping &) = delete;
  TDMMapping &operator=(const TDMMapping &) = delete;

  /// Completes a forward mapping and adds it to the destination. TDMUnexpectedErrorException if
  /// there is one; MauException and PatternOverflowException if the ends don't fit a translation.
  void set_destination(TDMMapDestination &object, const tdm::MapEnd &end);
  /// Completes a reversed mapping and adds it to the source; failures as above.
  void set_source(TDMMapSource &object, const tdm::MapEnd &end);

  /// Whether both ends are set and the intervals computed.
  [[nodiscard]] bool is_complete() const { return state_ != State::open; }
  /// Whether all that a translation does is to move by a distance: the ends have one unit, all
  /// lines of both are connected in their order, and no number wraps. Few mappings are anything
  /// else, and the long way through masks and units would give the same.
  [[nodiscard]] bool is_shift() const { return state_ == State::shift; }

  [[nodiscard]] TDMMapSource *source() const { return source_; }
  [[nodiscard]] TDMMapDestination *destination() const { return destination_; }
  [[nodiscard]] tdm::NodeKind source_kind() const { return source_kind_; }
  [[nodiscard]] tdm::NodeKind destination_kind() const { return destination_kind_; }
  /// Data lines of the ends, connected or not.
  [[nodiscard]] int32_t source_width() const { return source_width_; }
  [[nodiscard]] int32_t destination_width() const { return destination_width_; }
  /// The source as what mappings reach, and the destination as what mappings leave: the next node
  /// of a walk, or null where it ends.
  [[nodiscard]] TDMMapDestination *source_as_destination() const { return source_as_destination_; }
  [[nodiscard]] TDMMapSource *destination_as_source() const { return destination_as_source_; }

  /// Bits of one MAU at the ends of a complete mapping.
  [[nodiscard]] int16_t source_unit() const { return source_unit_; }
  [[nodiscard]] int16_t destination_unit() const { return destination_unit_; }
  /// What a complete mapping holds at its ends.
  [[nodiscard]] Interval source_interval() const
  {
    if (is_shift()) return shifted_span({src_offset, 0, source_unit_, bank}, size);
    return rare_ != nullptr ? rare_->source_interval : Interval();
  }
  [[nodiscard]] Interval destination_interval() const
  {
    if (is_shift()) return shifted_span({dest_offset, 0, destination_unit_, dest_bank}, size);
    return rare_ != nullptr ? rare_->destination_interval : Interval();
  }

  [[nodiscard]] std::optional<tdm::Text> name() const
  {
    return rare_ != nullptr ? rare_->name : std::nullopt;
  }
  void set_name(tdm::Text name) { rare().name = name; }

  tdm::DataLines dest_dbits;
  int64_t dest_offset = 0; ///< MAUs of the destination
  int64_t size = 0;        ///< MAUs of the source, once complete
  tdm::DataLines src_dbits;
  int64_t src_offset = 0;    ///< MAUs of the source
  int32_t bank = -1;         ///< the only bank of the source that it serves, -1 for any
  int32_t dest_bank = -1;    ///< the bank that it selects at the destination, -1 for none
  int32_t priority = 0;      ///< what a route forward adds, 16 fractional bits
  int32_t exec_priority = 0; ///< the same for execution
  bool reserved = false;

private:
  enum class State : uint8_t { open, general, shift };

  /// What few mappings have.
  struct Rare : tdm::ObjectMemory {
    std::optional<tdm::Text> name;
    Interval source_interval; ///< of those that are no shift
    Interval destination_interval;
  };

  TDMMapping() = default;
  TDMMapping(const tdm::MapEntry &entry, int32_t sign);

  void store_source(TDMMapSource &object, const tdm::MapEnd &end);
  void store_destination(TDMMapDestination &object, const tdm::MapEnd &end);
  void rescale_size();
  void complete();
  [[nodiscard]] bool moves_by_distance() const;
  [[nodiscard]] static Interval shifted_span(const AddressValue &low, int64_t size);
  Rare &rare();

  State state_ = State::open;
  tdm::NodeKind source_kind_ = {};
  tdm::NodeKind destination_kind_ = {};
  int16_t source_unit_ = 1;
  int16_t destination_unit_ = 1;
  int32_t source_width_ = 0;
  int32_t destination_width_ = 0;
  TDMMapSource *source_ = nullptr; ///< null until it is set, as the destination
  TDMMapDestination *source_as_destination_ = nullptr;
  TDMMapDestination *destination_ = nullptr;
  TDMMapSource *destination_as_source_ = nullptr;
  std::unique_ptr<Rare> rare_;
};

/// A span of all lines: what the general form comes to for a mapping that moves by a distance.
inline Interval TDMMapping::shifted_span(const AddressValue &low, int64_t size)
{
  Interval span;
  span.low = low;
  span.high = low;
  span.high.value += size;
  span.pattern.width = low.mau;
  span.pattern.bits = Interval::Pattern::mask(low.mau);
  return span;
}
