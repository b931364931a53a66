// Builds memories, global ones and those of a processor, and connects them to their buses.
#include "model/memory.h"

#include "common/make_object.h"
#include "language/records.h"
#include "layout/record_values.h"
#include "model/buses_in_reach.h"
#include "model/mapping_builder.h"

namespace {

constexpr int32_t rom = 2;

constexpr tdm::MemoryHardware implied_hardware(bool of_rom)
{
  tdm::MemoryHardware hardware;
  (of_rom ? hardware.read_ports : hardware.readwrite_ports) = 1;
  return hardware;
}
constexpr tdm::MemoryHardware implied_by_rom = implied_hardware(true);
constexpr tdm::MemoryHardware implied_by_others = implied_hardware(false);

} // namespace

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

  for (const auto &entry : record.mappings)
    mappings_.push_back_own(tdm::make_reversed_mapping(*entry, scope, *this, tdm::map_end(*this)));
  if (mappings_.empty())
    throw new TDMSyntaxException(at_name(), "no mappings defined for memory " + name);

  if (record.fillSpec != nullptr)
    fill_spec =
        tdm::make_object<TDMFillSpec>(*record.fillSpec, scope, tdm::place_of(record, "fillSpec"));
  if (record.memtype == 0)
    throw new TDMSyntaxException(at_name(), "no type or attributes set for memory " + name);
  type = static_cast<int16_t>(record.memtype);
  reserved = record.reserved;

  if (record.hardware != nullptr) read_hardware(record, scope);
}

TDMMemory::~TDMMemory() = default;

void TDMMemory::read_hardware(const TDMFileMemory &record, const tdm::ArgumentScope &scope)
{
  const tdm::FileMemoryHardware &said = *record.hardware;
  const auto number_or = [&](const tdm::ExpressionPtr &value, std::int32_t otherwise) {
    return tdm::number32_or(record, "name", value.get(), scope, otherwise);
  };
  auto read = std::make_unique<tdm::MemoryHardware>(hardware()); // with the ports of the type
  read->write_unit = number_or(said.writeUnit, 1);
  read->write_mode = said.writeMode;
  read->setup_time = number_or(said.setupTime, 0);
  read->hold_time = number_or(said.holdTime, 0);
  read->cycles = number_or(said.cycles, 0);
  read->area = number_or(said.area, 0);
  // Any count of ports that is given makes the others 0.
  if (said.readPorts || said.writePorts || said.readWritePorts) {
    read->read_ports = number_or(said.readPorts, 0);
    read->write_ports = number_or(said.writePorts, 0);
    read->readwrite_ports = number_or(said.readWritePorts, 0);
  }
  hardware_ = std::move(read);
}

const tdm::MemoryHardware &TDMMemory::hardware() const
{
  if (hardware_ != nullptr) return *hardware_;
  return type == rom ? implied_by_rom : implied_by_others;
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
    TDMMapping &mapping = *mappings_[i];
    TDMBus *bus = reach.find(destinations[i]);
    if (bus == nullptr)
      throw new TDMSyntaxException(mapping.location_or("destination"),
                                   "could not find bus destination \"" +
                                       tdm::prefixed_name(processor, nullptr, destinations[i]) +
                                       "\" in mapping from memory " + full_name());
    mapping.set_source(*bus, tdm::map_end(*bus));
    // A bank that the mapping selects has no bearing on the bounds.
    const Interval reached = mapping.destination_interval();
    const bool inside =
        reached.low.value >= 0 &&
        (reached.high.value < size || (reached.high.value == size && reached.high.bits == 0));
    if (!inside)
      throw new TDMSyntaxException(mapping.location_or("destination"),
                                   "one or more mappings from memory " + name +
                                       " map outside of memory address range");
  }
}
