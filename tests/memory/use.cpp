#include "use.h"

#include <unistd.h>

#include <filesystem>
#include <fstream>

const char *const whole_text = R"tdm(
#define KIB(n) ((n) * 1k)
#define NAME(a, b) a ## b
#if !defined(KIB) || 1 + 1 == 3
#error
#endif
architecture base (entry = 0x100) { endianness { little; big; }
  bus b { mau = 8; width = 32; }
  space lin { id = 1; mau = 8; align = 4; page_size = 4k [0 .. 0x800] | [0x900 .. 0x1000];
    map low (dest = bus:b, size = 32k); map (dest = bus:b, src_offset = 32k, dest_offset = 64k, size = 32k);
    stack "st" (min_size = entry, fixed); heap "he" (min_size = 1k); start_address (symbol = "_start", run_addr = entry);
    copytable (dest = lin); direct_init; reserved 0x10 .. 0x20;
    vector_table "v" (size = 4, vector_size = 4, run_addr = 0, template = ".v", template_symbol = "_t", fill = loop)
      { vector (id = [0, 1 .. 2], fill = "_main"); }
    section_layout { select ".comment*"; } } }
architecture arch extends base (1 + 2 * 3) { bus NAME(b, b) { mau = 16; width = 16; map (dest = bus:b, size = 1k); } }
derivative d (words = KIB(4)) { core c { architecture = arch; } core cc { architecture = base; }
  bus l { mau = 8; width = 32; map (dest = bus:c:b, size = 64k); }
  memory m1 { type = rom; mau = 8; size = words; fill = [1, 2] : 4; map main (dest = bus:l, size = words); }
  memory m2 { type = ram; mau = 8; size = 8k; map (dest = bus:c:b, dest_offset = 16k, size = 8k, priority = 2);
    map (dest = bus:c:b, dest_offset = 72k, size = 8k, reserved); } }
processor p { derivative = d (8k); }
section_setup p:c:lin { stack "irq" (min_size = 64); prohibit_references_to p:cc:lin;
  modify input (space = p:c:lin, copy) { select ".z*"; } }
section_layout p:c:lin (direction = low_to_high) {
  group g1 (ordered, run_addr = mem:m1/main[0x10], align = 4) { select ".text"; select ".text.[a-f]*" (attributes = +x); }
  group g2 (contiguous, run_addr = mem:m2 | mem:m1[0x100 .. 0x200]) { select ".da*|b"; "_end" := addressof(group:g1); }
  if (exists(".data") && 1 + 1 == 2) select ".data"; else "_none" = sizeof(sect:".x") - 1;
  section "se" (size = 64, attributes = rw, fill = 0) { select ref_tree "x*"; }
  reserved "r" (size = 16, attributes = r, alloc_allowed = absolute); struct "s" { 1 : 4; 2 : 2; }
  memcopy "mc" (memory = m2, fill = 0); copytable; stack "st" (size = 3 ? 16 : 32); heap "he" (size = min(4, 8)); }
)tdm";

const char *const broken_text = R"tdm(
#include "absent.tdh"
architecture a { bus b { mau = 8; width = 8; } space s { id = 1; mau = 8; map (dest = bus:b, size = 1k); } }
derivative d { core c { architecture = a; }
  memory m { type = ram; mau = 8; size = 1k; map (dest = bus:c:b, size = 1k); }
  section_layout ::s { group (ordered, clustered) { select "["; } } }
)tdm";

std::string written(const char *name, const std::string &text)
{
  const std::filesystem::path path =
      std::filesystem::temp_directory_path() / (name + std::to_string(getpid()) + ".tdm");
  std::ofstream(path, std::ios::binary) << text;
  return path.string();
}

