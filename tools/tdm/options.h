// What the user asks for, as read from the command line.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "address.h"

namespace tool {

enum class Verb { check, preprocess, show, map, layout, select, eval, draw, deps, explain };

struct Options {
  Verb verb = Verb::check;
  std::vector<std::string> files;
  std::vector<std::string> include_dirs;
  std::vector<std::string> defines;
  std::string color = "auto"; ///< or "always", "never"
  // What a description may take; 0 for no limit. The first one is enough for any description, and
  // below the number of files that a process may have open.
  int max_include_depth = 200;
  double timeout = 60; ///< seconds
  int64_t max_memory = int64_t{2} << 30;
  std::string format =
      "text";              ///< check: or "json", "sarif", "github"; explain: or "json", "markdown"
  bool each = false;       ///< check: every file is a description of its own
  bool no_markers = false; ///< preprocess
  std::string depfile;     ///< check: where to write the rule; empty for nowhere
  std::vector<std::string> numbers; ///< explain; none for all
  bool json = false;                ///< show, map, layout, select, eval
  bool origin = false;              ///< show: where each part was written
  std::string space;  ///< layout, select, eval; map: where the address is meant; empty for a memory
  std::string memory; ///< map: the same
  std::string at;     ///< map: the address as it was given
  std::optional<Place> place;       ///< map: the same, read; none for a table
  int32_t unit = 0;                 ///< map: bits of the units to show; 0 for those of each object
  std::vector<std::string> exists;  ///< layout, select, eval: names that `exists` says yes to
  std::vector<std::string> defined; ///< eval: symbols that are defined, beside `symbols`
  std::string expression;           ///< eval
  std::vector<std::string> symbols; ///< eval: NAME=VALUE
  std::string sections = "-";       ///< select: the list; "-" for the standard input
  std::string target;               ///< deps, check: empty for the default
  std::string output = "-";         ///< draw: the file to write; "-" for the standard output
  bool html = false;                ///< draw: a page of its own
  std::string processor;            ///< draw: of which; empty for all
};

/// What the process ends with.
enum ExitCode {
  exit_ok = 0,
  exit_errors = 1,
  exit_usage = 2,
  exit_no_route = 3,
  exit_include_depth = 4,
  exit_timeout = 5,
  exit_memory = 6,
  exit_fault = 7
};

/// Reads the command line. No options, but an exit code, when there is nothing left to do: after
/// the help, the version or a usage error, which are printed here.
struct Command {
  std::optional<Options> options;
  int exit_code = exit_ok;
};
[[nodiscard]] Command read_command_line(int argc, char **argv);

} // namespace tool
