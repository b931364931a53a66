// The files that a description is made of, as a Makefile rule: the verb deps, and what check
// leaves. Make takes names as texts, so each file has one: the plainest.
#include <algorithm>

#include <tdm_c/tdm_inspect.h>

#include "make_rule.h"
#include "verbs.h"

namespace tool {

namespace {

/// As a name in a Makefile.
std::string escaped(const std::string &name)
{
  std::string result;
  for (const char c : name) {
    if (c == ' ' || c == '#' || c == ':') result += '\\';
    if (c == '$') result += '$';
    result += c;
  }
  return result;
}

std::string default_target(const std::string &file)
{
  const size_t name = file.rfind('/') + 1;
  const size_t dot = file.rfind('.');
  return file.substr(0, dot != std::string::npos && dot > name ? dot : file.size()) + ".d";
}

} // namespace

void write_make_rule(const std::string &target, const std::vector<std::string> &files,
                     std::ostream &out)
{
  out << escaped(target) << ':';
  for (const std::string &file : files) out << " \\\n  " << escaped(file);
  out << '\n';
}

std::vector<std::string> files_read(const Session &session)
{
  std::vector<std::string> files;
  for (const auto &file : take_elements<tdm_inspect_source_file>(tdm_inspect_source_files())) {
    std::string name = session.names().shown_plainly(file.name);
    if (std::find(files.begin(), files.end(), name) == files.end())
      files.push_back(std::move(name));
  }
  return files;
}

int deps(const Options &options, const Session &session, std::ostream &out)
{
  write_make_rule(options.target.empty() ? default_target(options.files.front()) : options.target,
                  files_read(session), out);
  return exit_ok;
}

} // namespace tool
