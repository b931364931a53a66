// Process exits with a code, as the procedural modules do where no caller could go on.
#include "preprocessor/orderly_stop.h"

#include <cstdio>
#include <cstdlib>

namespace tdm {

void stop_internal()
{
  std::exit(4);
}

void stop_no_memory(const char *text)
{
  std::fputs(text, stderr);
  std::exit(2);
}

} // namespace tdm
