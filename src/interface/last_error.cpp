#include "interface/last_error.h"

#include <string>

#include "preprocessor/string_pool.h"

namespace tdm {

namespace {

struct Latest {
  int64_t count = 0;
  std::string failure;
  std::string last_error;
};

// Never destroyed, so that a client may ask in its own destructors.
Latest &latest()
{
  static Latest &state = *new Latest;
  return state;
}

/// A file may hold a NUL that its message quotes; for a reader in C the text ends there.
const char *readable(const std::string &text)
{
  return string_pool_started() ? intern(text.c_str()) : text.c_str();
}

} // namespace

void keep_failure(std::string_view text, Tell tell)
{
  Latest &state = latest();
  if (tell == Tell::last_error) state.last_error = text;
  state.failure = text;
  ++state.count;
}

void count_failure() noexcept
{
  ++latest().count;
}

int64_t failure_count()
{
  return latest().count;
}

const char *last_error_text()
{
  return readable(latest().last_error);
}

const char *failure_text()
{
  return readable(latest().failure);
}

} // namespace tdm
