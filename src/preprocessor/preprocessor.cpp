// Start and end of the modules that outlive an input.
#include "preprocessor/preprocessor.h"

#include "common/block_pool.h"
#include "preprocessor/c_diag.h"
#include "preprocessor/c_opt.h"
#include "preprocessor/macros.h"
#include "preprocessor/source_files.h"
#include "preprocessor/string_pool.h"

namespace tdm {

void preprocessor_start()
{
  try {
    pool_start();
    string_pool_start();
    source_files_end();
    option_start();
    diag_start();
  } catch (...) {
    // Not started at all is what the calls behind this one can tell.
    preprocessor_end();
    throw;
  }
}

void preprocessor_end()
{
  diag_end();
  option_end();
  source_files_end();
  macro_forget_names();
  string_pool_end();
  pool_trim(); // but for what a spec still holds
}

bool preprocessor_started()
{
  return string_pool_started();
}

} // namespace tdm
