// Limits of time and memory for the work on a description, which is a stranger's text. The work is
// done in a process of its own, so that there is always one left that can tell the user what became
// of it, and which file was being read.
#pragma once

#include <functional>

#include "options.h"

namespace tool {

/// Does the work in a child process, and gives what to end with: what the work gave, or the code of
/// what stopped it, which is told on the standard error output. Ends this process as the child was
/// ended where that was a signal from outside.
int supervised(const Options &options, const std::function<int()> &work);

/// While one exists, time doesn't count: what is awaited is none of the description's doing.
class ClockStop {
public:
  ClockStop();
  ~ClockStop();
  ClockStop(const ClockStop &) = delete;
  ClockStop &operator=(const ClockStop &) = delete;
};

} // namespace tool
