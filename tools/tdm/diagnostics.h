// Tells the user what is wrong, in the form that editors understand:
//
//   In file included from board.tdm:1:
//   chip.tdm:3:8: error: no mau size set for memory m
//       3 | memory m {
//         |        ^
#pragma once

#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "file_names.h"
#include "findings.h"
#include "source_excerpt.h"

namespace tool {

class Diagnostics {
public:
  Diagnostics(const FileNames &names, std::ostream &out, bool colored)
      : names_(names), out_(out), colored_(colored)
  {
  }

  void report(const std::vector<Finding> &findings);

  /// As an error.
  void report(const Failure &failure);

  /// A text that is no file, for what is wrong in it.
  void know(const std::string &name, const std::string &text) { sources_.keep(name, text); }

private:
  void print(const Finding &finding);
  void print_chain(const std::vector<SourcePlace> &included_from);
  void print_source(const SourcePlace &place);
  [[nodiscard]] std::string styled(const char *style, const std::string &text) const;

  const FileNames &names_;
  std::ostream &out_;
  bool colored_;
  SourceFiles sources_;
  std::string last_chain_; ///< as text: said once for messages that follow one another
};

/// Whether to write colors to that stream, by what the user wants: "always", "never" or "auto",
/// which looks for a terminal and the variable NO_COLOR.
[[nodiscard]] bool shows_colors(std::string_view wish, int descriptor);

} // namespace tool
