// Writes the records of a derivative for an architecture that stands alone.
#include "model/default_derivative.h"

#include <unordered_set>

#include "layout/record_values.h"
#include "model/templates.h"
#include "preprocessor/string_pool.h"

namespace tdm {

namespace {

constexpr int64_t whole_bus = 0x100000000;

void copy_location(const TDMFileObject &from, LocationKey key, TDMFileObject &to, LocationKey as)
{
  if (const TDMSourceLocation *place = from.find_location(key)) to.store_location(as, *place);
}

std::unique_ptr<TDMFileExpression> clone_of(const std::unique_ptr<TDMFileExpression> &value)
{
  return value != nullptr ? value->clone() : nullptr;
}

std::unique_ptr<TDMFileCore> make_core(const TDMFileArchitecture &architecture)
{
  auto core = std::make_unique<TDMFileCore>();
  core->name = architecture.name;
  core->archName = architecture.name;
  copy_location(architecture, "name", *core, "name");
  copy_location(architecture, "name", *core, "archName");
  return core;
}

std::unique_ptr<TDMFileBus> make_bus(const TDMFileBus &of_core, Text core)
{
  auto bus = std::make_unique<TDMFileBus>();
  bus->name = of_core.name;
  bus->mauSize = clone_of(of_core.mauSize);
  bus->busWidth = clone_of(of_core.busWidth);
  for (const LocationKey key :
       {LocationKey("name"), LocationKey("mauSize"), LocationKey("busWidth")})
    copy_location(of_core, key, *bus, key);

  auto mapping = std::make_unique<TDMFileMapping>();
  mapping->destination = joined_text(core, ':', of_core.name.value_or(""));
  mapping->destinationKind = 1;
  mapping->size = std::make_unique<TDMExprNumber>(whole_bus);
  copy_location(of_core, "name", *mapping, "destination");
  bus->mappings.push_back(std::move(mapping));
  return bus;
}

} // namespace

std::unique_ptr<TDMFileDerivative> make_default_derivative(const TDMFileArchitecture &architecture,
                                                           const Templates &templates)
{
  auto derivative = std::make_unique<TDMFileDerivative>();
  derivative->name = architecture.name;
  copy_location(architecture, "name", *derivative, "name");
  derivative->cores.push_back(make_core(architecture));

  // A chain that comes back to itself is reported when the core is instantiated.
  std::unordered_set<const TDMFileArchitecture *> visited;
  const TDMFileArchitecture *level = &architecture;
  while (visited.insert(level).second) {
    for (const auto &bus : level->buses)
      derivative->buses.push_back(make_bus(*bus, architecture.name.value_or("")));
    if (!level->base) break;
    const TDMFileArchitecture *base = templates.architecture(*level->base);
    if (base == nullptr)
      throw new TDMSyntaxException(place_of(*level, "base"), "base core architecture " +
                                                                 *level->base + " of " +
                                                                 *level->name + " not found");
    level = base;
  }
  return derivative;
}

} // namespace tdm
