/*
 * Room. A location is a list of windows in the space, each cut to what a memory stands behind; a
 * piece goes to the lowest free address of a window. What is free is asked in the memory, through
 * the mappings, for a memory can be seen at several addresses and from several spaces.
 *
 * A piece takes up whole multiples of its alignment. Pieces are placed upwards, whatever direction
 * a layout has, and pages are not heeded.
 */
#include "place.h"

#include <stdlib.h>

/* Where a span of the space lies. */
typedef struct route {
  tdm_memory *memory;
  tdm_addressvalue offset;
  int64_t low, high; /* in bits of the memory */
} route;

static int64_t in_bits(const tdm_addressvalue *address)
{
  return (int64_t)((uint64_t)address->value * (uint64_t)address->mau + (uint64_t)address->bits);
}

static int64_t units_of(int64_t bits, int mau)
{
  return bits / mau + (bits % mau != 0);
}

static int is_reserved(const tdm_map_interval_result *result)
{
  return result->reserved || tdm_memory_is_reserved(result->object);
}

static tdm_interval span(const linker *l, int64_t low, int64_t high)
{
  tdm_interval interval = {{low, 0, 0, -1}, {high, 0, 0, -1}, 1, 1, 0, 0};
  interval.low.mau = interval.high.mau = l->mau;
  return interval;
}

/* Where all of the span lies in one memory, one bit behind the other; 0 if nowhere. */
static int follow(const linker *l, int64_t low, int64_t units, int reserved, route *found)
{
  const tdm_interval interval = span(l, low, low + units);
  tdm_arr *results;
  const tdm_map_interval_result *result;
  int is_found = 0;
  tdm_space_map_interval_forward_to_memory(l->space, &interval, &results);
  result = results->items;
  for (uint32_t i = 0; i < results->count && !is_found; ++i, ++result) {
    const uint64_t every_bit = ~UINT64_C(0) >> (64 - result->interval.width);
    found->memory = result->object;
    found->offset = result->interval.low;
    found->low = in_bits(&result->interval.low);
    found->high = in_bits(&result->interval.high);
    is_found = (reserved || !is_reserved(result)) && result->interval.bits == every_bit &&
               found->high - found->low == units * l->mau;
  }
  tdm_arr_del(results);
  return is_found;
}

/* What is in use first, of all that the route meets; null if it is free. */
static const taken *obstacle(const linker *l, const route *way)
{
  for (size_t i = 0; i < l->taken_count; ++i) {
    const taken *used = &l->taken[i];
    if (used->memory == way->memory && used->low < way->high && way->low < used->high) return used;
  }
  return NULL;
}

static void take(linker *l, const tdm_memory *memory, int64_t low, int64_t high)
{
  const taken used = {memory, low, high};
  l->taken = grow(l->taken, l->taken_count, sizeof used);
  l->taken[l->taken_count++] = used;
}

/* The lowest address of the window where so many units are free. */
static int find(const linker *l, const location *where, const window *in, int64_t units,
                int64_t alignment, int64_t *address, route *way)
{
  int64_t at = in->low;
  for (;;) {
    const taken *used;
    const int64_t past = at % alignment;
    if (past != 0) {
      if (alignment - past > in->high - at) return 0;
      at += alignment - past;
    }
    if (in->high - at < units || !follow(l, at, units, in->reserved, way)) return 0;
    used = where->inside ? NULL : obstacle(l, way);
    if (used == NULL) break;
    at += units_of(used->high - way->low, l->mau);
  }
  *address = at;
  return !where->is_address || in->low != where->start || at == in->low;
}

static location *default_location(linker *l, const piece *what)
{
  const int to_ram = (what->attributes & writable) || !(what->attributes & initialised);
  return to_ram ? l->ram : l->rom;
}

/* The pieces of a group never go back to a window that was left, so that they keep their order. */
void place(linker *l, location *where, piece *what, int64_t alignment)
{
  const int64_t own = units_of(what->alignment, l->mau);
  const int64_t units = units_of(what->size, l->mau);
  const int64_t room = units + (own - units % own) % own;
  route way;
  if (l->failed) return;
  if (where == NULL) where = default_location(l, what);
  if (alignment < own) alignment = own;
  for (size_t i = where->current; i < where->count; ++i) {
    window *in = &where->windows[i];
    if (!find(l, where, in, room, alignment, &what->address, &way)) continue;
    in->low = what->address + room;
    if (!where->is_default) where->current = i;
    if (!where->inside) take(l, way.memory, way.low, way.high);
    what->space = l->space;
    what->load_space = l->copytable_space != NULL ? l->copytable_space : l->space;
    what->placed = 1;
    what->inside = where->inside;
    what->units = room;
    what->memory = way.memory;
    what->offset = way.offset;
    l->placed.items = grow(l->placed.items, l->placed.count, sizeof what);
    l->placed.items[l->placed.count++] = what;
    return;
  }
  fail(l, "no room in %s for %s %s", tdm_space_get_full_name(l->space), what->from, what->name);
}

