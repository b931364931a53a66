// What is wrong with a description, as data; the forms in which it is told make their own of it.
#pragma once

#include <string>
#include <vector>

#include "file_names.h"
#include "session.h"

namespace tool {

struct SourcePlace {
  std::string path; ///< the file, as the library has it; empty if the place is none in a file
  std::string file; ///< the same as the user knows it
  int line = 0;     ///< from 1; 0 for the file as a whole
  int column = 0;   ///< from 1, in bytes
};

struct Finding {
  const char *severity = "error"; ///< or "warning", "note"
  std::string number;             ///< "E948"; empty for what isn't of the preprocessor
  std::string text;               ///< with the names of files as the user knows them
  SourcePlace place;
  std::string file; ///< of which the text says that it can't be opened, as the user knows it
  std::vector<SourcePlace> included_from; ///< the #include lines on the way, the nearest first
  std::vector<Finding> notes;
};

/// The text of a failure in its parts; line 0 if it stands at no line, and no file if at none.
struct Failure {
  std::string file;
  int line = 0;
  int column = 0;
  std::string text;
};

/// From `["<file>" <line>/<column>] <label>: <text>`, or a text without position.
[[nodiscard]] Failure parse_failure(const std::string &text);

/// The #include lines on the way to a place, the nearest first.
[[nodiscard]] std::vector<SourcePlace> include_chain_of(const SourcePlace &place,
                                                        const FileNames &names);

[[nodiscard]] Finding finding_of(const Failure &failure, const FileNames &names);

/// The messages of the preprocessor, in the order of their reports, each note with the message
/// that it belongs to; then the failure of the parse, if it failed.
[[nodiscard]] std::vector<Finding> findings_of(const Session &session);

} // namespace tool
