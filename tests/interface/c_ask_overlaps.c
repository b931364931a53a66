/* Descriptions that fail the checks of what overlaps, and how. */
#include "c_ask.h"

#include <inttypes.h>

static const char *mapping_name(const tdm_mapping *mapping)
{
  tdm_inspect_mapping fields;
  CHECK(tdm_inspect_get_mapping(mapping, &fields) == 1);
  return fields.name;
}

static void put_range(const char *source, const tdm_interval *range, int64_t bits)
{
  put("%s: ", source);
  if (range->low.bank >= 0) put("bank %d ", range->low.bank);
  put("%#" PRIx64 "..%#" PRIx64 "/%d %d:%" PRIx64 " %" PRId64 " bits, ", range->low.value,
      range->high.value, range->low.mau, range->width, range->bits, bits);
}

static void put_overlaps(const tdm_spec *spec)
{
  tdm_arr *overlaps = tdm_inspect_spec_overlaps(spec);
  uint32_t i;
  for (i = 0; i < overlaps->count; ++i) {
    const tdm_inspect_overlap *one = (const tdm_inspect_overlap *)overlaps->items + i;
    put_range(tdm_bus_get_full_name(tdm_mapsource_get_bus(one->source)), &one->range, one->bits);
    put("%s/%s %s/%s\n", tdm_memory_get_name(one->first), mapping_name(one->first_mapping),
        tdm_memory_get_name(one->second), mapping_name(one->second_mapping));
  }
  tdm_arr_del(overlaps);
}

static void put_mapping_overlaps(const tdm_spec *spec)
{
  tdm_arr *overlaps = tdm_inspect_spec_mapping_overlaps(spec);
  uint32_t i;
  CHECK(overlaps->element_size == sizeof(tdm_inspect_mapping_overlap));
  for (i = 0; i < overlaps->count; ++i) {
    const tdm_inspect_mapping_overlap *one =
        (const tdm_inspect_mapping_overlap *)overlaps->items + i;
    put_range(tdm_space_get_full_name(one->space), &one->range, one->bits);
    put("%s %s\n", mapping_name(one->first), mapping_name(one->second));
  }
  tdm_arr_del(overlaps);
}

/* The same failure, and the spec all the same. */
static tdm_spec *refused(const char *name)
{
  const tdm_arr *files = one_file(name);
  int64_t failed;
  tdm_spec *spec;
  CHECK(tdm_parse_file(files, &no_texts) == NULL);
  failed = tdm_inspect_failure_count();
  spec = tdm_inspect_parse_file(files, &no_texts);
  CHECK(spec != NULL && tdm_inspect_failure_count() == failed);
  CHECK_TEXT(tdm_inspect_spec_check_failure(spec), tdm_get_last_error());
  return spec;
}

void ask_overlaps(void)
{
  int64_t failed;
  tdm_spec *spec;
  tdm_init(NULL);
  spec = refused("overlap.tdm");
  put_overlaps(spec);
  CHECK_PUT("cpu:cor:wide: 0x60..0x80/8 16:ff 128 bits, even/e over/v\n"
            "cpu:cor:wide: 0x60..0x80/8 16:ff00 128 bits, odd/o over/v\n"
            "cpu:cor:wide: 0x10f0..0x1100/8 8:ff 128 bits, twice/one twice/two\n");
  put_mapping_overlaps(spec);
  CHECK_PUT("");
  tdm_spec_free(spec);

  spec = refused("overlap_mappings.tdm");
  put_mapping_overlaps(spec);
  CHECK_PUT("cpu:one:lin: 0x7000..0x8000/8 8:ff 32768 bits, data boot\n"
            "cpu:one:words: 0x40..0x50/16 16:f0 64 bits, even mid\n"
            "cpu:one:words: 0x40..0x50/16 16:300 32 bits, odd mid\n"
            "cpu:one:words: bank 1 0x4f..0x50/16 16:ffff 16 bits, b1 again\n");
  put_overlaps(spec);
  CHECK_PUT("cpu:one:data: 0x7f..0x80/8 8:ff 8 bits, low/l high/h\n");
  tdm_spec_free(spec);
  failed = tdm_inspect_failure_count();

  /* What passes is as from tdm_parse_file(), and what fails before the last checks fails. */
  spec = tdm_inspect_parse_file(one_file("chip.tdm"), &no_texts);
  CHECK(spec != NULL && tdm_inspect_spec_check_failure(spec) == NULL);
  put_overlaps(spec);
  put_mapping_overlaps(spec);
  CHECK_PUT("");
  tdm_spec_free(spec);
  CHECK(tdm_inspect_failure_count() == failed);
  CHECK(tdm_inspect_parse_file(one_file("sources/main.tdm"), &no_texts) == NULL);
  CHECK(tdm_inspect_failure_count() == failed + 1);
  tdm_cleanup();
}
