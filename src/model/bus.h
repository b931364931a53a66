// A bus: a data path of a width in bits that counts in MAUs, with the mappings that leave and
// reach it. Buses belong to the spec, to a processor or to a core.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "common/block_pool.h"
#include "common/tdm_object.h"
#include "common/text.h"
#include "mapping/map_graph.h"
#include "mapping/mapping.h"
#include "preprocessor/known_names.h"

class TDMFileBus;

namespace tdm {
class ArgumentScope;
class BusesInReach;
} // namespace tdm

struct TDMBus final : TDMMapSource, TDMMapDestination, TDMObject {
  /// Which side of a mapping the entries of a definition describe: a global bus is written as the
  /// destination, every other bus as the source.
  enum class Form { forward, reversed };

  /// Builds the bus and its mappings, each with the end that is known; names of owners come later.
  TDMBus(const TDMFileBus &record, Form form, const tdm::ArgumentScope &scope);
  ~TDMBus();
  TDMBus(const TDMBus &) = delete;
  TDMBus &operator=(const TDMBus &) = delete;

  /// Finds the bus at the other end of each mapping, and adds the edge of the opposite direction.
  /// `processor` and `core` prefix the names that the entries give; each may be null.
  void resolve_mappings(const TDMFileBus &record, Form form, const tdm::BusesInReach &reach,
                        const tdm::Text *processor, const tdm::Text *core);

  int get_mau_size() const override { return mau_size; }
  void get_full_name(std::string &out) const override;
  void add_outgoing_mapping(TDMMapping *mapping) override { outgoing_.push_back(mapping); }
  void add_incoming_mapping(TDMMapping *mapping) override { incoming_.push_back(mapping); }
  const tdm::MappingList &outgoing_mappings() const override { return outgoing_; }
  const tdm::MappingList &incoming_mappings() const override { return incoming_; }

  [[nodiscard]] std::string full_name() const;
  /// Those that the definition of this object states, whichever way they go.
  [[nodiscard]] const tdm::PooledVector<std::unique_ptr<TDMMapping>> &own_mappings() const
  {
    return owned_;
  }

  tdm::Text name;
  mutable tdm::KnownNames known_names;
  const tdm::Text *core_name = nullptr;      ///< the name of the core that it belongs to
  const tdm::Text *processor_name = nullptr; ///< null for a global bus
  int32_t mau_size = 0;                      ///< bits
  int32_t width = 0;                         ///< bits, a whole multiple of the MAU
  int32_t address_width = -1;                ///< bits, -1 if not given
  bool wishbone = false;

private:
  tdm::MappingList outgoing_;
  tdm::MappingList incoming_;
  /// The mappings of this bus's own entries; those of others that reach it belong to the others.
  tdm::PooledVector<std::unique_ptr<TDMMapping>> owned_;
};
