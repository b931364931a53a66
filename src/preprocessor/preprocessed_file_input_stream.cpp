// Starts and stops the modules around one input, and takes its tokens one by one.
#include "preprocessor/preprocessed_file_input_stream.h"

#include <vector>

#include "common/failures.h"
#include "preprocessor/c_input.h"
#include "preprocessor/c_pragma.h"
#include "preprocessor/c_scanner.h"
#include "preprocessor/c_srcpos.h"
#include "preprocessor/macro_expand.h"
#include "preprocessor/macros.h"
#include "preprocessor/predefinition.h"
#include "preprocessor/source_files.h"
#include "preprocessor/string_pool.h"

namespace {

constexpr const char *tool_name = "TDM parser";

/// Where the paths of opened files go, null for nowhere.
std::set<std::string> *dependency_target = nullptr;
/// The texts of the pool that are marked as being in it: most files are included several times.
std::vector<const char *> marked_dependencies;

void record_dependency(const char *name)
{
  if (dependency_target == nullptr || (tdm::pooled(name).marks & tdm::mark_dependency) != 0) return;
  dependency_target->emplace_hint(dependency_target->end(), name); // files are often read in order
  marked_dependencies.push_back(name);
  tdm::pooled(name).marks |= tdm::mark_dependency;
}

void unmark_dependencies()
{
  for (const char *name : marked_dependencies) tdm::pooled(name).marks &= ~tdm::mark_dependency;
  marked_dependencies = std::vector<const char *>();
}

void start_modules()
{
  tdm::input_start(tool_name);
  input_add_listener(record_dependency);
  tdm::pragma_start();
  tdm::srcpos_start();
  tdm::scanner_start();
  tdm::expansion_start();
  tdm::macro_start();
  tdm::directives_start();
}

/// Of whatever has been started.
void stop_modules()
{
  tdm::expansion_stop();
  tdm::macro_stop();
  tdm::directives_stop();
  tdm::scanner_stop();
  input_add_listener(nullptr);
  unmark_dependencies();
  tdm::srcpos_stop();
  tdm::input_stop();
  tdm::pragma_end();
}

} // namespace

TDMPreprocessedFileInputStream::TDMPreprocessedFileInputStream(
    const std::vector<std::string> &files, std::set<std::string> *dependencies)
{
  dependency_target = dependencies;
  tdm::source_files_start(files.size());
  try {
    start_modules();
    start(files);
  } catch (...) {
    stop_modules();
    throw;
  }
}

TDMPreprocessedFileInputStream::~TDMPreprocessedFileInputStream()
{
  stop_modules();
}

void TDMPreprocessedFileInputStream::start(const std::vector<std::string> &files)
{
  tdm::push_predefinitions();
  while (pp_next_token(true).number != tEOF) {
  }
  // The last one that is pushed is the first one that is read.
  for (auto name = files.rbegin(); name != files.rend(); ++name)
    if (!input_search_file(*name, false, true, true)) throw new TDMCannotOpenFileException(*name);
  fetch_token();
}

const tdm::PpToken &TDMPreprocessedFileInputStream::skip_blanks()
{
  take(pp_next_behind_blanks(true));
  return *token_;
}

void TDMPreprocessedFileInputStream::pass_empty_tokens()
{
  while (token_->length == 0 && token_->number != tEOF) token_ = &pp_next_token(true);
}
