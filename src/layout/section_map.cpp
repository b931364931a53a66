// The map of sections behind the C interface.
#include "layout/section_map.h"

TDMSectionEnumerator::~TDMSectionEnumerator() = default;

TDMSectionMap::~TDMSectionMap() = default;

std::unique_ptr<TDMSectionEnumerator> TDMDefaultSectionMap::all()
{
  return std::make_unique<TDMDefaultSectionEnumerator>(sections_.begin(), sections_.end());
}

bool TDMDefaultSectionMap::contains(const std::string &name)
{
  return sections_.find(name) != sections_.end();
}

std::unique_ptr<TDMSectionEnumerator> TDMDefaultSectionMap::with_name(const std::string &name)
{
  const auto [begin, end] = sections_.equal_range(name);
  return std::make_unique<TDMDefaultSectionEnumerator>(begin, end);
}

void TDMDefaultSectionMap::remove(TDMSection *section)
{
  const auto place = places_.find(section);
  if (place == places_.end()) return;
  sections_.erase(place->second);
  places_.erase(place);
}

void TDMDefaultSectionMap::add(TDMSection *section)
{
  const auto [place, added] = places_.try_emplace(section);
  if (added) place->second = sections_.emplace(section->name(), section);
}
