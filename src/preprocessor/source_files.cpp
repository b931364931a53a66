// The records, and the search for the one that a position belongs to.
#include "preprocessor/source_files.h"

#include <algorithm>
#include <functional>
#include <set>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace tdm {

namespace {

/// The files that have been read under a name, the latest first.
using Readings = std::set<std::int32_t, std::greater<>>;

// What is asked for seldom, the names, is found out when it is asked for: opening a file is part of
// every parse.
struct {
  std::vector<SourceFile> files;
  struct Renamed {
    const char *name;
    std::int32_t file;
  };
  std::vector<Renamed> renamed;                        ///< by #line
  std::unordered_map<const char *, Readings> readings; ///< under their own names, and by #line
  std::size_t files_entered = 0;                       ///< in the readings, as the next
  std::size_t renamed_entered = 0;
  std::unordered_set<const char *> names; ///< of all files that have been opened, once each
  std::size_t names_counted = 0;          ///< files whose names are in
  std::size_t main_files_left = 0;
  tdm_srcpos include = {};
  std::int32_t depth_limit = 0;
  bool refused = false;
} state;

void enter_reading(const char *name, std::int32_t file)
{
  state.readings[name].insert(file);
}

// While main files are left they have no names yet, and are passed over again the next time.
void enter_readings()
{
  for (std::size_t i = state.files_entered; i < state.files.size(); ++i)
    if (state.files[i].name != nullptr)
      enter_reading(state.files[i].name, static_cast<std::int32_t>(i));
  if (state.main_files_left == 0) state.files_entered = state.files.size();
  for (; state.renamed_entered < state.renamed.size(); ++state.renamed_entered)
    enter_reading(state.renamed[state.renamed_entered].name,
                  state.renamed[state.renamed_entered].file);
}

bool skipped(const SourceFile &file, std::uint32_t line)
{
  return line > file.skip_from && line < file.skip_to;
}

} // namespace

std::size_t source_files_limit = 1 << 16;

bool source_files_exhausted()
{
  return state.files.size() >= source_files_limit && state.files.size() >= source_files_allowed();
}

std::size_t source_files_allowed()
{
  for (; state.names_counted < state.files.size(); ++state.names_counted)
    if (const char *name = state.files[state.names_counted].name) state.names.insert(name);
  return std::max(source_files_limit, state.names.size() * (source_files_limit / 1024));
}

void source_files_start(std::size_t main_files)
{
  const std::int32_t depth_limit = state.depth_limit;
  state = {};
  state.depth_limit = depth_limit;
  state.files.assign(main_files, {});
  state.main_files_left = main_files;
}

void source_files_end()
{
  state = {};
}

std::int32_t source_file_opened(const char *name, std::int32_t includer)
{
  if (includer < 0 && state.main_files_left > 0) {
    state.files[--state.main_files_left].name = name;
    return static_cast<std::int32_t>(state.main_files_left);
  }
  const auto index = static_cast<std::int32_t>(state.files.size());
  SourceFile &file = state.files.emplace_back();
  file.name = name;
  file.includer = includer;
  if (includer >= 0) {
    file.include = state.include;
    file.depth = state.files[static_cast<std::size_t>(includer)].depth + 1;
  }
  return index;
}

bool source_files_refused()
{
  return std::exchange(state.refused, true);
}

void source_files_include_at(const tdm_srcpos &place)
{
  state.include = place;
}

void source_file_renamed(std::int32_t index, const char *name)
{
  state.renamed.push_back({name, index});
}

void source_file_skips(std::int32_t index, std::uint32_t line, bool skips)
{
  SourceFile &file = state.files[static_cast<std::size_t>(index)];
  if (skips) {
    file.skipping = line;
    return;
  }
  if (file.skipping != 0 && line > file.skipping &&
      line - file.skipping > file.skip_to - file.skip_from) {
    file.skip_from = file.skipping;
    file.skip_to = line;
  }
  file.skipping = 0;
}

const std::vector<SourceFile> &source_files()
{
  return state.files;
}

std::int32_t source_file_of(const char *name, std::uint32_t line)
{
  enter_readings();
  const auto readings = state.readings.find(name);
  if (readings == state.readings.end()) return -1;
  // The latest one that read the line: those that a guard made skip it come later, as a rule few.
  for (const std::int32_t index : readings->second)
    if (!skipped(state.files[static_cast<std::size_t>(index)], line)) return index;
  return *readings->second.begin();
}

void source_files_limit_depth(std::int32_t depth)
{
  state.depth_limit = depth;
}

std::int32_t source_files_depth_limit()
{
  return state.depth_limit;
}

} // namespace tdm
