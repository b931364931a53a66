// The process-wide intern table: every text that the library hands out, every token text, file
// name and macro name is held here once, so that equal texts have one address.
//
// In front of each text stands a small record with its hash, its length and a mark. So a table that
// is keyed by pooled texts needs no hashing of its own, and a user can ask in one load whether a
// text is anything special (a macro name, a keyword).
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "common/text.h"

namespace tdm {

/// Makes the pool, unless it exists (tdm_init).
void string_pool_start();

/// Frees the pool with all its texts (tdm_cleanup).
void string_pool_end();

[[nodiscard]] bool string_pool_started();

namespace detail {
extern std::uint32_t pool_number;
}

/// Which pool of the process this is, from 1 on; 0 while there is none. Who keeps a text of the
/// pool beyond its end finds out by this number.
[[nodiscard]] inline std::uint32_t string_pool_number()
{
  return detail::pool_number;
}

/// Keeps the texts of the pool readable when the pool ends: for what may live on with views of
/// them. They go with the last that keeps them.
class TextKeeper {
public:
  TextKeeper();
  ~TextKeeper();
  TextKeeper(const TextKeeper &) = delete;
  TextKeeper &operator=(const TextKeeper &) = delete;

private:
  friend void string_pool_end();

  [[nodiscard]] static TextKeeper *of(std::uint32_t number);

  TextKeeper *next_; ///< of all that there are
  std::uint32_t pool_ = string_pool_number();
  void *texts_ = nullptr; ///< with one of the keepers, once the pool has ended
};

/// The pool's copy of the text, NUL-terminated; stays valid until string_pool_end. A text that
/// holds a NUL is kept whole, though a reader of C strings sees its front only. The pool must have
/// been started.
[[nodiscard]] const char *intern(std::string_view text);

/// A copy in the pool that intern() doesn't find: for texts of which there are many, most of them
/// once, and which nobody compares by address.
[[nodiscard]] const char *keep_unindexed(std::string_view text);

/// What intern() gives, as a view. A failure where there is no pool.
[[nodiscard]] Text pooled_text(std::string_view text);

/// Two texts with a character between them.
[[nodiscard]] Text joined_text(std::string_view left, char between, std::string_view right);

/// What the pool keeps with each text. The last two are free for the users of the pool, and 0 in a
/// new text.
struct PooledText {
  std::uint32_t hash;   ///< 0 in a text that isn't in the index
  std::uint32_t marks;  ///< bits below
  std::uint32_t length; ///< a longer text can't be kept
  std::uint32_t number; ///< leads to what the text stands for, where that says that it does
};

/// Set while the text names a macro, or did so since the latest stream began.
constexpr std::uint32_t mark_macro_name = 1;

/// Set on a text that holds a backslash, which only a universal character name brings into a name.
constexpr std::uint32_t mark_has_backslash = 2;

/// Set while the text is among the dependencies of a stream.
constexpr std::uint32_t mark_dependency = 4;

/// The bits from here up are the lexer's: what kind of token the text is.
constexpr unsigned mark_lexer_shift = 8;
constexpr std::uint32_t marks_of_preprocessor = (1U << mark_lexer_shift) - 1;

/// The record of a text of the pool. Only for pointers that the functions above gave.
[[nodiscard]] inline PooledText &pooled(const char *text)
{
  return reinterpret_cast<PooledText *>(const_cast<char *>(text))[-1];
}

} // namespace tdm
