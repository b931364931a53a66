// How the definitions of a space find other spaces by name, without knowing what a core is.
#pragma once

#include <string>
#include <vector>

struct TDMSpace;
class TDMFileCopySubTableSpace;

namespace tdm {

/// The spaces that can be named from one place. Implemented where cores are known.
class SpaceLookup {
public:
  /// The space of that name, or null.
  [[nodiscard]] virtual TDMSpace *find(std::string_view name) const = 0;

  /// The spaces that a reference of processor, core and space means, none when the last part is
  /// unknown; a part that may not be named here, or is missing, is refused.
  [[nodiscard]] virtual std::vector<TDMSpace *>
  resolve(const TDMFileCopySubTableSpace &reference) const = 0;

protected:
  ~SpaceLookup() = default;
};

} // namespace tdm
