// Finds the spaces of a core for the definitions inside its architecture.
#pragma once

#include "layout/space_lookup.h"

struct TDMCore;

namespace tdm {

/// Inside an architecture neither a processor nor a core can be named: the core at hand is meant.
class CoreSpaceLookup final : public SpaceLookup {
public:
  explicit CoreSpaceLookup(const TDMCore &core) : core_(core) {}

  [[nodiscard]] TDMSpace *find(std::string_view name) const override;
  /// Several names mean all these spaces: what would stand for them together can't be made before
  /// the memories of the processor are there.
  [[nodiscard]] std::vector<TDMSpace *>
  resolve(const TDMFileCopySubTableSpace &reference) const override;

private:
  const TDMCore &core_;
};

} // namespace tdm
