/* Translations over one mapping and from any object, and routes hop by hop. */
#include "c_ask.h"

#include <inttypes.h>

static tdm_addressvalue address_at(int64_t value, int32_t mau, int32_t bank)
{
  tdm_addressvalue address = {0, 0, 0, 0};
  address.value = value;
  address.mau = mau;
  address.bank = bank;
  return address;
}

static tdm_interval interval_at(int64_t low, int64_t high, int32_t mau)
{
  tdm_interval interval;
  memset(&interval, 0, sizeof interval);
  interval.low = address_at(low, mau, -1);
  interval.high = address_at(high, mau, -1);
  interval.width = 1;
  interval.bits = 1;
  return interval;
}

static int same_address(const tdm_addressvalue *a, const tdm_addressvalue *b)
{
  return a->value == b->value && a->bits == b->bits && a->mau == b->mau && a->bank == b->bank;
}

static int same_interval(const tdm_interval *a, const tdm_interval *b)
{
  return same_address(&a->low, &b->low) && same_address(&a->high, &b->high) &&
         a->width == b->width && a->bits == b->bits && a->priority == b->priority &&
         a->exec_priority == b->exec_priority;
}

static const char *source_name(tdm_mapsource *source)
{
  return tdm_mapsource_is_bus(source) ? tdm_bus_get_full_name(tdm_mapsource_get_bus(source))
                                      : tdm_space_get_full_name(tdm_mapsource_get_space(source));
}

static const char *destination_name(tdm_mapdestination *destination)
{
  if (tdm_mapdestination_is_memory(destination))
    return tdm_memory_get_full_name(tdm_mapdestination_get_memory(destination));
  return tdm_mapdestination_is_bus(destination)
             ? tdm_bus_get_full_name(tdm_mapdestination_get_bus(destination))
             : tdm_space_get_full_name(tdm_mapdestination_get_space(destination));
}

static void put_hops(const tdm_arr *hops, int forward)
{
  uint32_t i;
  for (i = 0; i < hops->count; ++i) {
    const tdm_inspect_hop *hop = (const tdm_inspect_hop *)hops->items + i;
    const tdm_interval *at = &hop->interval;
    put("%d %s %d..%d > %s %d..%d %" PRIx64 "..%" PRIx64 "/%d#%d %d:%" PRIx64 " %d,%d%s\n",
        hop->route, forward ? source_name(hop->source) : destination_name(hop->destination),
        hop->near_line_low, hop->near_line_high,
        forward ? destination_name(hop->destination) : source_name(hop->source), hop->far_line_low,
        hop->far_line_high, at->low.value, at->high.value, at->low.mau, at->low.bank, at->width,
        at->bits, at->priority / 0x10000, at->exec_priority / 0x10000,
        hop->reserved ? " reserved" : "");
  }
}

/* Every hop is the step over its mapping, and the last ones are what the translation gives. */
static void check_hops(const tdm_arr *hops, const tdm_arr *results, const tdm_interval *given,
                       int forward)
{
  const tdm_inspect_hop *items = (const tdm_inspect_hop *)hops->items;
  uint32_t i, ends = 0;
  tdm_interval at = *given;
  for (i = 0; i < hops->count; ++i) {
    const int last = i + 1 == hops->count || items[i + 1].route != items[i].route;
    if (i > 0 && items[i - 1].route != items[i].route) at = *given;
    if (forward)
      CHECK(tdm_inspect_mapping_map_interval_forward(items[i].mapping, &at, &at) == 1);
    else
      CHECK(tdm_inspect_mapping_map_interval_backward(items[i].mapping, &at, &at) == 1);
    CHECK(same_interval(&at, &items[i].interval));
    if (!last) continue;
    CHECK(ends < results->count);
    if (ends < results->count) {
      const tdm_map_interval_result *result =
          (const tdm_map_interval_result *)results->items + ends;
      CHECK(same_interval(&result->interval, &at) && result->reserved == items[i].reserved);
      CHECK(result->object == (forward ? (void *)items[i].destination : (void *)items[i].source));
    }
    ++ends;
  }
  CHECK(ends == results->count && ends > 0);
}

