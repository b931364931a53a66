// One input of a case, from start to end: the library is started, the files are parsed, the
// requests are answered, and everything that the library says is rendered as lines of text.
//
// Requests that shape the parse:
//   define A=1            one macro definition of tdm_init; may come several times
//   dir <name>            one include directory, below the directory of the files
//   files <a> <b> ...     the files to parse, instead of the main file; a name behind `=` is passed
//                         as it stands, any other names a file of the input
//   parse <a> <b> ...     a parse of its own in the same started period, once the requests get here
//   none                  no parse to begin with
//   once                  one run instead of three, for what takes a second or more
// Requests that are answered after it:
//   model                 all that the getters tell
//   find <kind> ...       a look-up by name or number
//   set_literals <a> <b>  makes b, or `null`, the address literal space of a
//   last_error            the last error text
//   walk <space>          a walk that calls nothing back; tells only how it failed
//   read <space> ...      all callbacks of a walk, see read_space.h for the options
//   valid <space>         the valid interval
//   forward | forward_to_memory <space> <what>
//   backward | backward_to_bus | backward_to_space <memory> <what>
// where <what> is an address `0x10`, `0x10.4` (bit 4), `0x10@2` (bank 2), or an interval `[a,b)`,
// and behind it, optionally, `mau=16`, `mask=16/0xFF00`, `priority=0x10000`, `exec=0x10000`.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "case_file.h"

namespace cases {

/// What went before in the same process, and must not be seen.
enum class Before { nothing, failed_parse };

/// Runs the input in the directory, which holds its files, and gives all output.
[[nodiscard]] std::vector<std::string>
run_input(const Input &input, const std::filesystem::path &directory, Before before);

/// Writes the files of the input; the directory is made anew.
void write_files(const Input &input, const std::filesystem::path &directory);

} // namespace cases
