// Addresses as users write them: [BANK:]ADDRESS[.BIT][..END].
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include <tdm_c/tdm.h>

namespace tool {

/// A place to translate, not yet in units of anything.
struct Place {
  struct Point {
    int64_t value = 0;
    int32_t bit = 0;
  };
  int32_t bank = -1;
  Point low;
  std::optional<Point> end; ///< of a span; not part of it
};

/// Throws UsageError.
[[nodiscard]] Place parse_place(std::string_view text);

/// The same in units of `mau` bits. Throws UsageError where a bit doesn't fit in.
[[nodiscard]] tdm_addressvalue address_of(const Place &place, const Place::Point &point, int mau);

/// Decimal, hex or octal, with k, m or g; nothing if it is no such number or above 2^63 - 1.
[[nodiscard]] std::optional<int64_t> parse_number(std::string_view text);

/// In the form that parse_place takes, with at least so many hex digits.
[[nodiscard]] std::string address_text(const tdm_addressvalue &address, int digits = 1);
[[nodiscard]] std::string span_text(const tdm_interval &interval, int digits = 1);

} // namespace tool
