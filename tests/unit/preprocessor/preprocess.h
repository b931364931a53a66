// Runs the preprocessor over small files and tells what came out, for the tests of this floor.
#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace tdm_test {

/// A file: name and content.
using File = std::pair<std::string, std::string>;

struct Outcome {
  std::string text; ///< all characters, in order
  std::string
      tokens; ///< `number@line:column<text>`, one a token, white space and newlines left out
  std::string messages; ///< `line:column E901 text`, one a line, in the order of the reports
  std::string failure;  ///< the text of the exception, if there was one
  std::vector<std::string> dependencies; ///< names of the files that were opened
};

struct Settings {
  std::vector<std::string> defines;
  std::vector<std::string> inputs = {"main"}; ///< names of the files to read
  std::function<void()> prepare;              ///< run before the input is opened
  bool positions_with_file = false;           ///< `file:line:column` in tokens and messages
};

/// Writes the files to a directory of its own, which is the only include directory, and reads them.
Outcome preprocess(const std::vector<File> &files, const Settings &settings = {});

/// The same for one file.
Outcome preprocess(const std::string &content);

/// The text with each run of white space made one blank, and none at either end.
std::string squeezed(const std::string &text);

std::string repeated(const std::string &text, std::size_t count);

} // namespace tdm_test
