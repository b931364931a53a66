// Lists of tokens as macro expansion makes them by the million: arrays in a stack of memory.
//
// A list is an array of items, each a token or one of the two kinds below, and never changes once
// it is made, so lists share parts instead of copying them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "preprocessor/pp_token.h"

namespace tdm {

/// An item that stands for all tokens of a part.
constexpr int item_part = -1;

/// Tokens that macro expansion is done with: reading them again could not change them, so a list
/// that holds them refers to them. (A function-like name that might meet a "(" later is never in a
/// part.)
struct TokenPart {
  const PpToken *items;
  std::size_t count;
  std::uint32_t generation; ///< of the macro table; done with only while this is the same
  bool balanced;            ///< parentheses match, seen from outside
  bool has_comma;           ///< a comma outside all parentheses
  int first;                ///< number of the first token that isn't white, or 0
};

[[nodiscard]] inline const TokenPart &part_of(const PpToken &item)
{
  return *reinterpret_cast<const TokenPart *>(item.text);
}

/// A list.
struct TokenSpan {
  const PpToken *items;
  std::size_t count;
};

/// A stack of memory: what was made since a mark is given back at once.
class TokenMemory {
public:
  struct Mark {
    std::size_t chunk = 0;
    std::size_t used = 0;

    friend bool operator<(const Mark &a, const Mark &b)
    {
      return a.chunk != b.chunk ? a.chunk < b.chunk : a.used < b.used;
    }
  };

  TokenMemory() = default;
  TokenMemory(const TokenMemory &) = delete;
  TokenMemory &operator=(const TokenMemory &) = delete;
  ~TokenMemory() { clear(); }

  [[nodiscard]] void *allocate(std::size_t size);

  /// A copy of the items.
  [[nodiscard]] const PpToken *copy(const PpToken *items, std::size_t count);

  [[nodiscard]] Mark mark() const { return top_; }
  void release(Mark mark);
  void clear();

private:
  struct Chunk {
    char *begin;
    std::size_t size;
  };

  std::vector<Chunk> chunks_; ///< those above top_.chunk are spare
  Mark top_;
};

/// Calls the function with each token of the items in order, those of parts included, until it
/// gives false. Parts nest as deep as macro calls do, so this keeps a stack of its own.
template <class Function>
void for_each_token(const PpToken *begin, const PpToken *end, Function function)
{
  struct Range {
    const PpToken *cursor, *end;
  };
  std::vector<Range> open;
  for (;;) {
    while (begin == end) {
      if (open.empty()) return;
      begin = open.back().cursor;
      end = open.back().end;
      open.pop_back();
    }
    const PpToken &item = *begin++;
    if (item.number != item_part) {
      if (!function(item)) return;
      continue;
    }
    if (begin != end) open.push_back({begin, end});
    begin = part_of(item).items;
    end = begin + part_of(item).count;
  }
}

} // namespace tdm
