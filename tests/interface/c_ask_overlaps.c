/* Descriptions that fail their last checks, and how. */
#include "c_ask.h"

#include <inttypes.h>

static const char *mapping_name(const tdm_mapping *mapping)
{
  tdm_inspect_mapping fields;
  CHECK(tdm_inspect_get_mapping(mapping, &fields) == 1);
  return fields.name;
}

static void put_overlaps(const tdm_spec *spec)
{
  tdm_arr *overlaps = tdm_inspect_spec_overlaps(spec);
  uint32_t i;
  for (i = 0; i < overlaps->count; ++i) {
    const tdm_inspect_overlap *one = (const tdm_inspect_overlap *)overlaps->items + i;
    put("%s: %s/%s %s/%s %#" PRIx64 "..%#" PRIx64 "/%d %d:%" PRIx64 " %" PRId64 " bits\n",
        tdm_bus_get_full_name(tdm_mapsource_get_bus(one->source)), tdm_memory_get_name(one->first),
        mapping_name(one->first_mapping), tdm_memory_get_name(one->second),
        mapping_name(one->second_mapping), one->range.low.value, one->range.high.value,
        one->range.low.mau, one->range.width, one->range.bits, one->bits);
  }
  tdm_arr_del(overlaps);
}

void ask_overlaps(void)
{
  const tdm_arr *files;
  int64_t failed;
  tdm_spec *spec;
  tdm_init(NULL);
  files = one_file("overlap.tdm");
  CHECK(tdm_parse_file(files, &no_texts) == NULL);
  failed = tdm_inspect_failure_count();

  spec = tdm_inspect_parse_file(files, &no_texts);
  CHECK(spec != NULL && tdm_inspect_failure_count() == failed);
  CHECK_TEXT(tdm_inspect_spec_check_failure(spec), tdm_get_last_error());
  put_overlaps(spec);
  CHECK_PUT("cpu:cor:wide: even/e over/v 0x60..0x80/8 16:ff 128 bits\n"
            "cpu:cor:wide: odd/o over/v 0x60..0x80/8 16:ff00 128 bits\n"
            "cpu:cor:wide: twice/one twice/two 0x10f0..0x1100/8 8:ff 128 bits\n");
  tdm_spec_free(spec);

  /* What passes is as from tdm_parse_file(), and what fails before the last checks fails. */
  spec = tdm_inspect_parse_file(one_file("chip.tdm"), &no_texts);
  CHECK(spec != NULL && tdm_inspect_spec_check_failure(spec) == NULL);
  put_overlaps(spec);
  CHECK_PUT("");
  tdm_spec_free(spec);
  CHECK(tdm_inspect_failure_count() == failed);
  CHECK(tdm_inspect_parse_file(one_file("sources/main.tdm"), &no_texts) == NULL);
  CHECK(tdm_inspect_failure_count() == failed + 1);
  tdm_cleanup();
}
