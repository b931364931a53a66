// What is thrown when a command line doesn't say what to do.
#pragma once

#include <string>

namespace tool {

struct UsageError {
  std::string text; ///< for the user
};

} // namespace tool
