// Builds copy tables and direct initialisation, and finds the spaces that they name.
#include "layout/copy_table.h"

#include "common/failures.h"
#include "language/records.h"
#include "layout/record_values.h"
#include "layout/space_lookup.h"
#include "preprocessor/string_pool.h"

namespace {

TDMSpace *find_destination(const TDMFileObject &record, tdm::Text name, LocationKey key,
                           const tdm::SpaceLookup &lookup)
{
  TDMSpace *space = lookup.find(name);
  if (space == nullptr)
    throw new TDMSyntaxException(tdm::place_of(record, key),
                                 "Could not resolve space reference " + name);
  return space;
}

/// The pairs of a `dest source = destination`. Both names of a pair are reported at the source
/// name's own key, which is that name.
template <typename Pairs>
void resolve_pairs(const TDMFileObject &record, const Pairs &pairs, const tdm::SpaceLookup &lookup,
                   tdm::ObjectMap<TDMSpace *, TDMSpace *> &destinations)
{
  for (const auto &[source, destination] : pairs) {
    const LocationKey key = LocationKey::of(tdm::intern(source));
    TDMSpace *from = find_destination(record, source, key, lookup);
    TDMSpace *to = find_destination(record, destination, key, lookup);
    destinations.emplace(from, to);
  }
}

TDMCopySubTable make_sub_table(const TDMFileCopySubTable &record, const tdm::SpaceLookup &lookup)
{
  if (!record.symbol)
    throw new TDMSyntaxException(tdm::place_of(record, "table"),
                                 "no symbol defined for subtable of copy table");
  TDMCopySubTable table;
  table.symbol = *record.symbol;
  for (const auto &reference : record.spaces) {
    const std::vector<TDMSpace *> spaces = lookup.resolve(*reference);
    if (spaces.empty())
      throw new TDMSyntaxException(tdm::place_of(*reference, "spaceName"),
                                   "could not find space with name \"" +
                                       reference->spaceName.value_or("") + "\"");
    table.spaces.insert(table.spaces.end(), spaces.begin(), spaces.end());
  }
  return table;
}

} // namespace

TDMCopyTable::TDMCopyTable(const TDMFileCopyTable &record, const tdm::ArgumentScope &scope)
    : TDMObject{record.sourceLocations}, page_restrict_rom_copies(record.pageRestrictROMCopies)
{
  if (record.alignment != nullptr)
    alignment = tdm::number_of(record, "alignment", *record.alignment, scope);
  if (record.copyUnit != nullptr)
    copy_unit = tdm::number_of(record, "copyUnit", *record.copyUnit, scope);
}

void TDMCopyTable::resolve(const TDMFileCopyTable &record, const tdm::SpaceLookup &lookup)
{
  if (record.defaultCopyDestination)
    default_destination =
        find_destination(record, *record.defaultCopyDestination, "defaultCopyDestination", lookup);
  resolve_pairs(record, record.destinations, lookup, destinations);
  for (const auto &table : record.subTables) sub_tables.push_back(make_sub_table(*table, lookup));
}

TDMDirectInit::TDMDirectInit(const TDMFileDirectInit &record, const tdm::ArgumentScope &scope)
    : TDMObject{record.sourceLocations}
{
  if (record.alignment != nullptr)
    alignment = tdm::number_of(record, "alignment", *record.alignment, scope);
}

void TDMDirectInit::resolve(const TDMFileDirectInit &record, const tdm::SpaceLookup &lookup)
{
  if (record.defaultDestination)
    default_destination =
        find_destination(record, *record.defaultDestination, "defaultCopyDestination", lookup);
  resolve_pairs(record, record.destinations, lookup, destinations);
}
