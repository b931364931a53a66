// Sorts the sections, and looks names up in them.
#include "layout/section_index.h"

#include <algorithm>
#include <unordered_set>

#include "layout/name_matcher.h"
#include "layout/selection_pattern.h"

namespace tdm {

namespace {

using Iterator = std::vector<NamedSection>::iterator;

/// Moves the first of each section to the front of those of one name; returns where they end.
Iterator without_repetition(Iterator begin, Iterator end)
{
  if (end - begin == 1) return end;
  std::unordered_set<const TDMSection *> seen;
  return std::remove_if(begin, end, [&seen](const NamedSection &entry) {
    return !seen.insert(entry.section).second;
  });
}

} // namespace

void put_in_order(std::vector<NamedSection> &sections)
{
  std::stable_sort(sections.begin(), sections.end(),
                   [](const NamedSection &a, const NamedSection &b) { return a.name < b.name; });
  auto kept = sections.begin();
  for (auto begin = kept; begin != sections.end();) {
    const auto end = std::find_if(begin, sections.end(), [begin](const NamedSection &entry) {
      return entry.name != begin->name;
    });
    kept = std::move(begin, without_repetition(begin, end), kept);
    begin = end;
  }
  sections.erase(kept, sections.end());
}

SectionIndex::SectionIndex(std::span<TDMSection *const> sections)
{
  sections_.reserve(sections.size());
  for (TDMSection *section : sections)
    if (section != nullptr) sections_.push_back({section->name(), section});
  put_in_order(sections_);
}

std::vector<TDMSection *> SectionIndex::matching(const TDMSelectionPattern *pattern) const
{
  Range range = sections_;
  NameMatcher *asked = nullptr;
  if (pattern != nullptr && pattern->literal_name() != nullptr) {
    range = named(*pattern->literal_name());
  } else if (pattern != nullptr) {
    NameMatcher &matcher = pattern->matcher();
    range = beginning_with(matcher.prefix());
    if (!matcher.prefix_decides()) asked = &matcher;
  }
  std::vector<TDMSection *> result;
  for (const NamedSection &entry : range)
    if (asked == nullptr || asked->matches(entry.name)) result.push_back(entry.section);
  return result;
}

SectionIndex::Range SectionIndex::named(std::string_view name) const
{
  const Range range = beginning_with(name);
  // The name itself comes before all that only begin with it.
  const auto longer = std::find_if(range.begin(), range.end(), [name](const NamedSection &entry) {
    return entry.name.size() != name.size();
  });
  return {range.begin(), longer};
}

SectionIndex::Range SectionIndex::beginning_with(std::string_view prefix) const
{
  const auto by_prefix = [prefix](const NamedSection &entry) {
    return entry.name.substr(0, prefix.size());
  };
  const auto begin =
      std::partition_point(sections_.begin(), sections_.end(),
                           [&](const NamedSection &entry) { return by_prefix(entry) < prefix; });
  const auto end = std::partition_point(begin, sections_.end(), [&](const NamedSection &entry) {
    return by_prefix(entry) == prefix;
  });
  return {begin, end};
}

} // namespace tdm
