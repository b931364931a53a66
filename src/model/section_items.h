// Hangs the section layouts and setups of one level, the file or a derivative, on the spaces that
// they name.
#pragma once

#include <memory>
#include <string>

#include "expressions/expression.h"
#include "model/section_targets.h"

class TDMFileCopyTable;
class TDMFileExpression;

namespace tdm {

class ArgumentScope;
struct LayoutContext;

class SectionItems {
public:
  explicit SectionItems(SectionTargets targets) : targets_(std::move(targets)) {}

  void add_layout(const TDMFileSectionLayout &record, const ArgumentScope &scope);
  /// Adds to what the space has from its own definition, item by item in a fixed order.
  void apply_setup(const TDMFileSectionSetup &record, const ArgumentScope &scope);

  using Target = SectionTargets::Target;

  /// An expression as a layout of the target has it.
  [[nodiscard]] std::unique_ptr<TDMExpression> translate(const TDMFileExpression &record,
                                                         const Target &target,
                                                         const ArgumentScope &scope,
                                                         const TDMSourceLocation &place);

private:
  template <class Build>
  void with_context(const Target &target, const ArgumentScope &scope, Build build);
  static void add_reserved_ranges(const TDMFileSectionSetup &record, const ArgumentScope &scope,
                                  TDMSpace &space);
  void add_copy_table(const TDMFileSectionSetup &record, const ArgumentScope &scope,
                      const Target &target);
  void set_start_address(const TDMFileSectionSetup &record, const ArgumentScope &scope,
                         const Target &target) const;
  void prohibit_references(const TDMFileSectionSetup &record, TDMSpace &space);
  void add_input_modifications(const TDMFileSectionSetup &record, TDMSpace &space);

  SectionTargets targets_;
};

} // namespace tdm
