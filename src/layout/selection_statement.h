/// @file
/// `select`: which of the caller's sections go here, by name and attributes.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "common/text.h"
#include "layout/section_selector.h"
#include "layout/statement.h"

class TDMSelectionPattern;
struct TDMSection;
struct TDMSectionMap;

namespace tdm {
enum class PatternKind : std::uint8_t;
} // namespace tdm

struct TDM_CLIENT_API TDMSelectionStatement final : TDMStatement {
  /// What is told of each section that is taken.
  class SectionFunction {
  public:
    /// Called for each of them, once.
    virtual void call(TDMSection &section) = 0;

  protected:
    ~SectionFunction() = default;
  };

  /// A wrong pattern is refused at key "sectionName".
  TDMSelectionStatement(SourceLocations locations, std::optional<tdm::Text> name);
  ~TDMSelectionStatement() override;

  void walk(TDMSpaceWalker &walker, TDMStatementEnv &env, const tdm::LayoutSpace &space) override;

  /// Calls the function for each section of the map that is selected, in the order of the map, and
  /// removes it from there. A plain name takes a section that has an address of its own, a pattern
  /// doesn't. With a reference tree, the sections of the map follow that those taken refer to.
  /// `verbose` has the environment told why sections are left out.
  void select(TDMStatementEnv &env, TDMSectionMap &map, SectionFunction &function, bool verbose);

  /// The same from a list of sections, null ones left out, in the order of names and, for sections
  /// of one name, of the list. The list stays as it is.
  void select(TDMStatementEnv &env, std::span<TDMSection *const> sections,
              SectionFunction &function, bool verbose);

  /// The name that alone is selected; null if there is none, or one with wildcards.
  const tdm::Text *literal_section_name() const;

  std::optional<tdm::Text> section_name;                          ///< the pattern as it was written
  tdm::ObjectList<std::unique_ptr<TDMSectionSelector>> selectors; ///< all have to match
  bool use_reference_tree = false;                                ///< `ref_tree`

private:
  const TDMSelectionPattern *pattern_in(const TDMStatementEnv &env);
  void compile();
  bool selectors_match(const TDMSection &section) const;
  bool offer(TDMSection &section, TDMStatementEnv &env, SectionFunction &function, bool by_name,
             bool verbose) const;
  void select_referenced(TDMStatementEnv &env, TDMSectionMap &map,
                         const std::vector<TDMSection *> &taken, SectionFunction &function,
                         bool verbose) const;

  tdm::PatternKind kind_{}; ///< of the name
  /// Made when it is first needed, but where only that tells whether it is right.
  std::unique_ptr<TDMSelectionPattern> pattern_;
  std::unique_ptr<TDMSelectionPattern> load_time_pattern_; ///< for the load-time copies of sections
};

/// Calls a plain function with the section's handle.
class TDM_CLIENT_API SelectionFunctionWrapper final
    : public TDMSelectionStatement::SectionFunction {
public:
  /// A function of the C interface.
  using Function = void (*)(void *handle, void *user);

  /// A null function isn't called.
  SelectionFunctionWrapper(Function function, void *user) : function_(function), user_(user) {}
  void call(TDMSection &section) override;

private:
  Function function_;
  void *user_;
};
