/// @file
/// The environment of a scope in a layout: the rules of all groups around a statement, put
/// together.
///
/// A walk makes one for each layout, each `section` and each group, and each ends with its scope.
/// The rules come from groups by reference: expressions, attributes, locations and names stay the
/// spec's, so that an environment is copied at little cost and whatever it points to outlives it.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "common/tdm_types.h"
#include "common/text.h"
#include "layout/attributes.h"
#include "layout/range.h"

class TDMExpression;
struct TDMFillSpec;
struct TDMGroupLocation;
struct TDMSection;

/// A client that has sections derives from it, and gives the walk environments of its own
/// (TDMSpaceWalker::new_statement_env): the operations are what a selection asks.
struct TDM_CLIENT_API TDMStatementEnv {
  TDMStatementEnv() = default;
  TDMStatementEnv &operator=(const TDMStatementEnv &) = delete;
  virtual ~TDMStatementEnv();

  /// A copy of the same dynamic type, for a scope inside this one.
  virtual std::unique_ptr<TDMStatementEnv> clone() const;

  /// Whether the section has an address of its own, which a selection with wildcards respects. The
  /// base says no.
  virtual bool has_absolute_restriction(const TDMSection &section);
  /// The sections that those taken refer to, in any order. The base gives none.
  virtual std::vector<TDMSection *> references(const std::vector<TDMSection *> &taken);
  /// Why a section was not selected. The base ignores it.
  virtual void message(const std::string &text);

  bool contiguous = false;                                  ///< `contiguous`
  bool clustered = false;                                   ///< `clustered`
  bool ordered = false;                                     ///< `ordered`
  bool overlay = false;                                     ///< `overlay`
  bool copy = false;                                        ///< `copy`
  bool nocopy = false;                                      ///< `nocopy`
  TDMExpression *alignment = nullptr;                       ///< null if no scope sets one
  const TDMAttributes *attributes = nullptr;                ///< null if no scope sets them
  const TDMFillSpec *fill = nullptr;                        ///< null if no scope sets one
  bool paged = false;                                       ///< `page`
  TDMExpression *page_number = nullptr;                     ///< of `page = `
  int32_t page_size = 0;                                    ///< of the space, or of a group
  std::shared_ptr<const std::vector<TDMRange>> page_ranges; ///< null: none were set
  const TDMGroupLocation *location = nullptr;               ///< the address or ranges in force
  bool allow_cross_references = false;                      ///< `allow_cross_references`
  int32_t priority = 1;                                     ///< 1 if no scope sets one
  const tdm::Text *output_section_name = nullptr;           ///< of `create_section`
  bool load_time = false;                                   ///< inside a `load_addr` group
  const tdm::Text *group_name = nullptr;                    ///< of the innermost group with a name
  int32_t direction = 0;     ///< of the layout: 0 not set, 1 low to high, 2 high to low
  int32_t overlay_depth = 0; ///< groups passed since the nearest overlay group

protected:
  /// For clone().
  TDMStatementEnv(const TDMStatementEnv &) = default;
};
