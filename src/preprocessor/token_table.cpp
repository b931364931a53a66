// Builds the transition table at compile time.
#include "preprocessor/token_table.h"

#include <cstddef>
#include <iterator>
#include <stdexcept>

namespace tdm {

namespace {

constexpr bool numbered_in_order()
{
  for (int i = 0; i < token_count; ++i)
    if (token_table[i].number != i) return false;
  return std::size(token_table) == token_count;
}
static_assert(numbered_in_order());

using CharacterSet = std::array<bool, 128>;

// Takes one place of a pattern, a character or a class, off its front.
constexpr CharacterSet take_place(std::string_view &pattern)
{
  CharacterSet set{};
  const auto add = [&set](char c) { set[static_cast<std::size_t>(c)] = true; };
  if (pattern[0] != '[' || pattern.size() == 1) {
    add(pattern[0]);
    pattern.remove_prefix(1);
    return set;
  }
  std::size_t i = 1;
  for (; pattern[i] != ']'; ++i) {
    add(pattern[i]);
    if (pattern[i + 1] != '-') continue;
    for (char c = pattern[i]; c != pattern[i + 2]; ++c) add(static_cast<char>(c + 1));
    i += 2;
  }
  pattern.remove_prefix(i + 1);
  return set;
}

class Builder {
public:
  constexpr void add(const TokenRow &row)
  {
    if (row.pattern.empty()) return;
    std::string_view rest = row.pattern;
    const CharacterSet first = take_place(rest);
    // A class gives one state for all its members; a member that already leads somewhere (the L
    // of a wide string leads on) keeps its state, which then also ends this token.
    int shared = 0;
    for (std::size_t c = 0; c < first.size(); ++c) {
      if (!first[c]) continue;
      if (table_.next[0][c] == 0) {
        if (shared == 0) shared = new_state(0);
        table_.next[0][c] = static_cast<std::uint8_t>(shared);
      }
      if (rest.empty()) end_in(table_.next[0][c], row.number);
    }
    if (rest.empty()) return;
    const std::string_view first_character = row.pattern.substr(0, 1);
    int state = table_.next[0][static_cast<std::size_t>(first_character[0])];
    while (!rest.empty()) state = follow(state, take_place(rest));
    end_in(state, row.number);
  }

  [[nodiscard]] constexpr const Recogniser &table() const { return table_; }

private:
  constexpr int new_state(int from)
  {
    if (states_ == state_count) throw std::length_error("more states than the table has room for");
    table_.goes_on[static_cast<std::size_t>(from)] = true;
    return states_++;
  }

  constexpr int follow(int from, const CharacterSet &set)
  {
    int to = 0;
    for (std::size_t c = 0; c < set.size(); ++c) {
      if (!set[c]) continue;
      std::uint8_t &next = table_.next[static_cast<std::size_t>(from)][c];
      if (next != 0) {
        to = next;
        continue;
      }
      if (to == 0) to = new_state(from);
      next = static_cast<std::uint8_t>(to);
    }
    return to;
  }

  constexpr void end_in(int state, TokenNumber token)
  {
    std::uint8_t &ends = table_.token[static_cast<std::size_t>(state)];
    if (ends == 0) ends = static_cast<std::uint8_t>(token);
  }

  Recogniser table_{};
  int states_ = 1;
};

constexpr Recogniser build()
{
  Builder builder;
  for (const TokenRow &row : token_table) builder.add(row);
  return builder.table();
}

constexpr Recogniser built = build();

} // namespace

const Recogniser recogniser = built;

} // namespace tdm
