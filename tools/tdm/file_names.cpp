#include "file_names.h"

#include <filesystem>

namespace tool {

namespace {

std::string plain(std::string_view name)
{
  return std::filesystem::path(name).lexically_normal().string();
}

} // namespace

FileNames::FileNames(std::string working_directory, const std::vector<std::string> &given)
    : directory_(std::move(working_directory))
{
  if (!directory_.ends_with('/')) directory_ += '/';
  for (const std::string &name : given) {
    const bool absolute_name = name.starts_with('/');
    const std::string whole = plain(absolute(name));
    given_.push_back({whole, absolute_name});
    given_.push_back({whole.substr(0, whole.rfind('/') + 1), absolute_name});
  }
}

std::string FileNames::absolute(const std::string &name) const
{
  return name.starts_with('/') ? name : directory_ + name;
}

bool FileNames::is_absolute(std::string_view name) const
{
  const std::string whole = plain(name);
  const Given *nearest = given_.empty() ? nullptr : &given_.front();
  size_t longest = 0;
  for (const Given &given : given_) {
    const bool holds =
        given.name.ends_with('/') ? whole.starts_with(given.name) : whole == given.name;
    if (!holds || given.name.size() <= longest) continue;
    longest = given.name.size();
    nearest = &given;
  }
  return nearest != nullptr && nearest->absolute;
}

std::string FileNames::shown(std::string_view name) const
{
  if (is_absolute(name)) return std::string(name);
  std::string up;
  for (std::string_view directory = directory_; directory.size() > 1; up += "../") {
    if (name.starts_with(directory)) return up.append(name.substr(directory.size()));
    directory.remove_suffix(1);
    directory = directory.substr(0, directory.rfind('/') + 1);
  }
  return std::string(name);
}

std::string FileNames::shown_plainly(const std::string &name) const
{
  const std::string whole = plain(name);
  std::error_code missing;
  return shown(std::filesystem::equivalent(whole, name, missing) ? whole : name);
}

} // namespace tool
