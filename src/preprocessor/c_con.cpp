// Reading constants. Every fault is a message at the token; the constant has a value all the same.
#include "preprocessor/c_con.h"

#include "preprocessor/c_diag.h"
#include "preprocessor/c_opt.h"
#include "preprocessor/escapes.h"

namespace tdm {

namespace {

constexpr unsigned no_digit = 16;

unsigned digit_value(char c)
{
  if (c >= '0' && c <= '9') return static_cast<unsigned>(c - '0');
  if (c >= 'a' && c <= 'f') return static_cast<unsigned>(c - 'a' + 10);
  if (c >= 'A' && c <= 'F') return static_cast<unsigned>(c - 'A' + 10);
  return no_digit;
}

char lower(char c)
{
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

unsigned take_base(std::string_view &text)
{
  if (text.starts_with("0x") || text.starts_with("0X")) {
    text.remove_prefix(2);
    return 16;
  }
  if (!text.starts_with("0")) return 10;
  text.remove_prefix(1);
  return 8;
}

std::string_view take_digits(std::string_view &text, unsigned base)
{
  const unsigned limit = base == 16 ? 16 : 10;
  std::size_t count = 0;
  while (count < text.size() && digit_value(text[count]) < limit) ++count;
  const std::string_view digits = text.substr(0, count);
  text.remove_prefix(count);
  return digits;
}

// False for a number that is too large.
bool read_digits(std::string_view digits, unsigned base, const tdm_srcpos &position,
                 TDMWideValue &value)
{
  bool fits = true;
  for (const char c : digits) {
    const unsigned digit = digit_value(c);
    if (digit >= base) diag_at(E_illegal_digit, position, c, static_cast<int>(base));
    if (!value.append_digit(base, digit)) fits = false;
  }
  return fits;
}

struct Suffix {
  bool is_unsigned = false;
  bool is_long = false;
  bool is_long_long = false;
  bool is_h = false;
};

bool set_once(bool &flag)
{
  const bool was_set = flag;
  flag = true;
  return !was_set;
}

Suffix read_suffix(std::string_view text, const tdm_srcpos &position)
{
  Suffix suffix;
  for (const char c : text) {
    bool first = true;
    switch (lower(c)) {
    case 'l':
      first = set_once(suffix.is_long) || set_once(suffix.is_long_long);
      break;
    case 'u':
      first = set_once(suffix.is_unsigned);
      break;
    case 'h':
      first = set_once(suffix.is_h);
      break;
    default:
      diag_at(E_illegal_suffix, position, c);
    }
    if (!first) diag_at(E_redundant_suffix, position, c);
  }
  if (suffix.is_h && suffix.is_long) diag_at(E_illegal_suffix, position, 'h');
  return suffix;
}

bool is_double_byte_lead(unsigned char byte)
{
  return (byte >= 0x81 && byte <= 0x9F) || (byte >= 0xE0 && byte <= 0xEF);
}

} // namespace

TDMWideValue integer_constant(const PpToken &token, bool &is_unsigned)
{
  std::string_view text = token.view();
  const unsigned base = take_base(text);
  const std::string_view digits = take_digits(text, base);
  TDMWideValue value;
  const bool fits = read_digits(digits, base, token.position, value);
  if (!fits || (base == 16 && digits.empty())) {
    diag_at(E_invalid_constant, token.position);
    return 0;
  }
  if (read_suffix(text, token.position).is_unsigned) is_unsigned = true;
  return value.narrowed(is_unsigned);
}

TDMWideValue character_constant(const PpToken &token)
{
  const char *cursor = token.text + (token.number == tWCHAR ? 2 : 1);
  const char *end = token.text + token.length - 1; // the closing quote
  TDMWideValue value;
  const auto append = [&value](std::uint32_t character) {
    value = (value << TDMWideValue(8)) | TDMWideValue(character);
  };
  while (cursor < end) {
    const auto byte = static_cast<unsigned char>(*cursor++);
    if (byte == '\\') {
      append(escape_check(cursor, end, token.position, true));
      continue;
    }
    append(byte);
    if (option_get_bool(optA_KANJI) && is_double_byte_lead(byte) && cursor < end)
      append(static_cast<unsigned char>(*cursor++));
  }
  return value;
}

} // namespace tdm
