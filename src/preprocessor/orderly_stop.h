// The two ways in which the procedural modules end the process: a fault of our own that a check
// found, and exhausted memory. No input leads to the first one.
#pragma once

namespace tdm {

/// Ends the process with exit code 4.
[[noreturn]] void stop_internal();

/// Writes the text to standard error and ends the process with exit code 2.
[[noreturn]] void stop_no_memory(const char *text);

/// Ends the process with exit code 4 unless the condition holds.
inline void internal_check(bool condition)
{
  if (!condition) stop_internal();
}

} // namespace tdm
