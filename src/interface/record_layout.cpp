// Pins the records that cross the interface: a client that was built against an older header reads
// them at the same places.
#include <cstddef>

#include "common/tdm_types.h"
#include "interface/tdm_inspect.h"

namespace {

constexpr size_t pointer = sizeof(void *);
static_assert(pointer == 8, "the records are laid out for pointers of 64 bits");

static_assert(sizeof(tdm_arr) == 24 && offsetof(tdm_arr, element_size) == 0 &&
              offsetof(tdm_arr, capacity) == 4 && offsetof(tdm_arr, count) == 8 &&
              offsetof(tdm_arr, items) == 16);

static_assert(sizeof(tdm_srcpos) == 24 && offsetof(tdm_srcpos, file) == 0 &&
              offsetof(tdm_srcpos, line) == 8 && offsetof(tdm_srcpos, column) == 12 &&
              offsetof(tdm_srcpos, pragmas) == 16);

static_assert(sizeof(tdm_message) == 48 && offsetof(tdm_message, number) == 0 &&
              offsetof(tdm_message, position) == 8 && offsetof(tdm_message, text) == 32 &&
              offsetof(tdm_message, note) == 40);

static_assert(sizeof(tdm_addressvalue) == 24 && offsetof(tdm_addressvalue, value) == 0 &&
              offsetof(tdm_addressvalue, bits) == 8 && offsetof(tdm_addressvalue, mau) == 12 &&
              offsetof(tdm_addressvalue, bank) == 16);

static_assert(sizeof(tdm_interval) == 72 && offsetof(tdm_interval, low) == 0 &&
              offsetof(tdm_interval, high) == 24 && offsetof(tdm_interval, width) == 48 &&
              offsetof(tdm_interval, bits) == 56 && offsetof(tdm_interval, priority) == 64 &&
              offsetof(tdm_interval, exec_priority) == 68);

static_assert(sizeof(tdm_map_interval_result) == 88 &&
              offsetof(tdm_map_interval_result, object) == 0 &&
              offsetof(tdm_map_interval_result, interval) == 8 &&
              offsetof(tdm_map_interval_result, reserved) == 80);

static_assert(sizeof(tdm_map_address_result) == 40 &&
              offsetof(tdm_map_address_result, object) == 0 &&
              offsetof(tdm_map_address_result, address) == 8 &&
              offsetof(tdm_map_address_result, reserved) == 32);

static_assert(sizeof(tdm_walk_callbacks) == 25 * pointer &&
              offsetof(tdm_walk_callbacks, stack_def) == 0 &&
              offsetof(tdm_walk_callbacks, assignment) == 7 * pointer &&
              offsetof(tdm_walk_callbacks, group_begin) == 14 * pointer &&
              offsetof(tdm_walk_callbacks, section_layout_begin) == 19 * pointer &&
              offsetof(tdm_walk_callbacks, table_statement) == 24 * pointer);

static_assert(sizeof(tdm_section_functions) == 9 * pointer &&
              offsetof(tdm_section_functions, is_readable) == 0 &&
              offsetof(tdm_section_functions, is_p) == 6 * pointer &&
              offsetof(tdm_section_functions, get_display_name) == 8 * pointer);

static_assert(sizeof(tdm_expression_callbacks) == 2 * pointer &&
              offsetof(tdm_expression_callbacks, symbol_defined) == pointer);

static_assert(sizeof(tdm_inspect_message) == 48 && offsetof(tdm_inspect_message, letter) == 0 &&
              offsetof(tdm_inspect_message, number) == 4 &&
              offsetof(tdm_inspect_message, position) == 8 &&
              offsetof(tdm_inspect_message, text) == 32 &&
              offsetof(tdm_inspect_message, note) == 40);
static_assert(sizeof(tdm_inspect_message_kind) == 24 &&
              offsetof(tdm_inspect_message_kind, letter) == 0 &&
              offsetof(tdm_inspect_message_kind, number) == 4 &&
              offsetof(tdm_inspect_message_kind, format) == 8 &&
              offsetof(tdm_inspect_message_kind, meaning) == 16);

// Of the records of the additive readers, whose fields stand side by side in their natural layout,
// the sizes and one place behind all padding are enough.
static_assert(sizeof(tdm_inspect_parameter) == 32 &&
              offsetof(tdm_inspect_parameter, is_known) == 24);
static_assert(sizeof(tdm_inspect_required_symbol) == 16);
static_assert(sizeof(tdm_inspect_mapping) == 240 &&
              offsetof(tdm_inspect_mapping, source_interval) == 96);
static_assert(sizeof(tdm_inspect_start_address) == 24);
static_assert(sizeof(tdm_inspect_copy_destination) == 16);
static_assert(sizeof(tdm_inspect_copy_table) == 40);
static_assert(sizeof(tdm_inspect_direct_init) == 24);
static_assert(sizeof(tdm_inspect_bank_def) == 11 * pointer);
static_assert(sizeof(tdm_inspect_assignment) == 24);
static_assert(sizeof(tdm_inspect_create_section) == 5 * pointer);
static_assert(sizeof(tdm_inspect_memory_copy) == 3 * pointer);
static_assert(sizeof(tdm_inspect_struct_member) == 16);
static_assert(sizeof(tdm_inspect_group) == 112 && offsetof(tdm_inspect_group, alignment) == 56);
static_assert(sizeof(tdm_inspect_expression_range) == 2 * pointer);
static_assert(sizeof(tdm_inspect_group_location) == 56 &&
              offsetof(tdm_inspect_group_location, group) == 32);
static_assert(sizeof(tdm_inspect_location_range) == 4 * pointer);
static_assert(sizeof(tdm_inspect_statement_env) == 112 &&
              offsetof(tdm_inspect_statement_env, alignment) == 56);
static_assert(sizeof(tdm_inspect_vector_table) == 72 &&
              offsetof(tdm_inspect_vector_table, default_value) == 56);
static_assert(sizeof(tdm_inspect_id_run) == 8);
static_assert(sizeof(tdm_inspect_source_file) == 40);
static_assert(sizeof(tdm_inspect_token) == 40);
static_assert(sizeof(tdm_inspect_overlap) == 120);
static_assert(sizeof(tdm_inspect_mapping_overlap) == 104);
static_assert(sizeof(tdm_inspect_hop) == 120);
static_assert(sizeof(tdm_inspect_environment) == 8 * pointer + 16);
static_assert(sizeof(tdm_inspect_data_range) == 16);

} // namespace
