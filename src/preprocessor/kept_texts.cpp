// A table by file name, and one by what an #include says.
#include "preprocessor/kept_texts.h"

#include <cstdlib>
#include <unordered_map>
#include <utility>

#include "preprocessor/c_memory.h"
#include "preprocessor/hashtab.h"
#include "preprocessor/string_pool.h"

namespace tdm {

namespace {

constexpr std::size_t most_bytes = std::size_t{256} << 20;

struct Inclusion {
  const char *directory;
  const char *written;
  KeptText *text;
};

struct {
  std::unordered_map<const char *, KeptText> texts;
  MemoryArena arena;
  hashtab inclusions;
  std::size_t bytes; ///< of all texts
  std::uint32_t last_number;
  bool refused;
} state;

std::uint32_t hash_of_inclusion(const char *directory, const char *written)
{
  return pooled(written).hash + pooled(directory).hash * 0x9E3779B1U;
}

std::uint32_t hash_of_entry(const void *entry)
{
  const auto *inclusion = static_cast<const Inclusion *>(entry);
  return hash_of_inclusion(inclusion->directory, inclusion->written);
}

Inclusion *find_inclusion(const char *directory, const char *written)
{
  hashtab_prepare(state.inclusions);
  return static_cast<Inclusion *>(
      hashtab_search(state.inclusions, hash_of_inclusion(directory, written), [=](void *entry) {
        const auto *inclusion = static_cast<const Inclusion *>(entry);
        return inclusion->written == written && inclusion->directory == directory;
      }));
}

KeptText *to_read(KeptText &text)
{
  return text.in_use || state.refused ? nullptr : &text;
}

} // namespace

void FreeBuffer::operator()(char *buffer) const
{
  std::free(buffer);
}

KeptText *find_kept_text(const char *name)
{
  const auto found = state.texts.find(name);
  return found == state.texts.end() ? nullptr : to_read(found->second);
}

KeptText *find_included_text(const char *directory, const char *written)
{
  const Inclusion *const inclusion = find_inclusion(directory, written);
  return inclusion == nullptr ? nullptr : to_read(*inclusion->text);
}

void note_included_text(const char *directory, const char *written, KeptText &text)
{
  if (find_inclusion(directory, written) != nullptr) return;
  void *const memory = state.arena.allocate(sizeof(Inclusion));
  hashtab_insert(&state.inclusions, new (memory) Inclusion{directory, written, &text});
}

KeptText *keep_text_of(const char *name, const char *directory, Buffer &buffer, std::size_t length)
{
  if (state.refused || length == 0 || state.bytes + length > most_bytes) return nullptr;
  const auto [place, is_new] = state.texts.try_emplace(name);
  if (!is_new) return nullptr; // somebody reads it
  KeptText &text = place->second;
  state.bytes += length;
  text.name = name;
  text.directory = directory;
  text.buffer = std::move(buffer);
  text.length = length;
  text.number = ++state.last_number;
  text.in_use = true;
  return &text;
}

void refuse_kept_texts()
{
  state.refused = true;
}

void kept_texts_start()
{
  state.inclusions.hash = hash_of_entry;
  state.bytes = 0;
  state.last_number = 0;
  state.refused = false;
}

void kept_texts_stop()
{
  std::unordered_map<const char *, KeptText>().swap(state.texts);
  hashtab_free(state.inclusions);
  state.arena.clear();
}

} // namespace tdm
