// What a caller asks a bus.
#include "interface/guard.h"
#include "interface/names.h"
#include "interface/tdm.h"
#include "interface/values.h"
#include "model/bus.h"

using tdm::guarded;

const char *tdm_bus_get_name(const tdm_bus *bus)
{
  return tdm::name_result(*bus);
}

const char *tdm_bus_get_full_name(const tdm_bus *bus)
{
  return tdm::full_name_result(*bus);
}

const char *tdm_bus_get_core_name(const tdm_bus *bus)
{
  return guarded([&] { return tdm::text_result(bus->core_name); });
}

const char *tdm_bus_get_processor_name(const tdm_bus *bus)
{
  return guarded([&] { return tdm::text_result(bus->processor_name); });
}

int tdm_bus_get_mausize(const tdm_bus *bus)
{
  return bus->mau_size;
}

int tdm_bus_get_width(const tdm_bus *bus)
{
  return bus->width;
}

int tdm_bus_get_address_width(const tdm_bus *bus)
{
  return bus->address_width;
}

int tdm_bus_get_wishbone(const tdm_bus *bus)
{
  return bus->wishbone ? 1 : 0;
}

tdm_source_location *tdm_bus_get_source_location(const tdm_bus *bus)
{
  return tdm::handle(bus->location("name"));
}
