// Numbers for texts that are kept again and again, such as the names of files and the keys of
// places: a record that holds the number in place of the text is half as large, and two of them
// are compared without a look at the text.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "common/name_table.h"

namespace tdm {

/// Counts from 0 on. The texts themselves stay where they are, and must outlive their numbers.
class TextNumbers {
public:
  static constexpr std::uint32_t none = NameTable::none;

  /// The number of the text, which it gets now unless it has one.
  [[nodiscard]] std::uint32_t add(const char *text);

  /// The number of the text, or `none`.
  [[nodiscard]] std::uint32_t find(const char *text) const
  {
    return numbers_.find(std::string_view(text), TextAt{texts_});
  }

  /// The text of a number that add() gave.
  [[nodiscard]] const char *text(std::uint32_t number) const { return texts_[number]; }

  [[nodiscard]] std::size_t size() const { return texts_.size(); }

  void clear() { *this = {}; }

private:
  struct TextAt {
    const std::vector<const char *> &texts;

    std::string_view operator()(std::uint32_t number) const { return texts[number]; }
  };

  NameTable numbers_;
  std::vector<const char *> texts_;
};

} // namespace tdm