void take_range(linker *l, int64_t low, int64_t high)
{
  const tdm_interval interval = span(l, low, high);
  tdm_arr *results;
  tdm_space_map_interval_forward_to_memory(l->space, &interval, &results);
  for (uint32_t i = 0; i < results->count; ++i) {
    const tdm_map_interval_result *result = (tdm_map_interval_result *)results->items + i;
    take(l, result->object, in_bits(&result->interval.low), in_bits(&result->interval.high));
  }
  tdm_arr_del(results);
}

static location *new_location(void)
{
  location *made = grow(NULL, 0, sizeof *made);
  const location none = {NULL, 0, 0, 0, 0, 0, 0};
  *made = none;
  return made;
}

void free_location(location *where)
{
  if (where != NULL) free(where->windows);
  free(where);
}

static void add_window(location *where, int64_t low, int64_t high, int reserved)
{
  const window added = {low, high, reserved};
  where->windows = grow(where->windows, where->count, sizeof added);
  where->windows[where->count++] = added;
}

/* A range that is written may lie in several memories; reserved ones come last. */
static void add_range(const linker *l, location *where, int64_t low, int64_t high)
{
  for (size_t i = 0; i < l->stretch_count; ++i) {
    const stretch *behind = &l->stretches[i];
    const int64_t from = low > behind->low ? low : behind->low;
    const int64_t to = high < behind->high ? high : behind->high;
    if (from < to && (!where->is_address || from == low))
      add_window(where, from, to, behind->reserved);
  }
}

location *location_of_address(linker *l, int64_t address)
{
  location *made = new_location();
  made->is_address = 1;
  made->start = address;
  add_range(l, made, address, INT64_MAX);
  return made;
}

location *location_of_group(linker *l, tdm_group_location *given)
{
  location *made;
  int count;
  if (tdm_group_location_is_address(given))
    return location_of_address(l, tdm_group_location_get_address(given));
  made = new_location();
  count = tdm_group_location_count_ranges(given);
  for (int i = 0; i < count; ++i)
    add_range(l, made, tdm_group_location_get_range_start(given, i),
              tdm_group_location_get_range_end(given, i));
  return made;
}

location *location_inside(const piece *area)
{
  location *made = new_location();
  made->inside = 1;
  if (area->placed) add_window(made, area->address, area->address + area->units, 1);
  return made;
}

/* Sorted: what isn't reserved first, and of that the highest priority. */
static void add_stretch(linker *l, const stretch *added)
{
  size_t at;
  l->stretches = grow(l->stretches, l->stretch_count, sizeof *added);
  for (at = l->stretch_count++; at > 0; --at) {
    const stretch *before = &l->stretches[at - 1];
    if (before->reserved < added->reserved ||
        (before->reserved == added->reserved && before->priority >= added->priority))
      break;
    l->stretches[at] = *before;
  }
  l->stretches[at] = *added;
}

/* Forward to each memory, and from there back to where the space shows it. */
static void find_stretches(linker *l)
{
  tdm_interval whole;
  tdm_arr *memories, *spaces;
  tdm_space_get_valid_interval(l->space, &whole);
  if (whole.low.value >= whole.high.value) return;
  tdm_space_map_interval_forward_to_memory(l->space, &whole, &memories);
  for (uint32_t i = 0; i < memories->count; ++i) {
    const tdm_map_interval_result *there = (tdm_map_interval_result *)memories->items + i;
    tdm_memory_map_interval_backward_to_space(there->object, &there->interval, &spaces);
    for (uint32_t j = 0; j < spaces->count; ++j) {
      const tdm_map_interval_result *back = (tdm_map_interval_result *)spaces->items + j;
      const stretch found = {back->interval.low.value + (back->interval.low.bits != 0),
                             back->interval.high.value, tdm_memory_get_type(there->object),
                             is_reserved(there) || back->reserved, there->interval.priority};
      if (tdm_mapsource_get_space(back->object) == l->space && found.low >= 0)
        add_stretch(l, &found);
    }
    tdm_arr_del(spaces);
  }
  tdm_arr_del(memories);
}

/* For what no group gives a place: memories of the type first, non-volatile ones otherwise. */
static location *location_of_type(const linker *l, int type, int other)
{
  location *made = new_location();
  made->is_default = 1;
  for (int pass = 0; pass < 2; ++pass)
    for (size_t i = 0; i < l->stretch_count; ++i) {
      const stretch *at = &l->stretches[i];
      const int fits =
          pass == 0 ? at->type == type || at->type == other : at->type == TDM_MEMORY_NVRAM;
      if (fits && !at->reserved) add_window(made, at->low, at->high, 0);
    }
  return made;
}

void enter_space(linker *l, tdm_space *space)
{
  leave_space(l);
  l->space = space;
  l->mau = tdm_space_get_mausize(space);
  find_stretches(l);
  l->rom = location_of_type(l, TDM_MEMORY_ROM, TDM_MEMORY_ROM);
  l->ram = location_of_type(l, TDM_MEMORY_RAM, TDM_MEMORY_BLOCKRAM);
}

void leave_space(linker *l)
{
  free_location(l->rom);
  free_location(l->ram);
  free(l->stretches);
  l->rom = l->ram = NULL;
  l->stretches = NULL;
  l->stretch_count = 0;
  l->space = NULL;
}
