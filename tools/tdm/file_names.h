// The names of files on both sides: a user means names in the working directory, while the library
// looks for relative names in include directories only. So it gets absolute names, and whatever it
// says of them is turned back into what the user wrote.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tool {

class FileNames {
public:
  /// For a user in that directory, who gave these names.
  FileNames(std::string working_directory, const std::vector<std::string> &given);

  /// For the library.
  [[nodiscard]] std::string absolute(const std::string &name) const;

  /// For the user, a name of the library's.
  [[nodiscard]] std::string shown(std::string_view name) const;

  /// For the user, a text that may quote such names.
  [[nodiscard]] std::string shown_in(std::string_view text) const;

private:
  /// The length of the prefix at the beginning of the text that is to be replaced, and by what.
  [[nodiscard]] std::pair<size_t, std::string_view> prefix_of(std::string_view text) const;

  std::string directory_; ///< ends with "/"
  /// Directories that the user gave as absolute names stay.
  std::vector<std::string> kept_;
};

} // namespace tool
