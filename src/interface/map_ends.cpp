// What the ends of a mapping are: a translation gives an object in its role as source or
// destination, and these functions tell the object behind the role.
#include "interface/tdm.h"
#include "model/bus.h"
#include "model/memory.h"
#include "model/space.h"

int tdm_mapsource_is_bus(const tdm_mapsource *source)
{
  return dynamic_cast<const TDMBus *>(source) != nullptr ? 1 : 0;
}

int tdm_mapsource_is_space(const tdm_mapsource *source)
{
  return dynamic_cast<const TDMSpace *>(source) != nullptr ? 1 : 0;
}

tdm_bus *tdm_mapsource_get_bus(tdm_mapsource *source)
{
  return dynamic_cast<TDMBus *>(source);
}

tdm_space *tdm_mapsource_get_space(tdm_mapsource *source)
{
  return dynamic_cast<TDMSpace *>(source);
}

int tdm_mapdestination_is_memory(const tdm_mapdestination *destination)
{
  return dynamic_cast<const TDMMemory *>(destination) != nullptr ? 1 : 0;
}

int tdm_mapdestination_is_bus(const tdm_mapdestination *destination)
{
  return dynamic_cast<const TDMBus *>(destination) != nullptr ? 1 : 0;
}

int tdm_mapdestination_is_space(const tdm_mapdestination *destination)
{
  return dynamic_cast<const TDMSpace *>(destination) != nullptr ? 1 : 0;
}

tdm_memory *tdm_mapdestination_get_memory(tdm_mapdestination *destination)
{
  return dynamic_cast<TDMMemory *>(destination);
}

tdm_bus *tdm_mapdestination_get_bus(tdm_mapdestination *destination)
{
  return dynamic_cast<TDMBus *>(destination);
}

tdm_space *tdm_mapdestination_get_space(tdm_mapdestination *destination)
{
  return dynamic_cast<TDMSpace *>(destination);
}
