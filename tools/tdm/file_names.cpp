#include "file_names.h"

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

std::pair<size_t, std::string_view> FileNames::prefix_of(std::string_view text) const
{
  if (!text.starts_with(directory_)) return {0, {}};
  for (const std::string &kept : kept_)
    if (kept.size() >= directory_.size() && text.starts_with(kept)) return {kept.size(), kept};
  return {directory_.size(), {}};
}

std::string FileNames::shown(std::string_view name) const
{
  const auto [length, shown] = prefix_of(name);
  return std::string(shown).append(name.substr(length));
}

std::string FileNames::shown_in(std::string_view text) const
{
  std::string result;
  for (size_t at = 0; at < text.size();) {
    // A name begins where no other name goes on.
    const bool begins = at == 0 || text[at - 1] == '"' || text[at - 1] == ' ';
    const auto [length, shown] =
        begins ? prefix_of(text.substr(at)) : std::pair(size_t{0}, std::string_view());
    if (length > 0) {
      result += shown;
      at += length;
    } else {
      result += text[at++];
    }
  }
  return result;
}

} // namespace tool
