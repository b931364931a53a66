#include "file_names.h"

#include <algorithm>

namespace tool {

FileNames::FileNames(std::string working_directory, const std::vector<std::string> &given)
    : directory_(std::move(working_directory))
{
  if (!directory_.ends_with('/')) directory_ += '/';
  for (const std::string &name : given)
    if (name.starts_with('/')) kept_.push_back(name.substr(0, name.rfind('/') + 1));
}

std::string FileNames::absolute(const std::string &name) const
{
  return name.starts_with('/') ? name : directory_ + name;
}

bool FileNames::is_kept(std::string_view name, size_t longer_than) const
{
  return std::any_of(kept_.begin(), kept_.end(), [&](const std::string &kept) {
    return kept.size() >= longer_than && name.starts_with(kept);
  });
}

std::string FileNames::shown(std::string_view name) const
{
  std::string up;
  for (std::string_view directory = directory_; directory.size() > 1; up += "../") {
    if (name.starts_with(directory))
      return is_kept(name, directory.size()) ? std::string(name)
                                             : up.append(name.substr(directory.size()));
    directory.remove_suffix(1);
    directory = directory.substr(0, directory.rfind('/') + 1);
  }
  return std::string(name);
}

} // namespace tool
