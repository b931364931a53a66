// A table by file name, and a list of what an #include says, led to by the number of its text.
#include "preprocessor/kept_texts.h"

#include <cstring>
#include <new>
#include <unordered_map>
#include <vector>

#include "preprocessor/string_pool.h"
#include "preprocessor/token_list.h"

namespace tdm {

namespace {

constexpr std::size_t most_bytes = std::size_t{256} << 20;

struct Inclusion {
  const char *directory;
  const char *written;
  KeptText *text;
  std::uint32_t next; ///< number of another one of the same text, or 0
};

struct {
  std::unordered_map<const char *, KeptText *> texts;
  TokenMemory records;    ///< of texts, in the order of reading, which is nearly that of later use
  TokenMemory characters; ///< of the texts
  std::vector<Inclusion> inclusions; ///< by number, from 1 on
  std::size_t bytes;                 ///< of all texts
  std::uint32_t last_number;
  bool refused;
} state;

// The number of the first inclusion of this text, or 0.
std::uint32_t first_inclusion(const char *written)
{
  const std::uint32_t number = pooled(written).number;
  if (number == 0 || number > state.inclusions.size()) return 0;
  return state.inclusions[number - 1].written == written ? number : 0;
}

const Inclusion *find_inclusion(const char *directory, const char *written)
{
  for (std::uint32_t number = first_inclusion(written); number != 0;) {
    const Inclusion &inclusion = state.inclusions[number - 1];
    if (inclusion.directory == directory) return &inclusion;
    number = inclusion.next;
  }
  return nullptr;
}

KeptText *to_read(KeptText &text)
{
  return text.in_use || state.refused ? nullptr : &text;
}

} // namespace

KeptText *find_kept_text(const char *name)
{
  const auto found = state.texts.find(name);
  return found == state.texts.end() ? nullptr : to_read(*found->second);
}

KeptText *find_included_text(const char *directory, const char *written)
{
  const Inclusion *const inclusion = find_inclusion(directory, written);
  return inclusion == nullptr ? nullptr : to_read(*inclusion->text);
}

void note_included_text(const char *directory, const char *written, KeptText &text)
{
  if (find_inclusion(directory, written) != nullptr) return;
  state.inclusions.push_back({directory, written, &text, first_inclusion(written)});
  pooled(written).number = static_cast<std::uint32_t>(state.inclusions.size());
}

KeptText *keep_text_of(const char *name, const char *directory, std::string_view text)
{
  if (state.refused || text.empty() || state.bytes + text.size() > most_bytes) return nullptr;
  const auto [place, is_new] = state.texts.try_emplace(name);
  if (!is_new) return nullptr; // somebody reads it
  state.bytes += text.size();
  auto *const characters = static_cast<char *>(state.characters.allocate(text.size() + 1));
  std::memcpy(characters, text.data(), text.size());
  characters[text.size()] = 0;
  auto *const kept = new (state.records.allocate(sizeof(KeptText))) KeptText{};
  kept->name = name;
  kept->directory = directory;
  kept->text = {characters, text.size()};
  kept->number = ++state.last_number;
  kept->in_use = true;
  place->second = kept;
  return kept;
}

void refuse_kept_texts()
{
  state.refused = true;
}

void kept_texts_start()
{
  state.bytes = 0;
  state.last_number = 0;
  state.refused = false;
}

void kept_texts_stop()
{
  state.texts = std::unordered_map<const char *, KeptText *>();
  state.records.clear();
  state.characters.clear();
  state.inclusions = std::vector<Inclusion>();
}

} // namespace tdm
