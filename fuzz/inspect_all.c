/* The reading client of the suite, which asks everything of the additive headers, for any spec, and
 * what it leaves out. */
#define main inspect_main
#include "../tests/interface/c_inspect.c"
#undef main

void ask_routes(const tdm_spec *spec);
void inspect_all(tdm_spec *spec);

void inspect_all(tdm_spec *spec)
{
  updating = 1;
  if (expected == NULL) expected = fopen("/dev/null", "w");
  inspect_spec(spec);
  ask_routes(spec);
}
