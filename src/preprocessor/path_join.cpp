// Works on texts alone; the file system is never asked, so a ".." behind a link counts as written.
#include "preprocessor/path_join.h"

#include <algorithm>

namespace {

void make_slashes(std::string &text)
{
  if (text.find('\\') != text.npos) std::replace(text.begin(), text.end(), '\\', '/');
}

std::string with_slashes(std::string_view text)
{
  std::string result(text);
  make_slashes(result);
  return result;
}

bool stands_for_itself(const std::string &name)
{
  return (name.size() > 1 && name[1] == ':') || (!name.empty() && name[0] == '/');
}

// The path without slashes at its end, but for the one of a root.
void cut_slashes(std::string &path)
{
  while (path.size() > 1 && path.back() == '/') path.pop_back();
}

std::string_view last_component(const std::string &path)
{
  return std::string_view(path).substr(path.rfind('/') + 1);
}

void append_component(std::string &path, std::string_view component)
{
  if (!path.empty() && path.back() != '/') path += '/';
  path += component;
}

void go_up(std::string &path)
{
  while (last_component(path) == ".") {
    path.resize(path.size() - 1);
    cut_slashes(path);
  }
  const std::string_view last = last_component(path);
  if (last.empty() || last == "..") {
    append_component(path, "..");
    return;
  }
  path.resize(path.size() - last.size());
  cut_slashes(path);
}

// A path that goes down from the directory, written without anything to be looked at.
bool is_plain(std::string_view name)
{
  char before = '/';
  for (const char c : name) {
    if (c == '\\' || c == ':' || (before == '/' && (c == '/' || c == '.'))) return false;
    before = c;
  }
  return before != '/';
}

} // namespace

std::string path_join(std::string_view directory, std::string_view name)
{
  if (is_plain(name)) {
    std::string path;
    path.reserve(directory.size() + 1 + name.size());
    path = directory;
    make_slashes(path);
    cut_slashes(path);
    append_component(path, name);
    return path;
  }
  std::string wanted = with_slashes(name); // not const: it may be the answer
  if (stands_for_itself(wanted)) return wanted;
  std::string path = with_slashes(directory);
  cut_slashes(path);
  std::string_view rest = wanted;
  while (!rest.empty()) {
    const std::string_view component = rest.substr(0, rest.find('/'));
    rest.remove_prefix(std::min(rest.size(), component.size() + 1));
    if (component == "..")
      go_up(path);
    else if (!component.empty() && component != ".")
      append_component(path, component);
  }
  if ((wanted.empty() || wanted.back() == '/') && !path.empty() && path.back() != '/') path += '/';
  return path;
}
