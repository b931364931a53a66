// Lines of the user's files, with a caret under the place that a message means.
#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tool {

/// Reads each file once, however many messages it has.
class SourceFiles {
public:
  /// The line, from 1, without its end; nothing if there is no such line or file. Bytes that the
  /// preprocessor drops are left out, so that columns count as it counts them. Good as long as the
  /// object.
  [[nodiscard]] std::optional<std::string_view> line(const std::string &name, int number);

  /// A text that is no file, under the name by which places in it are told.
  void keep(const std::string &name, std::string text);

private:
  struct File {
    std::string text;
    std::vector<size_t> starts; ///< of the lines
  };
  const File &read(const std::string &name);
  static void find_lines(File &file);

  std::map<std::string, File> files_;
};

/// Two lines: the source line, and the caret under a column (from 1, in bytes). Tabs are spread,
/// what can't be shown becomes "?", and of a long line the part around the caret is shown. The time
/// doesn't depend on the length of the line.
struct Excerpt {
  std::string source;
  std::string caret;
};
[[nodiscard]] Excerpt excerpt_of(std::string_view line, int column);

} // namespace tool
