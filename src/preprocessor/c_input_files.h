// The part of c-input that deals with the file system: the search of the directories, opening, and
// the listeners that hear of opened files. It hands open files to the stack and knows no
// characters.
#pragma once

#include <cstddef>
#include <string_view>

namespace tdm {

void input_files_start(std::string_view tool_name);
void input_files_stop();

/// Closes the handle of a file that leaves the stack.
void input_close_handle(int handle);

// What the stack does for it: takes over an open file with its first bytes, in a buffer of
// input_buffer_size() bytes, or of one more than `length` when the file is exhausted.
[[nodiscard]] std::size_t input_buffer_size();
void input_push_file(int handle, const char *name, char *buffer, std::size_t length,
                     bool exhausted);

} // namespace tdm
