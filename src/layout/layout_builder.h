// Turns the records of section layouts and vector tables into the model's objects, with all checks
// that can be made before a walk.
#pragma once

#include <memory>
#include <string>

#include "layout/layout_space.h"
#include "layout/section_layout.h"
#include "layout/selection_statement.h"
#include "layout/vector_table.h"

class TDMFileSectionLayout;
class TDMFileSelectSectionStatement;
class TDMFileSelector;
class TDMFileVectorTable;

namespace tdm {

class ArgumentScope;
struct SectionNames;

/// The name of a core, which reports alone need in one piece.
struct CoreName {
  Text processor;
  Text core;

  [[nodiscard]] std::string text() const { return processor + ":" + core; }
};

/// Where a layout or a table lies, and what it can name from there.
struct LayoutContext {
  const ArgumentScope &scope;
  const LayoutSpace &space;
  const MemoryLookup *memories; ///< null inside the definition of a space: none can be named there
  SectionNames &names;          ///< of the core
  CoreName core;
};

[[nodiscard]] std::unique_ptr<TDMSectionLayout>
build_section_layout(const TDMFileSectionLayout &record, const LayoutContext &context);

[[nodiscard]] std::unique_ptr<TDMVectorTable> build_vector_table(const TDMFileVectorTable &record,
                                                                 const LayoutContext &context);

/// A selection with its selectors. A wrong pattern is refused.
[[nodiscard]] std::unique_ptr<TDMSelectionStatement>
build_selection(const TDMFileSelectSectionStatement &record);

[[nodiscard]] std::unique_ptr<TDMSectionSelector> build_selector(const TDMFileSelector &record);

/// The memory of that name. `what` is the phrase that reports call the reference by.
[[nodiscard]] LayoutMemory find_memory(const LayoutContext &context, Text name,
                                       const std::string &what, const TDMSourceLocation &place);

} // namespace tdm
