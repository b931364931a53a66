// The parameters of a processor as they can be told: names, and what each of them is bound to.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "common/text.h"

struct TDMProcessor;

namespace tdm {

struct ParameterMeaning {
  Text name; ///< in the order of the definition, each once
  /// Without names of other parameters. Absent for what needs a space, or can't be resolved: a
  /// parameter that nobody uses may be bound to anything.
  std::optional<std::string> text;
  std::optional<std::int64_t> value; ///< absent where the text needs a link, or fails
};

/// In the order of the definition of the derivative.
[[nodiscard]] std::vector<ParameterMeaning> parameter_meanings(const TDMProcessor &processor);

} // namespace tdm