static void ask_intervals(tdm_space *space, tdm_memory *memory, tdm_bus *bus)
{
  tdm_arr *hops, *results, *others;
  tdm_interval given = interval_at(0x7f00, 0x8200, 8);
  tdm_mapsource *source = tdm_inspect_space_as_source(space);
  tdm_mapdestination *destination = tdm_inspect_memory_as_destination(memory);

  hops = tdm_inspect_interval_routes_to_memory(source, &given);
  CHECK(tdm_inspect_mapsource_map_interval_forward_to_memory(source, &given, &results) == 1);
  check_hops(hops, results, &given, 1);
  put_hops(hops, 1);
  CHECK_PUT("0 cpu1:cor1:lin 0..7 > cpu1:cor1:bus1 0..7 7f00..8200/8#-1 16:ff 2,3\n"
            "0 cpu1:cor1:bus1 0..15 > cpu1:dbus 0..7 0..200/8#-1 32:ff0000ff 2,3\n"
            "0 cpu1:dbus 0..7 > gbus 0..7 0..200/8#-1 32:ff0000ff 2,3\n"
            "0 gbus 0..7 > rom1 0..15 0..100/16#-1 32:ff0000ff 2,3\n");
  tdm_arr_del(hops);
  tdm_arr_del(results);

  given = interval_at(0x10, 0x20, 16);
  hops = tdm_inspect_interval_routes_back(destination, TDM_ROUTE_TO_SPACE, &given);
  CHECK(tdm_inspect_mapdestination_map_interval_backward_to_space(destination, &given, &results));
  check_hops(hops, results, &given, 0);
  put_hops(hops, 0);
  CHECK_PUT("0 rom1 0..15 > gbus 0..7 20..40/8#-1 8:ff 0,0\n"
            "0 gbus 0..7 > cpu1:dbus 0..7 20..40/8#-1 8:ff 0,0\n"
            "0 cpu1:dbus 0..7 > cpu1:cor1:bus1 0..15 8020..8040/8#-1 8:ff 0,0\n"
            "0 cpu1:cor1:bus1 0..7 > cpu1:cor1:lin 0..7 8020..8040/8#-1 8:ff -2,-3\n");
  tdm_arr_del(hops);
  tdm_arr_del(results);
  hops = tdm_inspect_interval_routes_back(destination, TDM_ROUTE_TO_BUS, &given);
  CHECK(tdm_inspect_mapdestination_map_interval_backward_to_bus(destination, &given, &results));
  check_hops(hops, results, &given, 0);
  tdm_arr_del(hops);
  tdm_arr_del(results);
  hops = tdm_inspect_interval_routes_back(destination, 0, &given);
  CHECK(hops->count == 0);
  tdm_arr_del(hops);

  CHECK(tdm_inspect_mapdestination_map_interval_backward(destination, &given, &results) == 1);
  CHECK(tdm_memory_map_interval_backward(memory, &given, &others) == 1);
  CHECK(results->count == 1 && others->count == 1);
  CHECK(same_interval(&((tdm_map_interval_result *)results->items)->interval,
                      &((tdm_map_interval_result *)others->items)->interval));
  tdm_arr_del(results);
  tdm_arr_del(others);

  /* From a bus, both ways. */
  given = interval_at(0x4000, 0x4010, 8);
  CHECK(tdm_inspect_mapsource_map_interval_forward(tdm_inspect_bus_as_source(bus), &given,
                                                   &results) == 1);
  tdm_arr_del(results);
  CHECK(tdm_inspect_mapdestination_map_interval_backward(tdm_inspect_bus_as_destination(bus),
                                                         &given, &results) == 1);
  tdm_arr_del(results);
}

