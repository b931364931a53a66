// Builds memories, global ones and those of a processor, and connects them to their buses.
#include "model/memory.h"

#include "common/make_object.h"
#include "language/records.h"
#include "layout/record_values.h"
#include "model/buses_in_reach.h"
#include "model/mapping_builder.h"

namespace {
constexpr int32_t rom = 2;
}

TDMMemory::TDMMemory(const TDMFileMemory &record, const tdm::ArgumentScope &scope)
    : TDMObject{record.sourceLocations}, name(record.name.value_or(""))
{
  const auto at_name = [&] { return tdm::place_of(record, "name"); };
  if (record.mauSize == nullptr)
    throw new TDMSyntaxException(at_name(), "no mau size set for memory " + name);
  mau_size = tdm::number32_of(record, "mauSize", *record.mauSize, scope);
  if (mau_size == 0)
    throw new TDMSyntaxException(at_name(), "mau size of memory " + name + " is zero");
  if (mau_size < 0)
    throw new TDMSyntaxException(at_name(), "mau size of memory " + name + " is negative");
  if (record.size == nullptr)
    throw new TDMSyntaxException(at_name(), "no size set for memory " + name);
  size = tdm::number_of(record, "size", *record.size, scope);
  if (size == 0) throw new TDMSyntaxException(at_name(), "memory " + name + " has zero size");

  priority = record.priority < 0 ? 1 : record.priority;
  exec_priority = record.execPriority < 0 ? priority : record.execPriority;

  owned_.reserve(record.mappings.size());
  mappings_.reserve(record.mappings.size());
  for (const auto &entry : record.mappings) {
    owned_.push_back(tdm::make_reversed_mapping(*entry, scope, *this, tdm::map_end(*this)));
    mappings_.push_back(owned_.back().get());
  }
  if (mappings_.empty())
    throw new TDMSyntaxException(at_name(), "no mappings defined for memory " + name);

  if (record.fillSpec != nullptr)
    fill_spec =
        tdm::make_object<TDMFillSpec>(*record.fillSpec, scope, tdm::place_of(record, "fillSpec"));
  if (record.memtype == 0)
    throw new TDMSyntaxException(at_name(), "no type or attributes set for memory " + name);
  type = static_cast<int32_t>(record.memtype);
  reserved = record.reserved;

  write_unit = tdm::number32_or(record, "name", record.writeUnit.get(), scope, 1);
  write_mode = record.writeMode;
  setup_time = tdm::number32_or(record, "name", record.setupTime.get(), scope, 0);
  hold_time = tdm::number32_or(record, "name", record.holdTime.get(), scope, 0);
  cycles = tdm::number32_or(record, "name", record.cycles.get(), scope, 0);
  area = tdm::number32_or(record, "name", record.area.get(), scope, 0);
  read_ports_of(record, scope);
}

TDMMemory::~TDMMemory() = default;

/// Any count that is given makes the others 0; without one the type decides.
void TDMMemory::read_ports_of(const TDMFileMemory &record, const tdm::ArgumentScope &scope)
{
  read_ports = tdm::number32_or(record, "name", record.readPorts.get(), scope, 0);
  write_ports = tdm::number32_or(record, "name", record.writePorts.get(), scope, 0);
  readwrite_ports = tdm::number32_or(record, "name", record.readWritePorts.get(), scope, 0);
  if (record.readPorts || record.writePorts || record.readWritePorts) return;
  if (type == rom)
    read_ports = 1;
  else
    readwrite_ports = 1;
}

void TDMMemory::get_full_name(std::string &out) const
{
  out = tdm::prefixed_name(processor_name, nullptr, name);
}

std::string TDMMemory::full_name() const
{
  return tdm::prefixed_name(processor_name, nullptr, name);
}

Interval TDMMemory::address_range() const
{
  const auto mau = static_cast<int16_t>(mau_size);
  return {AddressValue{0, 0, mau, -1}, AddressValue{size, 0, mau, -1}};
}

void TDMMemory::resolve_mappings(std::span<const tdm::Text> destinations,
                                 const tdm::BusesInReach &reach, const tdm::Text *processor)
{
  for (size_t i = 0; i < destinations.size(); ++i) {
    TDMMapping &mapping = *owned_[i];
    TDMBus *bus = reach.find(destinations[i]);
    if (bus == nullptr)
      throw new TDMSyntaxException(mapping.location_or("destination"),
                                   "could not find bus destination \"" +
                                       tdm::prefixed_name(processor, nullptr, destinations[i]) +
                                       "\" in mapping from memory " + full_name());
    mapping.set_source(*bus, tdm::map_end(*bus));
    // A bank that the mapping selects has no bearing on the bounds.
    const Interval &reached = mapping.destination_interval();
    const bool inside =
        reached.low.value >= 0 &&
        (reached.high.value < size || (reached.high.value == size && reached.high.bits == 0));
    if (!inside)
      throw new TDMSyntaxException(mapping.location_or("destination"),
                                   "one or more mappings from memory " + name +
                                       " map outside of memory address range");
  }
}
