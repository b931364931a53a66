// Keeps the latest array, and goes through one that is met for the first time.
#include "layout/kept_sections.h"

#include <algorithm>
#include <memory>
#include <optional>

#include "layout/name_matcher.h"
#include "layout/section_index.h"
#include "layout/selection_pattern.h"

namespace tdm {

namespace {

struct Kept {
  std::vector<TDMSection *> array;
  std::optional<SectionIndex> index;
};

/// Null if nothing is kept. A plain pointer: sections may end after all that ends with the program.
Kept *kept = nullptr;

bool is_kept(std::span<TDMSection *const> sections)
{
  return kept != nullptr && kept->array.size() == sections.size() &&
         std::equal(sections.data(), sections.data() + sections.size(), kept->array.data());
}

void keep(std::span<TDMSection *const> sections)
{
  if (kept == nullptr) kept = new Kept;
  kept->index.reset();
  kept->array.assign(sections.begin(), sections.end());
}

template <class Accepts>
std::vector<NamedSection> chosen(std::span<TDMSection *const> sections, Accepts accepts)
{
  std::vector<NamedSection> result;
  for (TDMSection *section : sections) {
    if (section == nullptr) continue;
    const std::string_view name = section->name();
    if (accepts(name)) result.push_back({name, section});
  }
  return result;
}

std::vector<NamedSection> chosen(std::span<TDMSection *const> sections,
                                 const TDMSelectionPattern *pattern)
{
  if (pattern == nullptr) return chosen(sections, [](std::string_view) { return true; });
  if (const Text *literal = pattern->literal_name()) {
    const std::string_view wanted = *literal;
    return chosen(sections, [wanted](std::string_view name) { return name == wanted; });
  }
  NameMatcher &matcher = pattern->matcher();
  return chosen(sections, [&matcher](std::string_view name) { return matcher.matches(name); });
}

} // namespace

std::vector<TDMSection *> matching_sections(std::span<TDMSection *const> sections,
                                            const TDMSelectionPattern *pattern)
{
  if (is_kept(sections)) {
    if (!kept->index) kept->index.emplace(sections);
    return kept->index->matching(pattern);
  }
  keep(sections);
  std::vector<NamedSection> found = chosen(sections, pattern);
  put_in_order(found);
  std::vector<TDMSection *> result;
  result.reserve(found.size());
  for (const NamedSection &entry : found) result.push_back(entry.section);
  return result;
}

void forget_sections() noexcept
{
  delete kept;
  kept = nullptr;
}

} // namespace tdm
