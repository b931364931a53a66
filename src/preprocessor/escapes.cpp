// The escape rules, by the character behind the backslash.
#include "preprocessor/escapes.h"

#include <string_view>

#include "preprocessor/c_diag.h"
#include "preprocessor/c_opt.h"

namespace tdm {

namespace {

// The places of the letters give the values 7 to 13.
constexpr std::string_view letters = "abtnvfr";
constexpr std::uint32_t first_value = 7;
constexpr std::string_view plain = "\"'?\\";
constexpr int octal_digits = 3;

int digit_value(char c)
{
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return 16;
}

// Reads up to `most` digits, or any number for -1; more than 32 bits are cut off at the top.
std::uint32_t read_digits(const char *&cursor, const char *end, int base, int most)
{
  std::uint32_t value = 0;
  for (; cursor != end && most != 0 && digit_value(*cursor) < base; ++cursor, --most)
    value =
        value * static_cast<std::uint32_t>(base) + static_cast<std::uint32_t>(digit_value(*cursor));
  return value;
}

bool names_character(std::uint32_t value)
{
  if (value >= 0xD800 && value <= 0xDFFF) return false;
  return value >= 0xA0 || value == 0x24 || value == 0x40 || value == 0x60;
}

struct Reporter {
  const tdm_srcpos &position;
  bool on;

  void operator()(DiagMessage message) const
  {
    if (on) diag_at(message, position);
  }
};

std::uint32_t read_octal(const char *&cursor, const char *end, const Reporter &report)
{
  const std::uint32_t value = read_digits(cursor, end, 8, octal_digits);
  if (cursor != end && (*cursor == '8' || *cursor == '9')) report(W_dec_terminates_oct);
  return value;
}

std::uint32_t read_hex(const char *&cursor, const char *end, const Reporter &report)
{
  const char *digits = cursor;
  const std::uint32_t value = read_digits(cursor, end, 16, -1);
  if (cursor != digits) return value;
  report(E_expected_hex);
  return 'x';
}

std::uint32_t read_universal(const char *&cursor, const char *end, int digits,
                             const Reporter &report)
{
  const char *start = cursor;
  const std::uint32_t value = read_digits(cursor, end, 16, digits);
  if (cursor - start < digits || !names_character(value)) report(E_universal_character);
  return value;
}

} // namespace

std::uint32_t escape_check(const char *&cursor, const char *end, const tdm_srcpos &position,
                           bool report_faults)
{
  const Reporter report{position, report_faults};
  if (cursor == end) {
    report(W_illegal_escape);
    return '\\';
  }
  const char c = *cursor;
  if (c >= '0' && c <= '7') return read_octal(cursor, end, report);
  ++cursor;
  if (const auto place = letters.find(c); place != letters.npos)
    return first_value + static_cast<std::uint32_t>(place);
  if (c == 'x') return read_hex(cursor, end, report);
  if ((c == 'u' || c == 'U') && option_get_integer(optISO) != 90)
    return read_universal(cursor, end, c == 'u' ? 4 : 8, report);
  if (plain.find(c) == plain.npos) report(W_illegal_escape);
  return static_cast<unsigned char>(c);
}

} // namespace tdm
