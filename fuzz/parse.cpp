// A whole parse, of one file or, where the input is cut, of several that include each other.
#include <tdm_c/tdm_inspect_source.h>

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
  for (tdm_arr *list : {errors, warnings}) {
    const auto *messages = static_cast<const tdm_message *>(list->items);
    // All of them would cost the square of their number.
    for (std::uint32_t i = 0; i < list->count && i < 5; ++i)
      tdm_arr_del(tdm_inspect_include_chain(&messages[i].position));
    tdm_arr_del(list);
  }
  fuzz::finish(spec);
  return 0;
}
