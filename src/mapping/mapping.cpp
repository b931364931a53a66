// Building the edges of the mapping graph, and what translations work with.
#include "mapping/mapping.h"

#include <algorithm>
#include <numeric>

#include "common/failures.h"
#include "common/make_object.h"

namespace {

/// The lines of an end as a mask over its width; lines beyond the width don't exist.
Interval::Pattern line_pattern(const tdm::DataLines &lines, int32_t width)
{
  using Pattern = Interval::Pattern;
  Pattern pattern(width, 0);
  // A run of more than 64 lines has no mask, wherever it lies.
  if (lines.count() > Pattern::max_width) return {lines.count(), 0};
  if (lines.high < 0 || lines.low >= width) return pattern;
  const uint64_t up_to_high = Pattern::mask(int64_t{lines.high} + 1);
  const uint64_t below_low = Pattern::mask(lines.low < 0 ? 0 : lines.low);
  return {width, up_to_high & ~below_low};
}

/// 0 and 0 at the end that an entry names stand for all lines.
void default_lines(tdm::DataLines &lines, const tdm::MapEnd &end)
{
  if (lines.low == 0 && lines.high == 0) lines.high = tdm::wrap_sub(end.width, 1);
}

/// Whether a mask can hold the lines of both widths, which do for themselves and nearly all of
/// which divide each other.
bool have_common_mask(int32_t a, int32_t b)
{
  const auto [narrow, wide] = std::minmax(a, b);
  return a == b || wide % narrow == 0 || std::lcm(narrow, wide) <= Interval::Pattern::max_width;
}

tdm::DataLines all_lines(const tdm::MapEnd &end)
{
  return {0, tdm::wrap_sub(end.width, 1)};
}

} // namespace

TDMMapping::TDMMapping(const tdm::MapEntry &entry, int32_t sign)
    : size(entry.size), bank(entry.bank), dest_bank(entry.dest_bank),
      priority(tdm::wrap_mul(tdm::wrap_mul(entry.priority, Interval::priority_one), sign)),
      exec_priority(
          entry.exec_priority < 0
              ? priority
              : tdm::wrap_mul(tdm::wrap_mul(entry.exec_priority, Interval::priority_one), sign)),
      reserved(entry.reserved)
{
}

TDMMapping::~TDMMapping() = default;

std::unique_ptr<TDMMapping> TDMMapping::forward(const tdm::MapEntry &entry, TDMMapSource &source,
                                                const tdm::MapEnd &end)
{
  std::unique_ptr<TDMMapping> mapping(new TDMMapping(entry, 1));
  mapping->store_source(source, end);
  mapping->src_dbits = entry.src_dbits.value_or(all_lines(end));
  mapping->src_offset = entry.src_offset;
  mapping->dest_dbits = entry.dest_dbits.value_or(tdm::DataLines{});
  mapping->dest_offset = entry.dest_offset;
  return mapping;
}

std::unique_ptr<TDMMapping> TDMMapping::reversed(const tdm::MapEntry &entry,
                                                 TDMMapDestination &destination,
                                                 const tdm::MapEnd &end)
{
  std::unique_ptr<TDMMapping> mapping(new TDMMapping(entry, -1));
  mapping->store_destination(destination, end);
  mapping->dest_dbits = entry.src_dbits.value_or(all_lines(end));
  mapping->dest_offset = entry.src_offset;
  mapping->src_dbits = entry.dest_dbits.value_or(tdm::DataLines{});
  mapping->src_offset = entry.dest_offset;
  return mapping;
}

std::unique_ptr<TDMMapping> TDMMapping::opposite() const
{
  std::unique_ptr<TDMMapping> back(new TDMMapping());
  back->sourceLocations = sourceLocations;
  if (const auto own_name = name()) back->set_name(*own_name);
  if (source_ != nullptr)
    back->store_destination(*source_as_destination_,
                            {source_kind_, source_width_, source_, source_as_destination_});
  else
    back->store_source(*destination_as_source_, {destination_kind_, destination_width_,
                                                 destination_as_source_, destination_});
  back->dest_dbits = src_dbits;
  back->dest_offset = src_offset;
  back->src_dbits = dest_dbits;
  back->src_offset = dest_offset;
  back->size = size;
  back->bank = bank;
  back->dest_bank = dest_bank;
  back->reserved = reserved;
  back->priority = tdm::wrap_mul(priority, -1);
  back->exec_priority = tdm::wrap_mul(exec_priority, -1);
  return back;
}

