// Evaluates `map` entries into mappings. An entry is written as seen from the definition that
// holds it, so that one entry gives a mapping of either direction.
#include "model/mapping_builder.h"

#include "language/records.h"
#include "layout/record_values.h"
#include "model/bus.h"
#include "model/memory.h"
#include "model/space.h"

namespace tdm {

namespace {

/// Needed before all else. The owner is the defining object; its name is asked for in a failure
/// only.
template <typename Owner> void require(const TDMFileMapping &record, const Owner &owner)
{
  if (record.size != nullptr && record.destination) return;
  std::string name;
  owner.get_full_name(name);
  throw new TDMSyntaxException(place_of(record, "map"),
                               (record.size == nullptr ? "no size given for mapping in "
                                                       : "no destination given for mapping in ") +
                                   name);
}

DataLines data_lines(const TDMFileMapping &record, LocationKey key, const FileRange &range,
                     const ArgumentScope &scope)
{
  return {number32_of(record, key, *range.low, scope),
          number32_of(record, key, *range.high, scope)};
}

int64_t offset_or_zero(const TDMFileMapping &record, LocationKey key,
                       const std::unique_ptr<TDMFileExpression> &offset, const ArgumentScope &scope)
{
  return offset != nullptr ? number_of(record, key, *offset, scope) : 0;
}

MapEntry evaluate(const TDMFileMapping &record, const ArgumentScope &scope)
{
  MapEntry entry;
  if (record.connectedDestinationLines)
    entry.dest_dbits =
        data_lines(record, "connectedDestinationLines", *record.connectedDestinationLines, scope);
  entry.dest_offset = offset_or_zero(record, "destinationOffset", record.destinationOffset, scope);
  entry.size = number_of(record, "size", *record.size, scope);
  if (record.connectedSourceLines)
    entry.src_dbits =
        data_lines(record, "connectedSourceLines", *record.connectedSourceLines, scope);
  entry.src_offset = offset_or_zero(record, "sourceOffset", record.sourceOffset, scope);
  entry.bank = record.bankNum;
  entry.dest_bank = record.destinationBankNum;
  entry.reserved = record.reserved;
  entry.priority = record.priority;
  entry.exec_priority = record.execPriority;
  return entry;
}

} // namespace

MapEnd map_end(TDMBus &bus)
{
  return {NodeKind::bus, bus.width, &bus, &bus};
}

MapEnd map_end(TDMMemory &memory)
{
  return {NodeKind::memory, memory.mau_size, nullptr, &memory};
}

MapEnd map_end(TDMSpace &space)
{
  return {NodeKind::space, space.mau_size, &space, &space};
}

std::unique_ptr<TDMMapping> make_forward_mapping(const TDMFileMapping &record,
                                                 const ArgumentScope &scope, TDMMapSource &source,
                                                 const MapEnd &end)
{
  require(record, source);
  auto mapping = TDMMapping::forward(evaluate(record, scope), source, end);
  mapping->sourceLocations = record.sourceLocations;
  if (record.name) mapping->set_name(*record.name);
  return mapping;
}

std::unique_ptr<TDMMapping> make_reversed_mapping(const TDMFileMapping &record,
                                                  const ArgumentScope &scope,
                                                  TDMMapDestination &destination, const MapEnd &end)
{
  require(record, destination);
  auto mapping = TDMMapping::reversed(evaluate(record, scope), destination, end);
  mapping->sourceLocations = record.sourceLocations;
  if (record.name) mapping->set_name(*record.name);
  return mapping;
}

} // namespace tdm
