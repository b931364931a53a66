// Numbers, sizes and tables for people to read.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tool {

/// 0x1F40, or 0x00001F40 of eight digits; a number below 0 with its sign in front.
[[nodiscard]] std::string hex(int64_t number, int digits = 1);

/// A number of MAUs as a size: "16 KiB", "3 B", "12 bits".
[[nodiscard]] std::string human_size(int64_t units, int mau);

/// "2 cores", "1 core"
[[nodiscard]] std::string counted(size_t number, std::string_view noun);

/// A fixed-point number with 16 fractional bits: "2", "-0.5".
[[nodiscard]] std::string fixed_point(int32_t number);

/// How many columns a text takes up: the characters of UTF-8.
[[nodiscard]] size_t columns_of(std::string_view text);

/// Rows of cells, lined up in columns. The last cell of a row isn't padded.
class Table {
public:
  void add(std::vector<std::string> row) { rows_.push_back(std::move(row)); }

  /// The cells of a column that are numbers line up on the right.
  void align_right(size_t column) { right_.push_back(column); }

  [[nodiscard]] std::vector<std::string> lines() const;

private:
  [[nodiscard]] bool is_right(size_t column) const;

  std::vector<std::vector<std::string>> rows_;
  std::vector<size_t> right_;
};

} // namespace tool
