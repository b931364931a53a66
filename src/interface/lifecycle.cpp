// From load to unload: what the component is, its start and end, the one call that turns files into
// a model, and the messages and texts by which failures come out.
#include <memory>

#include "common/failures.h"
#include "interface/guard.h"
#include "interface/input.h"
#include "interface/tdm.h"
#include "interface/values.h"
#include "layout/kept_sections.h"
#include "model/spec.h"
#include "preprocessor/c_diag.h"
#include "preprocessor/c_opt.h"
#include "preprocessor/preprocessor.h"

using tdm::guarded;
using tdm::guarded_array;

namespace {

template <class Value> void give(Value *receiver, Value value)
{
  if (receiver != nullptr) *receiver = value;
}

void add_options(tdm::Option option, const tdm_arr *values)
{
  for (const std::string &value : tdm::texts_of(values)) option_set_string(option, value);
}

tdm_spec *parse(const tdm_arr *files, const tdm_arr *include_dirs)
{
  return std::make_unique<TDMSpec>(tdm::begin_input(files, include_dirs)).release();
}

tdm_arr *messages(char letter)
{
  return guarded_array<tdm_message>([&] {
    return tdm::array_of(tdm::diag_list(letter),
                         [](const tdm_message &message) { return message; });
  });
}

} // namespace

std::vector<std::string> tdm::begin_input(const tdm_arr *files, const tdm_arr *include_dirs)
{
  if (!tdm::preprocessor_started()) throw new TDMFileException("tdm_init has not been called");
  end_token_stream();
  add_options(tdm::optINCDIR, include_dirs);
  std::vector<std::string> names = tdm::texts_of(files);
  if (names.empty()) throw new TDMFileException("no target-description file given");
  return names;
}

void tdm_provides(const char **name, int *major, int *minor, const char **revision)
{
  give(name, "tdm_c");
  give(major, TDM_C_VERSION_MAJOR);
  give(minor, TDM_C_VERSION_MINOR);
  give(revision, "052");
}

const char *tdm_requires(void)
{
  return nullptr;
}

void tdm_init(const tdm_arr *defines)
{
  guarded([&] {
    tdm::end_token_stream();
    tdm::preprocessor_start();
    add_options(tdm::optDEFINE, defines);
  });
}

void tdm_cleanup(void)
{
  tdm::end_token_stream();
  tdm::forget_sections();
  tdm::end_kept_array();
  if (tdm::preprocessor_started()) tdm::preprocessor_end();
}

tdm_spec *tdm_parse_file(const tdm_arr *files, const tdm_arr *include_dirs)
{
  return guarded([&] { return parse(files, include_dirs); },
                 [] { return static_cast<tdm_spec *>(nullptr); }, tdm::Tell::inspection_only);
}

int tdm_get_error_count(void)
{
  return tdm::diag_error_count();
}

int tdm_get_warning_count(void)
{
  return tdm::diag_warning_count();
}

tdm_arr *tdm_get_errors(void)
{
  return messages('E');
}

tdm_arr *tdm_get_warnings(void)
{
  return messages('W');
}

const char *tdm_get_last_error(void)
{
  return tdm::last_error_text();
}

void tdm_arr_del(tdm_arr *arr)
{
  tdm::ArrayDelete()(arr);
}
