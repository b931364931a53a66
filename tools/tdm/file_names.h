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

  /// For the user, a name of the library's: relative to the working directory, or to one above it;
  /// absolute if that is how the user gave it, or where it is found, or else the first name of all.
  [[nodiscard]] std::string shown(std::string_view name) const;

  /// The same without detours through "." and "..", if the file is still found then.
  [[nodiscard]] std::string shown_plainly(const std::string &name) const;

private:
  /// A file, or with a "/" behind it a directory, by its plain absolute name.
  struct Given {
    std::string name;
    bool absolute; ///< as the user gave it
  };

  [[nodiscard]] bool is_absolute(std::string_view name) const;

  std::string directory_; ///< ends with "/"
  std::vector<Given> given_;
};

} // namespace tool
