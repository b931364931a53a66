// Goes through the caller's sections and takes those that are meant.
#include "layout/selection_statement.h"

#include <algorithm>

#include "layout/kept_sections.h"
#include "layout/section.h"
#include "layout/section_map.h"
#include "layout/selection_pattern.h"
#include "layout/space_walker.h"
#include "layout/statement_env.h"
#include "preprocessor/string_pool.h"

TDMSelectionStatement::TDMSelectionStatement(SourceLocations locations,
                                             std::optional<tdm::Text> name)
    : section_name(name)
{
  sourceLocations = std::move(locations);
  if (!section_name) return;
  kind_ = tdm::kind_of_pattern(*section_name);
  if (kind_ == tdm::PatternKind::unclear) compile();
}

TDMSelectionStatement::~TDMSelectionStatement() = default;

void TDMSelectionStatement::walk(TDMSpaceWalker &walker, TDMStatementEnv &env,
                                 const tdm::LayoutSpace &)
{
  walker.selection(*this, env);
}

const tdm::Text *TDMSelectionStatement::literal_section_name() const
{
  if (!section_name) return nullptr;
  if (kind_ == tdm::PatternKind::plain) return &*section_name;
  return pattern_ ? pattern_->literal_name() : nullptr;
}

void TDMSelectionStatement::compile()
{
  pattern_ = std::make_unique<TDMSelectionPattern>(
      *section_name, location_or("sectionName", location_or("select")));
  pattern_->stay_with(this);
}

/// The load-time copy of a section has the section's name in square brackets.
const TDMSelectionPattern *TDMSelectionStatement::pattern_in(const TDMStatementEnv &env)
{
  if (!section_name) return nullptr;
  if (!env.load_time) {
    if (!pattern_) compile();
    return pattern_.get();
  }
  if (!load_time_pattern_) {
    load_time_pattern_ =
        std::make_unique<TDMSelectionPattern>(tdm::pooled_text("\\[" + *section_name + "\\]"),
                                              location_or("sectionName", location_or("select")));
    load_time_pattern_->stay_with(this);
  }
  return load_time_pattern_.get();
}

/// Every selector is asked, also behind one that says no.
bool TDMSelectionStatement::selectors_match(const TDMSection &section) const
{
  bool all = true;
  for (const auto &selector : selectors) all = selector->matches(section) && all;
  return all;
}

/// Takes a section whose name is right, if nothing else speaks against it.
bool TDMSelectionStatement::offer(TDMSection &section, TDMStatementEnv &env,
                                  SectionFunction &function, bool by_name, bool verbose) const
{
  if (!selectors_match(section)) return false;
  const bool absolute = env.has_absolute_restriction(section);
  if (!absolute || by_name) {
    function.call(section);
    return true;
  }
  if (verbose)
    env.message("section " + section.display_name() +
                " was not selected because it already has an absolute restriction");
  return false;
}

void TDMSelectionStatement::select(TDMStatementEnv &env, TDMSectionMap &map,
                                   SectionFunction &function, bool verbose)
{
  const TDMSelectionPattern *pattern = pattern_in(env);
  const tdm::Text *literal = pattern != nullptr ? pattern->literal_name() : nullptr;
  const std::unique_ptr<TDMSectionEnumerator> sections =
      literal != nullptr ? map.with_name(literal->str()) : map.all();
  std::vector<TDMSection *> taken;
  while (sections->has_more()) {
    TDMSection &section = *sections->next();
    if (pattern != nullptr && !pattern->matches(section.name())) continue;
    if (!offer(section, env, function, literal != nullptr, verbose)) continue;
    taken.push_back(&section);
    map.remove(&section);
  }
  if (use_reference_tree && !taken.empty()) select_referenced(env, map, taken, function, verbose);
}

/// A map is made only where sections that aren't selected by their name can play a part.
void TDMSelectionStatement::select(TDMStatementEnv &env, std::span<TDMSection *const> sections,
                                   SectionFunction &function, bool verbose)
{
  if (use_reference_tree) {
    TDMDefaultSectionMap map;
    for (TDMSection *section : sections)
      if (section != nullptr) map.add(section);
    return select(env, map, function, verbose);
  }
  const TDMSelectionPattern *pattern = pattern_in(env);
  const bool by_name = pattern != nullptr && pattern->literal_name() != nullptr;
  for (TDMSection *section : tdm::matching_sections(sections, pattern))
    offer(*section, env, function, by_name, verbose);
}

void TDMSelectionStatement::select_referenced(TDMStatementEnv &env, TDMSectionMap &map,
                                              const std::vector<TDMSection *> &taken,
                                              SectionFunction &function, bool verbose) const
{
  const std::less<> by_address;
  std::vector<TDMSection *> available;
  for (const auto left = map.all(); left->has_more();) available.push_back(left->next());
  std::sort(available.begin(), available.end(), by_address);

  std::vector<TDMSection *> referenced = env.references(taken);
  std::sort(referenced.begin(), referenced.end(), by_address);
  referenced.erase(std::unique(referenced.begin(), referenced.end()), referenced.end());
  std::vector<TDMSection *> sorted_taken = taken;
  std::sort(sorted_taken.begin(), sorted_taken.end(), by_address);
  std::erase_if(referenced, [&](TDMSection *section) {
    return std::binary_search(sorted_taken.begin(), sorted_taken.end(), section, by_address);
  });

  const auto first_unavailable =
      std::stable_partition(referenced.begin(), referenced.end(), [&](TDMSection *section) {
        return std::binary_search(available.begin(), available.end(), section, by_address);
      });
  if (verbose)
    for (auto section = first_unavailable; section != referenced.end(); ++section)
      env.message("section " + (*section)->display_name() +
                  " not selected: the section is referenced by 'ref_tree', but could not be "
                  "selected");
  for (auto section = referenced.begin(); section != first_unavailable; ++section) {
    if (!selectors_match(**section)) continue;
    if (!env.has_absolute_restriction(**section))
      function.call(**section);
    else if (verbose)
      env.message("section " + (*section)->display_name() +
                  " not selected: the section is referenced by 'ref_tree', but the section has an "
                  "absolute restriction");
  }
}

void SelectionFunctionWrapper::call(TDMSection &section)
{
  if (function_ == nullptr) return;
  const auto *wrapper = dynamic_cast<const TDMSectionWrapper *>(&section);
  function_(wrapper != nullptr ? wrapper->user() : &section, user_);
}
