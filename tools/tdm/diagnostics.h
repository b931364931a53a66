// Tells the user what is wrong, in the form that editors understand:
//
//   chip.tdm:3:8: error: no mau size set for memory m
//       3 | memory m {
//         |        ^
#pragma once

#include <ostream>
#include <string>

#include "file_names.h"
#include "session.h"
#include "source_excerpt.h"

namespace tool {

/// The text of a failure in its parts; line 0 if it stands at no line, and no file if at none.
struct Failure {
  std::string file;
  int line = 0;
  int column = 0;
  std::string text;
};

/// From `["<file>" <line>/<column>] <label>: <text>`, or a text without position.
[[nodiscard]] Failure parse_failure(const std::string &text);

class Diagnostics {
public:
  Diagnostics(const FileNames &names, std::ostream &out, bool colored)
      : names_(names), out_(out), colored_(colored)
  {
  }

  /// The messages of the preprocessor, in the order of their reports, each note below the message
  /// that it belongs to; then the failure of the parse, if it failed.
  void report(const Session &session);

  /// As an error.
  void report(const Failure &failure);

private:
  struct Place {
    std::string file;
    int line;
    int column;
  };

  void report_messages();
  void print(const Place &place, const char *severity, const std::string &text);
  void print_source(const Place &place);
  [[nodiscard]] std::string styled(const char *style, const std::string &text) const;

  const FileNames &names_;
  std::ostream &out_;
  bool colored_;
  SourceFiles sources_;
};

/// Whether the stream of that descriptor shows colors and the user wants them.
[[nodiscard]] bool shows_colors(int descriptor);

} // namespace tool
