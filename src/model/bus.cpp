// Builds buses and resolves the links between them.
#include "model/bus.h"

#include "language/records.h"
#include "layout/record_values.h"
#include "model/buses_in_reach.h"
#include "model/mapping_builder.h"

TDMBus::TDMBus(const TDMFileBus &record, Form form, const tdm::ArgumentScope &scope)
    : TDMObject{record.sourceLocations}, name(record.name.value_or("")), wishbone(record.wishbone)
{
  if (record.mauSize == nullptr)
    throw new TDMSyntaxException(tdm::place_of(record, "name"),
                                 "no mau size given for bus " + name);
  mau_size = tdm::number32_of(record, "mauSize", *record.mauSize, scope);
  if (mau_size == 0)
    throw new TDMSyntaxException(tdm::place_of(record, "mauSize"),
                                 "mau size of bus " + name + " is zero");
  if (mau_size < 0)
    throw new TDMSyntaxException(tdm::place_of(record, "mauSize"),
                                 "mau size of bus " + name + " is negative");
  if (record.busWidth == nullptr)
    throw new TDMSyntaxException(tdm::place_of(record, "name"), "bus width not given for " + name);
  width = tdm::number32_of(record, "busWidth", *record.busWidth, scope);
  if (width == 0)
    throw new TDMSyntaxException(tdm::place_of(record, "busWidth"),
                                 "width of bus " + name + " is zero");
  address_width =
      tdm::number32_or(record, "busAddressWidth", record.busAddressWidth.get(), scope, -1);

  owned_.reserve(record.mappings.size() * 2); // with those of the opposite direction
  for (const auto &entry : record.mappings) {
    if (form == Form::reversed) {
      owned_.push_back(tdm::make_reversed_mapping(*entry, scope, *this, tdm::map_end(*this)));
      incoming_.push_back(owned_.back().get());
    } else {
      owned_.push_back(tdm::make_forward_mapping(*entry, scope, *this, tdm::map_end(*this)));
      outgoing_.push_back(owned_.back().get());
    }
  }
  if (width < mau_size)
    throw new TDMSyntaxException(tdm::place_of(record, "busWidth"),
                                 "width of bus " + name + " is smaller than mau size");
  if (width % mau_size != 0)
    throw new TDMSyntaxException(tdm::place_of(record, "busWidth"),
                                 "width of bus " + name + " is not an integer times its mau size");
}

TDMBus::~TDMBus() = default;

void TDMBus::get_full_name(std::string &out) const
{
  out = tdm::prefixed_name(processor_name, core_name, name);
}

std::string TDMBus::full_name() const
{
  return tdm::prefixed_name(processor_name, core_name, name);
}

void TDMBus::resolve_mappings(const TDMFileBus &record, Form form, const tdm::BusesInReach &reach,
                              const tdm::Text *processor, const tdm::Text *core)
{
  // The entries of the record come first in owned_; the edges of the opposite direction, which are
  // added here, go behind them.
  for (size_t i = 0; i < record.mappings.size(); ++i) {
    const TDMFileMapping &entry = *record.mappings[i];
    TDMBus *other = reach.find(*entry.destination);
    if (other == nullptr)
      throw new TDMSyntaxException(tdm::place_of(entry, "destination"),
                                   "Could not find bus destination \"" +
                                       tdm::prefixed_name(processor, core, *entry.destination) +
                                       "\" in a mapping from bus " + full_name());
    std::unique_ptr<TDMMapping> opposite = owned_[i]->opposite();
    if (form == Form::reversed) {
      owned_[i]->set_source(*other, tdm::map_end(*other));
      outgoing_.push_back(opposite.get());
      owned_.push_back(std::move(opposite));
      owned_.back()->set_destination(*other, tdm::map_end(*other));
    } else {
      owned_[i]->set_destination(*other, tdm::map_end(*other));
      incoming_.push_back(opposite.get());
      owned_.push_back(std::move(opposite));
      owned_.back()->set_source(*other, tdm::map_end(*other));
    }
    if (entry.reserved)
      throw new TDMSyntaxException(tdm::place_of(entry, "destination"),
                                   "reserved attribute not allowed in bus to bus mappings");
  }
}