namespace {

template <class Element, class Function> void each(tdm_arr *arr, Function function)
{
  if (arr == nullptr) return;
  for (uint32_t i = 0; i < arr->count; ++i) function(static_cast<const Element *>(arr->items)[i]);
  tdm_arr_del(arr);
}

struct User {
  Answers &answers;
  tdm_section *sections[3];
};

template <class... Arguments> void told(void (*&entry)(Arguments...))
{
  entry = [](Arguments... arguments) {
    const void *last = nullptr;
    ((last = arguments), ...);
    static_cast<const User *>(last)->answers.add(int64_t{sizeof...(arguments)});
  };
}

template <char letter> int is_flag(void *handle)
{
  return static_cast<const char *>(handle)[1] == letter ? 1 : 0;
}

const char *section_name(void *handle)
{
  return static_cast<const char *>(handle);
}

void select(tdm_selection_statement *statement, tdm_statement_env *env, void *user)
{
  auto &own = *static_cast<User *>(user);
  tdm_arr all = {sizeof(void *), 3, 3, own.sections};
  own.answers.add(tdm_selection_statement_get_literal_section_name(statement));
  for (tdm_section *section : own.sections)
    if (section == nullptr) return;
  tdm_selection_statement_get_sections(
      statement, env, &all,
      [](void *handle, void *to) { static_cast<User *>(to)->answers.add(section_name(handle)); }, 1,
      user);
}

void walk(tdm_space *space, Answers &answers)
{
  char names[][8] = {".text", ".data", "b"};
  const tdm_section_functions functions = {is_flag<'r'>, is_flag<'w'>, is_flag<'t'>,
                                           is_flag<'i'>, is_flag<'s'>, is_flag<'b'>,
                                           is_flag<'p'>, section_name, section_name};
  User user = {answers, {}};
  for (int i = 0; i < 3; ++i) user.sections[i] = tdm_section_create(names[i], &functions);
  tdm_walk_callbacks calls = {};
  told(calls.stack_def);
  told(calls.vector_table_begin);
  told(calls.assignment);
  told(calls.if_begin);
  told(calls.create_section_begin);
  told(calls.struct_statement);
  told(calls.section_layout_end);
  calls.selection = select;
  calls.group_begin = [](tdm_group *group, tdm_statement_env *, tdm_statement_env *, void *to) {
    if (const tdm_group_location *location = tdm_group_get_address(group))
      for (int i = tdm_group_location_count_ranges(location); i-- > 0;)
        static_cast<User *>(to)->answers.add(tdm_group_location_get_range_start(location, i));
  };
  calls.heap_statement = [](tdm_heap_statement *statement, tdm_statement_env *, void *to) {
    static_cast<User *>(to)->answers.add(tdm_heap_statement_get_size(statement));
  };
  const tdm_expression_callbacks yes = {[](const char *, void *) { return 1; }, nullptr};
  tdm_space_walk(space, &calls, &user, &yes, nullptr);
  for (tdm_section *section : user.sections) tdm_section_delete(section);
}

void read(tdm_memory *memory, Answers &answers)
{
  answers.add(tdm_memory_get_full_name(memory));
  answers.add(tdm_memory_get_size(memory));
  tdm_interval range = {};
  tdm_memory_get_addressrange(memory, &range);
  tdm_arr *results = nullptr;
  tdm_memory_map_interval_backward_to_space(memory, &range, &results);
  each<tdm_map_interval_result>(
      results, [&](const auto &result) { answers.add(result.interval.low.value); });
}

void read(tdm_space *space, Answers &answers)
{
  answers.add(tdm_space_get_full_name(space));
  tdm_addressvalue address = {0x4010, 0, tdm_space_get_mausize(space), -1};
  tdm_arr *results = nullptr;
  tdm_space_map_addressvalue_forward_to_memory(space, &address, &results);
  each<tdm_map_address_result>(results,
                               [&](const auto &result) { answers.add(result.address.value); });
  walk(space, answers);
}

} // namespace

void ask(tdm_spec *spec, Answers &answers)
{
  each<tdm_processor *>(tdm_spec_get_processors(spec), [&](tdm_processor *processor) {
    answers.add(tdm_processor_get_name(processor));
    each<tdm_core *>(tdm_processor_get_cores(processor), [&](tdm_core *core) {
      each<int32_t>(tdm_core_get_endianness(core), [&](int32_t order) { answers.add(order); });
      each<tdm_space *>(tdm_core_get_spaces(core), [&](tdm_space *space) { read(space, answers); });
    });
    each<tdm_memory *>(tdm_processor_get_memories(processor),
                       [&](tdm_memory *memory) { read(memory, answers); });
  });
  each<const char *>(tdm_spec_get_file_dependencies(spec),
                     [&](const char *file) { answers.add(file); });
}

void parse_and_ask(const char *file, Answers &answers)
{
  const tdm_arr files = {sizeof(char *), 1, 1, &file};
  const tdm_arr none = {sizeof(char *), 0, 0, nullptr};
  tdm_spec *spec = tdm_parse_file(&files, &none);
  answers.add(spec != nullptr);
  if (spec != nullptr)
    ask(spec, answers);
  else
    answers.add(tdm_get_last_error());
  each<tdm_message>(tdm_get_errors(),
                    [&](const tdm_message &message) { answers.add(message.text); });
  tdm_spec_free(spec);
}
