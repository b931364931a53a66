#include "format.h"

#include <algorithm>
#include <array>

#include <fmt/format.h>

namespace tool {

std::string hex(int64_t number, int digits)
{
  const bool negative = number < 0;
  const uint64_t size =
      negative ? ~static_cast<uint64_t>(number) + 1 : static_cast<uint64_t>(number);
  return fmt::format("{}0x{:0{}X}", negative ? "-" : "", size, digits);
}

std::string human_size(int64_t units, int mau)
{
  const double bits = static_cast<double>(units) * mau;
  if (mau % 8 != 0 && (bits < 8 || (units % 8 != 0 && bits < 8 * 1024)))
    return fmt::format("{:.0f} bits", bits);
  constexpr std::array names = {"B", "KiB", "MiB", "GiB", "TiB", "PiB", "EiB"};
  double size = bits / 8;
  size_t step = 0;
  for (; size >= 1024 && step + 1 < names.size(); ++step) size /= 1024;
  return fmt::format("{:.4g} {}", size, names[step]);
}

std::string counted(size_t number, std::string_view noun)
{
  if (number == 1) return fmt::format("1 {}", noun);
  if (noun.ends_with("y")) return fmt::format("{} {}ies", number, noun.substr(0, noun.size() - 1));
  return fmt::format("{} {}s", number, noun);
}

std::string fixed_point(int32_t number)
{
  return fmt::format("{:.6g}", number / 65536.0);
}

size_t columns_of(std::string_view text)
{
  return static_cast<size_t>(std::count_if(text.begin(), text.end(), [](char c) {
    return (static_cast<unsigned char>(c) & 0xC0) != 0x80;
  }));
}

bool Table::is_right(size_t column) const
{
  return std::find(right_.begin(), right_.end(), column) != right_.end();
}

std::vector<std::string> Table::lines() const
{
  std::vector<size_t> widths;
  for (const auto &row : rows_)
    for (size_t i = 0; i < row.size(); ++i) {
      if (i == widths.size()) widths.push_back(0);
      widths[i] = std::max(widths[i], columns_of(row[i]));
    }
  std::vector<std::string> lines;
  for (const auto &row : rows_) {
    std::string line;
    for (size_t i = 0; i < row.size(); ++i) {
      if (i > 0 && widths[i] > 0) line += "  ";
      line += is_right(i) ? fmt::format("{:>{}}", row[i], widths[i])
                          : fmt::format("{:<{}}", row[i], widths[i]);
    }
    line.erase(line.find_last_not_of(' ') + 1);
    lines.push_back(std::move(line));
  }
  return lines;
}

} // namespace tool
