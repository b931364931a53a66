// Builds the address spaces that a description defines, and the placeholder space.
#include "model/space.h"

#include <algorithm>

#include "common/make_object.h"
#include "language/records.h"
#include "layout/layout_builder.h"
#include "layout/record_values.h"
#include "mapping/interval_set.h"
#include "model/buses_in_reach.h"
#include "model/core.h"
#include "model/core_space_lookup.h"
#include "model/mapping_builder.h"

namespace {

AddressValue plain_address(int64_t value, int32_t mau)
{
  return {value, 0, static_cast<int16_t>(mau), -1};
}

} // namespace

TDMSpace::~TDMSpace() = default;

std::string TDMSpace::full_name() const
{
  return tdm::prefixed_name(processor_name, core_name, name);
}

void TDMSpace::get_full_name(std::string &out) const
{
  out = full_name();
}

void TDMSpace::compute_valid_interval()
{
  int64_t low = -1;
  int64_t high = -1;
  bool first = true;
  for (const TDMMapping *mapping : outgoing_) {
    const int64_t begin = mapping->src_offset;
    const auto end =
        static_cast<int64_t>(static_cast<uint64_t>(begin) + static_cast<uint64_t>(mapping->size));
    low = first ? begin : std::min(low, begin);
    high = first ? end : std::max(high, end);
    first = false;
  }
  valid_interval_ = Interval(plain_address(low, mau_size), plain_address(high, mau_size));
}

TDMAllocSpace::TDMAllocSpace(const TDMFileSpace &record, TDMCore &core,
                             const tdm::ArgumentScope &scope)
{
  sourceLocations = record.sourceLocations;
  name = record.name.value_or("");
  core_name = &core.name;
  processor_name = core.processor_name;
  id = static_cast<int32_t>(static_cast<uint32_t>(record.id) +
                            static_cast<uint32_t>(core.space_id_offset));
  if (id < 0)
    throw new TDMSyntaxException(tdm::place_of(record, "name"), "no ID given for space " + name);
  if (record.mauSize == nullptr)
    throw new TDMSyntaxException(tdm::place_of(record, "name"),
                                 "mau size of space " + name + " not defined");
  mau_size = tdm::number32_of(record, "mauSize", *record.mauSize, scope);
  if (mau_size == 0)
    throw new TDMSyntaxException(tdm::place_of(record, "mauSize"),
                                 "mau size of space " + name + " is zero");
  if (mau_size < 0)
    throw new TDMSyntaxException(tdm::place_of(record, "mauSize"),
                                 "mau size of space " + name + " is negative");
  alignment = tdm::number32_or(record, "alignment", record.alignment.get(), scope, 0);
  page_size = tdm::number32_or(record, "pageSize", record.pageSize.get(), scope, 0);
  read_pages(record, scope);
  page_restrict_sections = record.pageRestrictSections;
  locate_direction = record.locateDirection == tdm::kHighToLow ? TDM_HIGH_TO_LOW : TDM_LOW_TO_HIGH;
  create_definitions(record, core, scope);

  for (const auto &entry : record.mappings)
    outgoing_.push_back_own(tdm::make_forward_mapping(*entry, scope, *this, tdm::map_end(*this)));
  create_layouts(record, core, scope);
  if (outgoing_.empty())
    throw new TDMSyntaxException(tdm::place_of(record, "name"),
                                 "space " + name + " does not have any mappings");
  compute_valid_interval();
}

void TDMAllocSpace::read_pages(const TDMFileSpace &record, const tdm::ArgumentScope &scope)
{
  for (const auto &page : record.pages) {
    const int64_t low = tdm::number_of(record, "pageSize", *page.low, scope);
    const int64_t high = tdm::number_of(record, "pageSize", *page.high, scope);
    auto range = std::make_unique<TDMRange>();
    range->start = plain_address(low, mau_size);
    range->size = static_cast<int64_t>(static_cast<uint64_t>(high) - static_cast<uint64_t>(low));
    page_ranges.push_back(std::move(range));
  }
}

/// All that is placed in the space, in the order in which faults are found.
void TDMAllocSpace::create_definitions(const TDMFileSpace &record, TDMCore &core,
                                       const tdm::ArgumentScope &scope)
{
  for (const auto &stack : record.stacks)
    stacks.push_back(tdm::make_object<TDMStackDef>(*stack, scope));
  for (const auto &heap : record.heaps) heaps.push_back(tdm::make_object<TDMHeapDef>(*heap, scope));
  if (record.copyTable != nullptr)
    copy_table = tdm::make_object<TDMCopyTable>(*record.copyTable, scope);
  if (record.directInit != nullptr)
    direct_init = tdm::make_object<TDMDirectInit>(*record.directInit, scope);
  const tdm::LayoutContext context{
      scope, layout_view(), nullptr, core.section_names, {*core.processor_name, core.name}};
  for (const auto &table : record.vectorTables)
    vector_tables.push_back(tdm::build_vector_table(*table, context));
  for (const auto &range : record.reservedRanges) {
    const int64_t low = tdm::number_of(record, "name", *range.low, scope);
    const int64_t high = tdm::number_of(record, "name", *range.high, scope);
    reserved_ranges.push_back(tdm::make_object<TDMReservedRange>(low, high));
  }
  if (record.startAddress != nullptr)
    start_address = tdm::make_object<TDMStartAddress>(*record.startAddress, scope);
  if (!record.banks.empty()) bank_def = make_bank_def(*record.banks.front(), name, full_name());
}

