// The texts of short files that have been read in this stream, for the next time they are included:
// a header with an include guard is opened often, and most of the times for nothing.
//
// A stream reads such a file once, so all of a parse sees one state of it. While somebody reads a
// text, others open the file itself: so a file that includes itself needs a handle for each
// reading, and comes to its end when there are no more.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "preprocessor/guarded_text.h"

namespace tdm {

struct KeptText {
  const char *name;      ///< of the file
  const char *directory; ///< of the file
  std::string_view text; ///< with a NUL behind it
  std::uint32_t number;  ///< different for all texts of the stream
  bool in_use;
  GuardedText guarded;         ///< what is known of its include guard
  int guard_searches;          ///< a few are enough
  std::uint32_t undefinitions; ///< how many macros had been undefined when the guard was found
};

/// The text of the file under this name; null if it has to be read.
[[nodiscard]] KeptText *find_kept_text(const char *name);

/// The text that this directory's files get for an #include of this text of the pool, as
/// note_included_text told; null if the file has to be searched.
[[nodiscard]] KeptText *find_included_text(const char *directory, const char *written);
void note_included_text(const char *directory, const char *written, KeptText &text);

/// Keeps a copy of the text of a file, which is then in use; null if it doesn't.
[[nodiscard]] KeptText *keep_text_of(const char *name, const char *directory,
                                     std::string_view text);

/// Keeps no texts from now on and gives out none: there are no handles left, and whoever opens a
/// file is to find that out.
void refuse_kept_texts();

void kept_texts_start();
void kept_texts_stop();

} // namespace tdm