void TDMMapping::store_source(TDMMapSource &object, const tdm::MapEnd &end)
{
  source_ = &object;
  source_as_destination_ = end.destination;
  source_kind_ = end.kind;
  source_width_ = end.width;
}

void TDMMapping::store_destination(TDMMapDestination &object, const tdm::MapEnd &end)
{
  destination_ = &object;
  destination_as_source_ = end.source;
  destination_kind_ = end.kind;
  destination_width_ = end.width;
}

void TDMMapping::set_destination(TDMMapDestination &object, const tdm::MapEnd &end)
{
  if (destination_ != nullptr)
    throw new TDMUnexpectedErrorException(location_or("map"),
                                          "trying to set the destination of a mapping twice");
  store_destination(object, end);
  object.add_incoming_mapping(this);
  default_lines(dest_dbits, end);
  complete();
}

void TDMMapping::set_source(TDMMapSource &object, const tdm::MapEnd &end)
{
  if (source_ != nullptr)
    throw new TDMUnexpectedErrorException(location_or("map"),
                                          "trying to set the source of a mapping twice");
  store_source(object, end);
  rescale_size();
  default_lines(src_dbits, end);
  object.add_outgoing_mapping(this);
  complete();
}

/// From MAUs of the destination to MAUs of the source, rounded down.
void TDMMapping::rescale_size()
{
  const int64_t from = destination_->get_mau_size();
  const int64_t to = source_->get_mau_size();
  if (to < 1) throw new AddressValue::MauException;
  if (from == to) return;
  // The remainder and both units are below 2^31, so that only a result that is too big wraps.
  size = tdm::wrap_add(tdm::wrap_mul(size / to, from), size % to * from / to);
}

/// Once both ends are set.
void TDMMapping::complete()
{
  const AddressValue source_low(src_offset, 0, source_->get_mau_size(), bank);
  const AddressValue destination_low(dest_offset, 0, destination_->get_mau_size(), dest_bank);
  source_unit_ = source_low.mau;
  destination_unit_ = destination_low.mau;
  if (moves_by_distance()) {
    state_ = State::shift;
    return;
  }
  const Interval::Pattern source_lines = line_pattern(src_dbits, source_width_);
  const Interval::Pattern destination_lines = line_pattern(dest_dbits, destination_width_);
  const AddressValue source_size(size, 0, source_unit_);
  const Interval at_source(source_low, source_low + source_size, source_lines);
  const Interval at_destination(
      destination_low, destination_low + source_size.in_mau(destination_unit_), destination_lines);
  rare().source_interval = at_source;
  rare().destination_interval = at_destination;
  state_ = State::general;
}

TDMMapping::Rare &TDMMapping::rare()
{
  if (rare_ == nullptr) rare_ = tdm::make_object<Rare>();
  return *rare_;
}

/// One unit, all lines of both ends in their order, in whole units, and no number wraps.
bool TDMMapping::moves_by_distance() const
{
  const int32_t mau = source_unit_;
  const auto all_connected = [mau](const tdm::DataLines &lines, int32_t width) {
    return width > 0 && width <= Interval::Pattern::max_width && width % mau == 0 &&
           lines.low == 0 && lines.high == width - 1;
  };
  int64_t end = 0;
  return mau == destination_unit_ && mau > 0 && all_connected(src_dbits, source_width_) &&
         all_connected(dest_dbits, destination_width_) &&
         have_common_mask(source_width_, destination_width_) && size > 0 &&
         !__builtin_add_overflow(src_offset, size, &end) &&
         !__builtin_add_overflow(dest_offset, size, &end) && bank >= -1 && dest_bank >= -1;
}
