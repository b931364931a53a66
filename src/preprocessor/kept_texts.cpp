// A table by file name, and the comparison of files.
#include "preprocessor/kept_texts.h"

#include <cstdlib>
#include <unordered_map>
#include <utility>

namespace tdm {

namespace {

constexpr std::size_t most_bytes = std::size_t{256} << 20;

struct {
  std::unordered_map<const char *, KeptText> texts;
  std::size_t bytes = 0; ///< of all texts
  std::uint32_t last_number = 0;
  bool refused = false;
} state;

bool same_time(const timespec &a, const timespec &b)
{
  return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec;
}

bool same_file(const struct stat &a, const struct stat &b)
{
  return a.st_dev == b.st_dev && a.st_ino == b.st_ino && a.st_size == b.st_size &&
         same_time(a.st_mtim, b.st_mtim) && same_time(a.st_ctim, b.st_ctim);
}

} // namespace

void FreeBuffer::operator()(char *buffer) const
{
  std::free(buffer);
}

KeptText *take_kept_text(const char *name)
{
  if (state.refused) return nullptr;
  const auto found = state.texts.find(name);
  if (found == state.texts.end() || found->second.in_use) return nullptr;
  KeptText &text = found->second;
  struct stat now = {};
  if (::stat(name, &now) != 0 || !same_file(now, text.file)) return nullptr;
  text.in_use = true;
  return &text;
}

KeptText *keep_text_of(const char *name, const struct stat &file, Buffer &buffer,
                       std::size_t length)
{
  if (state.refused || length == 0 || !S_ISREG(file.st_mode) || state.bytes + length > most_bytes)
    return nullptr;
  KeptText &text = state.texts[name];
  if (text.in_use) return nullptr;
  state.bytes += length - text.length;
  text.buffer = std::move(buffer);
  text.length = length;
  text.number = ++state.last_number;
  text.in_use = true;
  text.file = file;
  return &text;
}

void refuse_kept_texts()
{
  state.refused = true;
}

void kept_texts_start()
{
  state.refused = false;
}

void kept_texts_stop()
{
  state = {};
}

} // namespace tdm
