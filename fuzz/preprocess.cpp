// The preprocessor alone: all tokens of one file, without what would refuse most of them.
#include "common/failures.h"
#include "preprocessor/c_diag.h"
#include "preprocessor/c_opt.h"
#include "preprocessor/macro_expand.h"
#include "preprocessor/preprocessed_file_input_stream.h"
#include "preprocessor/preprocessor.h"
#include "preprocessor/source_files.h"
#include "target.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
  static fuzz::Directory directory;
  directory.write("main", fuzz::text_of(data, size));
  tdm::preprocessor_start();
  // Files that include themselves, and macros that multiply, are slow up to their limits.
  tdm::source_files_limit_depth(30);
  tdm::source_files_limit = 100;
  tdm::expansion_work.limit = 1 << 12;
  option_set_string(tdm::optINCDIR, directory.path());
  option_set_string(tdm::optDEFINE, "D(x,...)=#x x ## __VA_ARGS__");
  std::set<std::string> dependencies;
  try {
    TDMPreprocessedFileInputStream stream({"main"}, &dependencies);
    // Whole tokens and characters by turns, as both ways of reading can be mixed.
    for (int number = 0; stream.current_token().length != 0; ++number)
      if (number % 3 != 0)
        stream.skip_token();
      else
        for (std::size_t i = stream.current_token().length; i > 0; --i)
          fuzz::require(stream.getColumn() >= 0 && stream.getChar() != -1,
                        "a token has characters");
    fuzz::require(stream.getChar() == -1, "the end is the end");
  } catch (TDMFileException *failure) {
    delete failure;
  }
  tdm::preprocessor_end();
  return 0;
}
