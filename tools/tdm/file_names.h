// The names of files on both sides: a user means names in the working directory, while the library
// looks for relative names in include directories only. So it gets absolute names, and whatever it
// says of them is turned back into what the user wrote.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tool {

class FileNames {
public:
  /// For a user in that directory, who gave these names.
  FileNames(std::string working_directory, const std::vector<std::string> &given);

  /// For the library.
  [[nodiscard]] std::string absolute(const std::string &name) const;

  /// For the user, a name of the library's: relative to the working directory, or to one above it,
  /// unless the user gave it as an absolute one.
  [[nodiscard]] std::string shown(std::string_view name) const;

private:
  [[nodiscard]] bool is_kept(std::string_view name, size_t longer_than) const;

  std::string directory_; ///< ends with "/"
  /// Directories that the user gave by absolute names, each with its "/".
  std::vector<std::string> kept_;
};

} // namespace tool
