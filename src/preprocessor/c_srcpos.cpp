// One kept position; everything else is read off the input stack.
#include "preprocessor/c_srcpos.h"

#include "preprocessor/c_input.h"
#include "preprocessor/c_pragma.h"

namespace tdm {

namespace {
struct {
  tdm_srcpos end;
} state;
} // namespace

void srcpos_start()
{
  state = {};
}

void srcpos_stop()
{
  state = {};
}

tdm_srcpos srcpos_current()
{
  const void *pragmas = pragma_vector_current();
  const TDMInputRecord *file = input_stack.innermost_file;
  if (file == nullptr) return {state.end.file, state.end.line, state.end.column, pragmas};
  return {file->presumed_name, static_cast<int>(file->presumed_line),
          static_cast<int>(file->column), pragmas};
}

void srcpos_set_end(const char *file, int line, int column)
{
  state.end = {file, line, column, nullptr};
}

} // namespace tdm
