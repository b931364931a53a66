// A memory: what addresses reach in the end. Global, or of one processor.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "common/tdm_object.h"
#include "common/text.h"
#include "layout/fill_spec.h"
#include "mapping/interval.h"
#include "mapping/map_graph.h"
#include "mapping/mapping.h"
#include "preprocessor/known_names.h"

class TDMFileMemory;

namespace tdm {

class ArgumentScope;
class BusesInReach;

/// What a memory says of its hardware beyond sizes and priorities.
struct MemoryHardware : ObjectMemory {
  int32_t write_unit = 1;
  int32_t setup_time = 0;
  int32_t hold_time = 0;
  int32_t cycles = 0;
  int32_t area = 0;
  int32_t read_ports = 0;
  int32_t write_ports = 0;
  int32_t readwrite_ports = 0;
  std::optional<Text> write_mode;
};

} // namespace tdm

struct TDMMemory : TDMMapDestination, TDMObject {
  TDMMemory(const TDMFileMemory &record, const tdm::ArgumentScope &scope);
  virtual ~TDMMemory();
  TDMMemory(const TDMMemory &) = delete;
  TDMMemory &operator=(const TDMMemory &) = delete;

  /// Finds the bus that each mapping comes from, and checks that it stays inside the memory.
  /// `destinations` are the names of the buses, entry by entry.
  void resolve_mappings(std::span<const tdm::Text> destinations, const tdm::BusesInReach &reach,
                        const tdm::Text *processor);

  int get_mau_size() const override { return mau_size; }
  void get_full_name(std::string &out) const override;
  void add_incoming_mapping(TDMMapping *mapping) override { mappings_.push_back(mapping); }
  const tdm::MappingList &incoming_mappings() const override { return mappings_; }

  [[nodiscard]] std::string full_name() const;
  /// Those that the definition of this object states, whichever way they go.
  [[nodiscard]] std::span<TDMMapping *const> own_mappings() const { return mappings_.own(); }
  /// What the description says, or what the type of memory implies.
  [[nodiscard]] const tdm::MemoryHardware &hardware() const;
  /// The whole memory, [0, size) in its own MAUs.
  [[nodiscard]] Interval address_range() const;

  // In an order without gaps: there may be very many.
  tdm::Text name;
  [[no_unique_address]] mutable tdm::KnownNames known_names;
  int32_t mau_size = 0;                      ///< bits
  int64_t size = 0;                          ///< MAUs
  const tdm::Text *processor_name = nullptr; ///< null for a global memory
  std::unique_ptr<TDMFillSpec> fill_spec;    ///< null without `fill`
  int32_t priority = 1;
  int32_t exec_priority = 1;
  int16_t type = 0; ///< enum tdm_memory_type
  bool reserved = false;

private:
  void read_hardware(const TDMFileMemory &record, const tdm::ArgumentScope &scope);

  std::unique_ptr<tdm::MemoryHardware> hardware_; ///< null if nothing is said of it
  tdm::MappingList mappings_;                     ///< the own ones in front, which belong to it
};