/// Inside the definition of a space no memory can be named.
void TDMAllocSpace::create_layouts(const TDMFileSpace &record, TDMCore &core,
                                   const tdm::ArgumentScope &scope)
{
  const tdm::LayoutContext context{
      scope, layout_view(), nullptr, core.section_names, {*core.processor_name, core.name}};
  for (const auto &layout : record.sectionLayouts)
    section_layouts.push_back(tdm::build_section_layout(*layout, context));
}

void TDMAllocSpace::check_mappings() const
{
  if (outgoing_.size() < 2) return; // nothing to meet
  IntervalSet occupied;
  for (const TDMMapping *mapping : outgoing_) {
    // What connects no data line overlaps nothing, but would be cut at all that lies in its span.
    const Interval held = mapping->source_interval();
    if (held.pattern.bits == 0) continue;
    try {
      occupied.insert(held, true, false);
    } catch (IntervalSet::OverlapException *overlap) {
      delete overlap;
      throw new TDMSyntaxException(location_or("map"),
                                   "space " + name + " has overlapping mappings");
    }
  }
}

void TDMAllocSpace::resolve_mappings(TDMCore &core, const tdm::BusesInReach &buses,
                                     const TDMFileSpace &record)
{
  for (size_t i = 0; i < record.mappings.size(); ++i)
    resolve_mapping(*outgoing_[i], *record.mappings[i], core, buses);

  const tdm::CoreSpaceLookup lookup(core);
  if (bank_def != nullptr && bank_def->space_name) {
    const TDMSpace *other = core.find_space_by_plain_name(*bank_def->space_name);
    if (other != nullptr && other->bank_def != nullptr && other != this)
      bank_def->banks = other->bank_def->banks;
  }
  if (copy_table != nullptr) copy_table->resolve(*record.copyTable, lookup);
  if (direct_init != nullptr) direct_init->resolve(*record.directInit, lookup);
  if (record.addressLiteralSpace) {
    address_literal_space = core.find_space_by_plain_name(*record.addressLiteralSpace);
    if (address_literal_space == nullptr)
      throw new TDMSyntaxException(tdm::place_of(record, "address_literal_space"),
                                   "Could not find space \"" + *record.addressLiteralSpace +
                                       "\" specified as address_literal_space");
  }
}

void TDMAllocSpace::resolve_mapping(TDMMapping &mapping, const TDMFileMapping &record,
                                    TDMCore &core, const tdm::BusesInReach &buses)
{
  const auto wanted = [&] {
    return tdm::prefixed_name(processor_name, core_name, *record.destination);
  };
  if (record.destinationKind == 0) {
    TDMSpace *space = core.find_space_by_plain_name(*record.destination);
    if (space == nullptr)
      throw new TDMSyntaxException(tdm::place_of(record, "destination"),
                                   "Could not find space \"" + wanted() +
                                       "\" for mapping in space " + full_name());
    mapping.set_destination(*space, tdm::map_end(*space));
  } else {
    TDMBus *bus = buses.find(*record.destination);
    if (bus == nullptr)
      throw new TDMSyntaxException(tdm::place_of(record, "destination"),
                                   "Could not find bus \"" + wanted() + "\" for mapping in space " +
                                       full_name());
    mapping.set_destination(*bus, tdm::map_end(*bus));
  }
  if (record.reserved)
    throw new TDMSyntaxException(tdm::place_of(record, "destination"),
                                 "reserved attribute not allowed in space mappings");
  if (bank_def != nullptr && record.bankNum >= 0)
    bank_def->add_bank(record.bankNum, tdm::place_of(record, "bankNum"));
}

TDMVoidSpace::TDMVoidSpace(tdm::Text space_name, int32_t space_id, int32_t mau)
{
  static const tdm::Text no_name;
  name = space_name;
  core_name = &no_name;
  processor_name = &no_name;
  id = space_id;
  mau_size = mau;
  const Interval::Pattern none{1, 0};
  valid_interval_ = Interval(plain_address(0, mau), plain_address(0, mau), none);
}
