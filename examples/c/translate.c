/* Reads a description and asks which memories an address of core 0 reaches. Run it from the root
 * of the project; relative names are found through the directories of the second array. */
#include <stdio.h>
#include <tdm_c/tdm.h>

int main(void)
{
  const char *file = "examples/rp2040/rp2040.tdm", *dir = ".";
  tdm_arr files = {sizeof file, 1, 1, &file}, dirs = {sizeof dir, 1, 1, &dir}, *found;
  tdm_init(NULL);
  tdm_spec *spec = tdm_parse_file(&files, &dirs);
  if (spec == NULL || tdm_get_error_count() > 0) return puts(tdm_get_last_error()), 1;
  tdm_core *core = tdm_processor_get_core(tdm_spec_get_processor(spec, "rp2040"), "core0");
  tdm_space *space = tdm_core_get_space_by_name(core, "linear");
  tdm_addressvalue address = {0x13000100, 0, tdm_space_get_mausize(space), -1};
  tdm_space_map_addressvalue_forward_to_memory(space, &address, &found);
  const tdm_map_address_result *hit = found->items;
  for (; hit < (tdm_map_address_result *)found->items + found->count; hit++)
    printf("%s 0x%llx\n", tdm_memory_get_full_name(hit->object), (long long)hit->address.value);
  tdm_arr_del(found);
  tdm_spec_free(spec);
  tdm_cleanup();
}
