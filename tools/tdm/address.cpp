#include "address.h"

#include <charconv>
#include <limits>

#include <fmt/format.h>

#include "format.h"
#include "usage_error.h"

namespace tool {

namespace {

/// How far the letter at the end of a number shifts it; takes the letter off.
int take_suffix(std::string_view &text)
{
  if (text.empty()) return 0;
  int shift = 0;
  switch (text.back()) {
  case 'k':
  case 'K':
    shift = 10;
    break;
  case 'm':
  case 'M':
    shift = 20;
    break;
  case 'g':
  case 'G':
    shift = 30;
    break;
  default:
    return 0;
  }
  text.remove_suffix(1);
  return shift;
}

int take_base(std::string_view &text)
{
  if (text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X')) {
    text.remove_prefix(2);
    return 16;
  }
  return text.size() > 1 && text[0] == '0' ? 8 : 10;
}

[[noreturn]] void refuse(std::string_view text, const std::string &what)
{
  throw UsageError{fmt::format("--at {}: {}", text, what)};
}

int64_t require_number(std::string_view text, std::string_view whole)
{
  if (const auto number = parse_number(text)) return *number;
  refuse(whole, fmt::format("\"{}\" is no number from 0 to 2^63 - 1", text));
}

int32_t require_small_number(std::string_view text, std::string_view whole)
{
  const int64_t number = require_number(text, whole);
  if (number > std::numeric_limits<int32_t>::max())
    refuse(whole, fmt::format("\"{}\" is too large", text));
  return static_cast<int32_t>(number);
}

Place::Point parse_point(std::string_view text, std::string_view whole)
{
  const size_t dot = text.find('.');
  Place::Point point;
  point.value = require_number(text.substr(0, dot), whole);
  if (dot != std::string_view::npos) point.bit = require_small_number(text.substr(dot + 1), whole);
  return point;
}

} // namespace

std::optional<int64_t> parse_number(std::string_view text)
{
  const int shift = take_suffix(text);
  const int base = take_base(text);
  uint64_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, base);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  if (number > (uint64_t(std::numeric_limits<int64_t>::max()) >> shift)) return std::nullopt;
  return static_cast<int64_t>(number << shift);
}

Place parse_place(std::string_view text)
{
  const std::string_view whole = text;
  Place place;
  if (const size_t colon = text.find(':'); colon != std::string_view::npos) {
    place.bank = require_small_number(text.substr(0, colon), whole);
    text.remove_prefix(colon + 1);
  }
  const size_t dots = text.find("..");
  place.low = parse_point(text.substr(0, dots), whole);
  if (dots == std::string_view::npos) return place;
  place.end = parse_point(text.substr(dots + 2), whole);
  if (place.end->value < place.low.value ||
      (place.end->value == place.low.value && place.end->bit <= place.low.bit))
    refuse(whole, "the end, which isn't part of the span, must be above the beginning");
  return place;
}

tdm_addressvalue address_of(const Place &place, const Place::Point &point, int mau)
{
  if (point.bit >= mau)
    throw UsageError{fmt::format("--at: there is no bit {} in units of {} bits", point.bit, mau)};
  return {point.value, point.bit, mau, place.bank};
}

std::string address_text(const tdm_addressvalue &address, int digits)
{
  const std::string bank = address.bank >= 0 ? fmt::format("{}:", address.bank) : "";
  const std::string bit = address.bits != 0 ? fmt::format(".{}", address.bits) : "";
  return bank + hex(address.value, digits) + bit;
}

std::string span_text(const tdm_interval &interval, int digits)
{
  tdm_addressvalue end = interval.high;
  end.bank = -1;
  return address_text(interval.low, digits) + ".." + address_text(end, digits);
}

} // namespace tool
