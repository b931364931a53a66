// A list of sections, as a user writes it: a line for each, with its name and the letters of its
// attributes. "#" begins a remark; a name with blanks or with a "#" in front stands in quotes.
//
//   .text.main    rx
//   .bss.counter  rw     # cleared at the start
//   "my data"     rwi
#pragma once

#include <istream>
#include <string>
#include <vector>

#include "diagnostics.h"

namespace tool {

struct Section {
  std::string name;
  std::string attributes; ///< in the order of the library's set, each letter once
  int line;

  [[nodiscard]] bool has(char letter) const { return attributes.find(letter) != std::string::npos; }
};

struct SectionList {
  std::vector<Section> sections;
  std::vector<Failure> failures; ///< of bad lines
};

/// From that file, or from the standard input for "-". Throws UsageError if it can't be read.
[[nodiscard]] SectionList read_section_list(const std::string &file);

} // namespace tool
