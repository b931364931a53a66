// Which files a stream has read, and from where each was included: one record for each opened
// file, written as it is opened. The records outlive the stream, so that they can be asked for
// after a failed parse, too; the next stream starts anew.
//
// A position doesn't say which opening of a file it was read in. That is found out by name, and
// where a file was read several times, by the lines that each reading skipped: the record keeps the
// longest run of them, which is all but everything where an include guard was at work.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "common/tdm_types.h"

namespace tdm {

struct SourceFile {
  const char *name = nullptr;  ///< under which it was opened; null: not opened
  std::int32_t includer = -1;  ///< index of the file that the #include stands in, -1 for none
  std::int32_t depth = 0;      ///< how many files are around it
  tdm_srcpos include = {};     ///< of the "#" of the #include
  std::uint32_t skipping = 0;  ///< line of the directive that began to skip, while that lasts
  std::uint32_t skip_from = 0; ///< the longest run of skipped lines, without the directives
  std::uint32_t skip_to = 0;
};

/// Forgets all records. The first `main_files` ones are for the files that the stream begins with,
/// which are opened last to first.
void source_files_start(std::size_t main_files);
/// Gives the memory back.
void source_files_end();

/// Enters a file that is opened by an #include at the place given last, or as one of the first ones
/// if the includer is -1. Gives its index.
std::int32_t source_file_opened(const char *name, std::int32_t includer);

/// Notes that a file was refused because of the limit below; whether that had happened before.
bool source_files_refused();

/// The place of the #include that opens what is opened next.
void source_files_include_at(const tdm_srcpos &place);

/// A #line has given the file another name.
void source_file_renamed(std::int32_t index, const char *name);

/// A directive on this line of the file begins to skip lines, or ends it.
void source_file_skips(std::int32_t index, std::uint32_t line, bool skips);

[[nodiscard]] const std::vector<SourceFile> &source_files();

/// The index of the file that the position was read in, as far as that can be told; -1 if none has
/// the name, which must be interned.
[[nodiscard]] std::int32_t source_file_of(const char *name, std::uint32_t line);

/// How deep #include may nest; 0 for as deep as files can be opened. Lives until source_files_end.
void source_files_limit_depth(std::int32_t depth);
[[nodiscard]] std::int32_t source_files_depth_limit();

/// Files that include themselves twice would multiply for ever: so many may be opened for an input,
/// or a thousandth of that (64) for each file that there is, if that is more. Only tests that want
/// to be quick set a lower number.
extern std::size_t source_files_limit;

/// How many files may be opened for the input as far as it is known.
[[nodiscard]] std::size_t source_files_allowed();

/// Whether that many are open; with one look where there are few.
[[nodiscard]] bool source_files_exhausted();

} // namespace tdm
