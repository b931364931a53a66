// The additive readers of the text: files, chains of #include, limits of it, and its tokens.
#include <utility>
#include <vector>

#include "common/failures.h"
#include "interface/guard.h"
#include "interface/input.h"
#include "interface/tdm_inspect_source.h"
#include "interface/values.h"
#include "preprocessor/c_input.h"
#include "preprocessor/c_scanner.h"
#include "preprocessor/preprocessed_file_input_stream.h"
#include "preprocessor/source_files.h"
#include "preprocessor/string_pool.h"
#include "preprocessor/token_table.h"

using tdm::guarded;
using tdm::guarded_array;

static_assert(int{TDM_TOKEN_END} == tEOF && int{TDM_TOKEN_ERROR} == tERROR &&
              int{TDM_TOKEN_WIDE_STRING} == tWSTRING && int{TDM_TOKEN_WIDE_CHARACTER} == tWCHAR &&
              int{TDM_TOKEN_NAME} == tIDENT && int{TDM_TOKEN_INTEGER} == tICON &&
              int{TDM_TOKEN_FLOAT} == tFCON && int{TDM_TOKEN_STRING} == tSTRING &&
              int{TDM_TOKEN_CHARACTER} == tCHAR && int{TDM_TOKEN_NEWLINE} == tNEWLINE &&
              int{TDM_TOKEN_WHITE} == tWHITE && int{TDM_TOKEN_COMMENT} == tCOMMENT);

struct TDMTokenStream {
  explicit TDMTokenStream(const std::vector<std::string> &files) : input(files, nullptr) {}

  TDMPreprocessedFileInputStream input;
};

namespace {

/// Null for none. Left alone when the process ends, as the preprocessor is.
TDMTokenStream *open_stream = nullptr;

tdm_srcpos without_pragmas(const tdm_srcpos &position)
{
  return {position.file, position.line, position.column, nullptr};
}

/// A name that isn't in the pool yet is none of the files'.
std::int32_t source_of(const tdm_srcpos &position)
{
  if (position.file == nullptr || tdm::source_files().empty()) return -1;
  return tdm::source_file_of(tdm::intern(position.file), static_cast<uint32_t>(position.line));
}

} // namespace

void tdm::end_token_stream()
{
  delete std::exchange(open_stream, nullptr);
}

tdm_arr *tdm_inspect_source_files(void)
{
  return guarded_array<tdm_inspect_source_file>([] {
    std::vector<tdm_inspect_source_file> files;
    for (const tdm::SourceFile &file : tdm::source_files())
      if (file.name != nullptr)
        files.push_back({file.name, file.includer, without_pragmas(file.include)});
    return tdm::array_of(files, [](const tdm_inspect_source_file &file) { return file; });
  });
}

tdm_arr *tdm_inspect_include_chain(const tdm_srcpos *position)
{
  return guarded_array<tdm_srcpos>([&] {
    std::vector<tdm_srcpos> chain;
    for (std::int32_t at = source_of(*position); at >= 0;) {
      const tdm::SourceFile &file = tdm::source_files()[static_cast<size_t>(at)];
      if (file.includer >= 0) chain.push_back(without_pragmas(file.include));
      at = file.includer;
    }
    return tdm::array_of(chain, [](const tdm_srcpos &place) { return place; });
  });
}

int tdm_inspect_reading(tdm_srcpos *out)
{
  // No guard: nothing here takes memory or throws, so that a signal handler may ask.
  if (const char *name = tdm::opening_file()) {
    *out = {name, 0, 0, nullptr};
    return 1;
  }
  const TDMInputRecord *record = tdm::reading_file();
  if (record == nullptr) return 0;
  *out = {record->file_name, static_cast<int>(record->physical_line), 0, nullptr};
  return 1;
}

int tdm_limits_set(int limit, int64_t value)
{
  if (limit != TDM_LIMIT_INCLUDE_DEPTH || value < 0) return 0;
  tdm::source_files_limit_depth(value < INT32_MAX ? static_cast<int32_t>(value) : INT32_MAX);
  return 1;
}

tdm_token_stream *tdm_inspect_tokens_start(const tdm_arr *files, const tdm_arr *include_dirs)
{
  return guarded([&] {
    const std::vector<std::string> names = tdm::begin_input(files, include_dirs);
    open_stream = new TDMTokenStream(names);
    return open_stream;
  });
}

int tdm_inspect_tokens_next(tdm_token_stream *stream, tdm_inspect_token *out)
{
  return guarded([&] {
    if (stream == nullptr || stream != open_stream)
      throw new TDMFileException("the stream of tokens has been ended");
    tdm::PpToken token = stream->input.current_token();
    if (token.number == tEOF) return 0;
    tdm::keep_text(token);
    *out = {token.number, token.text, without_pragmas(token.position)};
    stream->input.skip_token();
    return 1;
  });
}

void tdm_inspect_tokens_end(tdm_token_stream *stream)
{
  if (stream == open_stream) tdm::end_token_stream();
}

const char *tdm_inspect_token_name(int number)
{
  const bool known = number >= 0 && number < token_count;
  return known ? tdm::token_table[number].display : nullptr;
}
