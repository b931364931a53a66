// A whole parse, of one file or, where the input is cut, of several that include each other.
#include "description.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
  tdm_spec *spec = fuzz::parse(fuzz::text_of(data, size));
  if (spec == nullptr) fuzz::require(*tdm_get_last_error() != '\0', "a failure has words");
  tdm_arr *errors = tdm_get_errors();
  tdm_arr *warnings = tdm_get_warnings();
  fuzz::require(errors->count == static_cast<std::uint32_t>(tdm_get_error_count()), "errors count");
  fuzz::require(warnings->count == static_cast<std::uint32_t>(tdm_get_warning_count()),
                "warnings count");
  tdm_arr_del(errors);
  tdm_arr_del(warnings);
  fuzz::finish(spec);
  return 0;
}