static void ask_addresses(tdm_space *space, tdm_space *reached, tdm_memory *memory)
{
  tdm_arr *hops, *results;
  tdm_mapsource *source = tdm_inspect_space_as_source(space);
  tdm_mapdestination *destination = tdm_inspect_memory_as_destination(memory);
  tdm_addressvalue given = address_at(0x4004, 8, -1);

  hops = tdm_inspect_addressvalue_routes_to_memory(source, &given);
  CHECK(tdm_inspect_mapsource_map_addressvalue_forward_to_memory(source, &given, &results) == 1);
  put("%d: ", (int)results->count);
  tdm_arr_del(results);
  put_hops(hops, 1);
  CHECK_PUT("1: 0 cpu1:cor1:lin 0..7 > cpu1:cor1:bus1 0..7 4004..4004/8#-1 1:1 2,3\n"
            "0 cpu1:cor1:bus1 0..15 > cpu1:ram1 0..7 4..4/8#-1 1:1 2,3 reserved\n");
  CHECK(hops->count >= 2);
  if (hops->count >= 2) { /* the first hop there and back */
    const tdm_inspect_hop *hop = (const tdm_inspect_hop *)hops->items;
    tdm_addressvalue at = given;
    CHECK(tdm_inspect_mapping_map_addressvalue_forward(hop->mapping, &at, &at) == 1);
    CHECK(same_address(&at, &hop->interval.low) && same_address(&at, &hop->interval.high));
    CHECK(tdm_inspect_mapping_map_addressvalue_backward(hop->mapping, &at, &at) == 1);
    CHECK(same_address(&at, &given));
    at = address_at(INT64_MAX, 8, -1);
    CHECK(tdm_inspect_mapping_map_addressvalue_forward(hop->mapping, &at, &at) == 0);
    CHECK(at.value == INT64_MAX);
  }
  tdm_arr_del(hops);
  CHECK(tdm_inspect_mapsource_map_addressvalue_forward(source, &given, &results) == 1);
  tdm_arr_del(results);

  given = address_at(4, 16, -1);
  hops = tdm_inspect_addressvalue_routes_back(destination, TDM_ROUTE_TO_BUS, &given);
  put_hops(hops, 0);
  CHECK_PUT("0 rom1 0..15 > gbus 0..7 8..8/8#-1 1:1 0,0\n"
            "1 rom1 0..15 > gbus 0..7 8..8/8#-1 1:1 0,0\n"
            "1 gbus 0..7 > cpu1:dbus 0..7 8..8/8#-1 1:1 0,0\n"
            "2 rom1 0..15 > gbus 0..7 8..8/8#-1 1:1 0,0\n"
            "2 gbus 0..7 > cpu1:dbus 0..7 8..8/8#-1 1:1 0,0\n"
            "2 cpu1:dbus 0..7 > cpu1:cor1:bus1 0..15 8008..8008/8#-1 1:1 0,0\n");
  tdm_arr_del(hops);
  CHECK(tdm_inspect_mapdestination_map_addressvalue_backward(destination, &given, &results) == 1);
  tdm_arr_del(results);
  CHECK(tdm_inspect_mapdestination_map_addressvalue_backward_to_bus(destination, &given,
                                                                    &results) == 1);
  tdm_arr_del(results);
  CHECK(tdm_inspect_mapdestination_map_addressvalue_backward_to_space(destination, &given,
                                                                      &results) == 1);
  tdm_arr_del(results);

  /* A space that another one is mapped to. */
  given = address_at(0x310, 8, -1);
  CHECK(tdm_inspect_mapdestination_map_addressvalue_backward(
            tdm_inspect_space_as_destination(reached), &given, &results) == 1);
  tdm_arr_del(results);
}

/* Other units than those of the object are a failure. */
static void ask_in_wrong_units(tdm_space *space, tdm_memory *memory)
{
  tdm_addressvalue given = address_at(0, 32, -1);
  const int64_t failed = tdm_inspect_failure_count();
  tdm_arr *results;
  results = tdm_inspect_addressvalue_routes_to_memory(tdm_inspect_space_as_source(space), &given);
  CHECK(results->count == 0 && results->element_size == sizeof(tdm_inspect_hop));
  CHECK_TEXT(tdm_get_last_error(), "address given in MAUs of 32 bits, expected 8");
  tdm_arr_del(results);
  CHECK(tdm_inspect_mapdestination_map_addressvalue_backward(
            tdm_inspect_memory_as_destination(memory), &given, &results) == 0);
  CHECK(results->count == 0);
  tdm_arr_del(results);
  results = tdm_inspect_memory_incoming_mappings(memory);
  CHECK(tdm_inspect_mapping_map_addressvalue_backward(((tdm_mapping **)results->items)[0], &given,
                                                      &given) == 0);
  tdm_arr_del(results);
  CHECK(tdm_inspect_failure_count() == failed + 3);
}

void ask_routes(void)
{
  tdm_spec *spec;
  tdm_core *core;
  tdm_memory *rom;
  tdm_arr *buses;
  tdm_init(NULL);
  spec = tdm_parse_file(one_file("inspect.tdm"), &no_texts);
  CHECK(spec != NULL);
  core = tdm_processor_get_core(tdm_spec_get_processor(spec, "cpu1"), "cor1");
  rom = tdm_spec_get_memory(spec, "rom1");
  buses = tdm_inspect_core_buses(core);
  ask_intervals(tdm_core_get_space_by_name(core, "lin"), rom, ((tdm_bus **)buses->items)[0]);
  ask_addresses(tdm_core_get_space_by_name(core, "lin"), tdm_core_get_space_by_name(core, "lin"),
                rom);
  ask_in_wrong_units(tdm_core_get_space_by_name(core, "lin"), rom);
  tdm_arr_del(buses);
  tdm_spec_free(spec);
  tdm_cleanup();
}
