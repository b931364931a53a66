// The part of c-input that deals with the file system: the search of the directories, opening, and
// the listeners that hear of opened files. It hands open files to the stack and knows no
// characters.
#pragma once

#include <cstddef>
#include <string_view>

namespace tdm {

void input_files_start(std::string_view tool_name);
void input_files_stop();

struct KeptText;

/// A file that has been opened, with its first bytes.
struct OpenedFile {
  const char *name;
  const char *directory; ///< of the name, a text of the pool, with the "/" at its end
  int handle;            ///< -1 if the text was kept from an earlier reading
  std::string_view text; ///< the first bytes, with a NUL behind them
  char *buffer;          ///< what they lie in, null if they are kept
  bool exhausted;        ///< that is all; else the buffer has input_buffer_size() bytes
  KeptText *kept;        ///< whose text it is, or null
};

/// The text that an #include of this text of the pool, delimiters and all, led to before from the
/// same directory, with all directories of the search open to it; null if it has to be searched.
[[nodiscard]] KeptText *input_included_before(const char *written);

/// Pushes it like a file that has been opened.
void input_open_again(KeptText &text);

/// input_search_file for the name in what is written, kept for the next time.
bool input_include(const char *written, std::string_view name, bool search_local,
                   bool search_default);

/// Closes a file that leaves the stack.
void input_close_file(int handle, char *buffer, KeptText *kept);

// What the stack does for it: takes over an open file, takes what is no part of a text out of bytes
// that have been read, and gives what is left of the length.
[[nodiscard]] std::size_t input_buffer_size();
void input_push_file(const OpenedFile &file);
[[nodiscard]] std::size_t input_drop_unwanted(char *begin, std::size_t length);

} // namespace tdm
