// The texts of short files that have been read in this stream, for the next time they are included:
// a header with an include guard is opened often, and most of the times for nothing.
//
// A text serves again only if the system tells the same of the file as when it was read. And while
// somebody reads it, others open the file itself: so a file that includes itself needs a handle for
// each reading, and comes to its end when there are no more.
#pragma once

#include <cstddef>
#include <cstdint>
#include <ctime>
#include <memory>
#include <sys/stat.h>

namespace tdm {

struct FreeBuffer {
  void operator()(char *buffer) const;
};
using Buffer = std::unique_ptr<char, FreeBuffer>;

struct KeptText {
  Buffer buffer; ///< with a NUL behind the text
  std::size_t length = 0;
  std::uint32_t number = 0; ///< different for all texts of the stream
  bool in_use = false;
  struct stat file = {}; ///< what it was read from
};

/// The text of the file under this name, which is now in use; null if it has to be read.
[[nodiscard]] KeptText *take_kept_text(const char *name);

/// Keeps the text of a file, which is then in use, and takes the buffer over; null if it doesn't.
[[nodiscard]] KeptText *keep_text_of(const char *name, const struct stat &file, Buffer &buffer,
                                     std::size_t length);

/// Keeps no texts from now on and gives out none: there are no handles left, and whoever opens a
/// file is to find that out.
void refuse_kept_texts();

void kept_texts_start();
void kept_texts_stop();

} // namespace tdm
