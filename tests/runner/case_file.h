// A case file: descriptions with requests and the complete output expected of them.
//
//   //+++ base.tdm          a file that every input of the case can include
//   //--- two sizes         an input begins; the words behind the dashes are its title
//   //! define A=1          requests, in the order in which they are carried out (session.h)
//   memory mem1 { ... }     the main file, which takes the name of the case file
//   //+++ inner.tdm         a further file of this input
//   //= ok                  the expected output, line by line
//
// A file without `//---` is one input. Lines that begin with `//!` or `//=` are no part of any
// file, so line numbers count the lines between them. In an input with the request `bytes`,
// `{{1A}}` stands for the byte 0x1A and `{{end}}` cuts off the rest of the file, its last line end
// included. Blank lines at the end of a file are no part of it.
#pragma once

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

namespace cases {

struct NamedFile {
  std::string name;
  std::string text;
};

struct Input {
  std::string title;
  std::vector<std::string> requests;
  std::vector<NamedFile> files; ///< the main file first, then its own, then the shared ones
  std::vector<std::string> expected;
  std::size_t first_line = 0; ///< of the case file, counted from 0
  std::size_t end_line = 0;   ///< behind the last line
};

struct CaseFile {
  std::filesystem::path path;
  std::vector<std::string> lines;
  std::vector<Input> inputs;
};

[[nodiscard]] CaseFile read_case_file(const std::filesystem::path &path);

/// Writes the case file anew, the expected lines of each input replaced by those given.
void rewrite_case_file(const CaseFile &file, const std::vector<std::vector<std::string>> &outputs);

/// Whether an output line is the expected one. `/*]` in the expectation leaves the column open,
/// a final `at=*` the position.
[[nodiscard]] bool line_matches(const std::string &expected, const std::string &actual);

} // namespace cases
