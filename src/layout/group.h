/// @file
/// `group`: rules of placement for all that it contains.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "common/text.h"
#include "expressions/expression.h"
#include "layout/attributes.h"
#include "layout/fill_spec.h"
#include "layout/group_location.h"
#include "layout/statement.h"

struct TDM_CLIENT_API TDMGroup final : TDMStatement {
  ~TDMGroup() override;

  /// What it contains is a scope with this group's rules on top of those around it. Rules that
  /// contradict each other are a failure.
  void walk(TDMSpaceWalker &walker, TDMStatementEnv &env, const tdm::LayoutSpace &space) override;

  std::optional<tdm::Text> name; ///< absent if the group has none
  bool contiguous = false;       ///< `contiguous`
  bool clustered = false;        ///< `clustered`
  bool ordered = false;          ///< `ordered`
  bool overlay = false;          ///< `overlay`
  bool copy = false;             ///< `copy`
  bool nocopy = false;           ///< `nocopy`
  /// `align = `; null if not given, as all expressions here.
  std::unique_ptr<TDMExpression> alignment;
  std::optional<TDMAttributes> attributes;    ///< `attributes = `; absent if not given
  std::unique_ptr<TDMFillSpec> fill;          ///< null if not given
  bool paged = false;                         ///< `page`
  std::unique_ptr<TDMExpression> page_number; ///< `page = `
  std::unique_ptr<TDMExpression> page_size;   ///< `page_size = `
  /// The ranges in brackets behind the page size.
  tdm::ObjectList<std::pair<std::unique_ptr<TDMExpression>, std::unique_ptr<TDMExpression>>> pages;
  std::unique_ptr<TDMGroupLocation> location;   ///< of `run_addr` if that is given
  bool cross_references = false;                ///< `allow_cross_references`
  std::optional<tdm::Text> output_section_name; ///< `create_section`; absent if not given
  bool is_run_address = false;                  ///< whether the location is that of `run_addr`
  bool load_time = false;                       ///< `load_addr`
  int32_t priority = 1;                         ///< 1: not given
  std::unique_ptr<TDMStatement> statement;      ///< what the group contains; never null
};

namespace tdm {

/// The environment inside the group, from the one around it.
[[nodiscard]] std::unique_ptr<TDMStatementEnv>
inner_environment(const TDMGroup &group, const TDMStatementEnv &outer, const LayoutSpace &space);

} // namespace tdm
