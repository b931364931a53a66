// The short verbs: check and deps.
#include "verbs.h"

#include "format.h"

namespace tool {

namespace {

/// As a name in a Makefile.
std::string escaped(const std::string &name)
{
  std::string result;
  for (const char c : name) {
    if (c == ' ' || c == '#') result += '\\';
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

int check(const Options &options, const Session &session, std::ostream &out)
{
  size_t cores = 0;
  size_t spaces = 0;
  const std::vector<tdm_processor *> processors = processors_of(session.spec());
  for (const tdm_processor *processor : processors)
    for (const tdm_core *core : cores_of(processor)) {
      ++cores;
      for (const tdm_space *space : spaces_of(core)) spaces += is_placeholder(space) ? 0 : 1;
    }
  out << options.files.front() << ": in order: " << counted(processors.size(), "processor") << ", "
      << counted(cores, "core") << ", " << counted(spaces, "space") << ", "
      << counted(memories_of(session.spec()).size(), "memory") << '\n';
  return exit_ok;
}

int deps(const Options &options, const Session &session, std::ostream &out)
{
  out << escaped(options.target.empty() ? default_target(options.files.front()) : options.target)
      << ':';
  for (const char *file :
       take_elements<const char *>(tdm_spec_get_file_dependencies(session.spec())))
    out << " \\\n  " << escaped(session.names().shown(file));
  out << '\n';
  return exit_ok;
}

} // namespace tool
