// Sections in the order in which selections go through them, found by what their names begin with.
#pragma once

#include <span>
#include <string_view>
#include <vector>

#include "layout/section.h"

class TDMSelectionPattern;

namespace tdm {

/// A section and the name that it holds.
struct NamedSection {
  std::string_view name;
  TDMSection *section;
};

/// By name as bytes, those of one name as they come; a section that comes again is left out.
void put_in_order(std::vector<NamedSection> &sections);

class SectionIndex {
public:
  /// Null sections are left out.
  explicit SectionIndex(std::span<TDMSection *const> sections);

  /// The sections that the pattern matches, all of them without a pattern.
  [[nodiscard]] std::vector<TDMSection *> matching(const TDMSelectionPattern *pattern) const;

private:
  using Range = std::span<const NamedSection>;

  [[nodiscard]] Range named(std::string_view name) const;
  [[nodiscard]] Range beginning_with(std::string_view prefix) const;

  std::vector<NamedSection> sections_;
};

} // namespace tdm
