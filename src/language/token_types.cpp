// Display strings, and the lookup of keywords in a hash table that the compiler fills.
#include "language/token_types.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace tdm {

namespace {

constexpr std::array<const char *, TDMTokenTypes::NUMBER_OF_TYPES> names = {
    "<0>", "EOF", "<2>", "NULL_TREE_LOOKAHEAD",
#define TDM_DISPLAY(name, display) display,
    TDM_PLAIN_TOKENS(TDM_DISPLAY)
#undef TDM_DISPLAY
#define TDM_DISPLAY(word) "\"" #word "\"",
        TDM_KEYWORDS(TDM_DISPLAY)
#undef TDM_DISPLAY
};

constexpr int first_keyword = TDMTokenTypes::KEY_memory;

constexpr std::array<std::string_view, TDMTokenTypes::NUMBER_OF_TYPES - first_keyword> keywords = {
#define TDM_WORD(word) #word,
    TDM_KEYWORDS(TDM_WORD)
#undef TDM_WORD
};

constexpr std::size_t slots = 512; // a power of two, four times the keywords

constexpr std::size_t slot_of(std::string_view word)
{
  std::uint32_t hash = 2166136261U;
  for (const char c : word) hash = (hash ^ static_cast<unsigned char>(c)) * 16777619U;
  return (hash ^ (hash >> 16)) % slots;
}

/// Index into `keywords` plus one, or 0 for a free slot; a taken slot passes on to the next one.
constexpr std::array<std::uint8_t, slots> make_keyword_slots()
{
  std::array<std::uint8_t, slots> table = {};
  for (std::size_t i = 0; i < keywords.size(); ++i) {
    std::size_t slot = slot_of(keywords[i]);
    while (table[slot] != 0) slot = (slot + 1) % slots;
    table[slot] = static_cast<std::uint8_t>(i + 1);
  }
  return table;
}

constexpr auto keyword_slots = make_keyword_slots();

} // namespace

const char *const *token_names()
{
  return names.data();
}

int keyword_type(std::string_view word, int otherwise)
{
  for (std::size_t slot = slot_of(word); keyword_slots[slot] != 0; slot = (slot + 1) % slots) {
    const std::size_t index = keyword_slots[slot] - 1U;
    if (keywords[index] == word) return first_keyword + static_cast<int>(index);
  }
  return otherwise;
}

} // namespace tdm
