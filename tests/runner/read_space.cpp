// A table of callbacks that writes lines, and a caller with sections behind it.
#include "read_space.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <memory>
#include <sstream>
#include <stdexcept>

namespace cases {

namespace {

std::vector<std::string> split(const std::string &text)
{
  std::vector<std::string> parts;
  std::istringstream stream(text);
  for (std::string part; std::getline(stream, part, ',');) parts.push_back(part);
  return parts;
}

/// A section of the caller's.
struct CallerSection {
  std::string name;
  std::string flags;
  tdm_section *section = nullptr;
};

template <char letter> int has_flag(void *handle)
{
  return static_cast<CallerSection *>(handle)->flags.find(letter) != std::string::npos ? 2 : 0;
}

const char *name_of_section(void *handle)
{
  return static_cast<CallerSection *>(handle)->name.c_str();
}

constexpr tdm_section_functions section_functions = {
    has_flag<'r'>, has_flag<'w'>, has_flag<'x'>,   has_flag<'i'>,  has_flag<'s'>,
    has_flag<'b'>, has_flag<'p'>, name_of_section, name_of_section};

std::string at(const tdm_source_location *location)
{
  if (location == nullptr) return " at=?";
  return " at=" + std::to_string(tdm_source_location_get_line_number(location)) + "/" +
         std::to_string(tdm_source_location_get_column_number(location));
}

std::string attributes(const tdm_attributes *set)
{
  std::string letters;
  if (tdm_attributes_is_readable(set)) letters += 'r';
  if (tdm_attributes_is_writable(set)) letters += 'w';
  if (tdm_attributes_is_executable(set)) letters += 'x';
  if (tdm_attributes_is_inited(set)) letters += 'i';
  if (tdm_attributes_is_scratch(set)) letters += 's';
  if (tdm_attributes_is_blanked(set)) letters += 'b';
  if (letters.empty() && tdm_attributes_none(set) == 0) letters = "p";
  return letters.empty() ? "" : " " + letters;
}

std::string quoted(const char *text)
{
  return std::string(" \"") + text + "\"";
}

class Reader {
public:
  explicit Reader(const std::vector<std::string> &options)
  {
    for (const std::string &option : options) {
      const std::size_t equals = option.find('=');
      const std::string value = equals == std::string::npos ? "" : option.substr(equals + 1);
      const std::string key = option.substr(0, equals);
      if (key == "sections")
        for (const std::string &section : split(value)) add_section(section);
      else if (key == "exists")
        exists_ = split(value);
      else if (key == "null")
        nulls_ = split(value);
      else if (key == "without_expressions")
        with_expressions_ = false;
      else
        throw std::runtime_error("unknown option " + option);
    }
  }
  Reader(const Reader &) = delete;
  Reader &operator=(const Reader &) = delete;
  ~Reader()
  {
    for (const auto &section : sections_) tdm_section_delete(section->section);
  }

  Lines read(tdm_space *space)
  {
    tdm_walk_callbacks callbacks = table();
    for (const std::string &name : nulls_) clear(callbacks, name);
    const tdm_expression_callbacks expressions = {
        [](const char *name, void *user) {
          const auto &known = static_cast<Reader *>(user)->exists_;
          return std::find(known.begin(), known.end(), name) != known.end() ? 1 : 0;
        },
        nullptr};
    tdm_space_walk(space, &callbacks, this, with_expressions_ ? &expressions : nullptr, this);
    return std::move(lines_);
  }

private:
  static Reader &of(void *user) { return *static_cast<Reader *>(user); }

  void add_section(const std::string &text)
  {
    const std::size_t slash = text.find('/');
    sections_.push_back(std::make_unique<CallerSection>());
    CallerSection &section = *sections_.back();
    section.name = text.substr(0, slash);
    if (slash != std::string::npos) section.flags = text.substr(slash + 1);
    section.section = tdm_section_create(&section, &section_functions);
  }

  void say(const std::string &line) { lines_.push_back(std::string(2 * depth_, ' ') + line); }

  /// The environment of the scope stays the same one until the scope ends.
  void check(tdm_statement_env *env)
  {
    if (!nulls_.empty()) return; // scopes may begin unseen
    if (envs_.back() == nullptr) envs_.back() = env;
    if (envs_.back() != env) say("another environment than that of the scope");
  }

  void open(const std::string &line, tdm_statement_env *inner)
  {
    say(line);
    ++depth_;
    envs_.push_back(inner);
  }

  void close(const std::string &line)
  {
    --depth_;
    envs_.pop_back();
    say(line);
  }

  void select(tdm_selection_statement *statement, tdm_statement_env *env)
  {
    std::string line = "selection" + at(tdm_selection_statement_get_source_location(statement));
    if (const char *name = tdm_selection_statement_get_literal_section_name(statement))
      line += quoted(name);
    const auto selectors =
        take<tdm_section_selector *>(tdm_selection_statement_get_selectors(statement));
    if (!selectors.empty()) line += " selectors=" + std::to_string(selectors.size());
    if (tdm_selection_statement_use_reference_tree(statement)) line += " ref_tree";
    if (const int64_t alignment = tdm_statement_env_get_alignment(env))
      line += " align=" + hex(alignment);
    say(line + taken_by(statement, env));
  }

  std::string taken_by(tdm_selection_statement *statement, tdm_statement_env *env)
  {
    if (sections_.empty()) return "";
    std::vector<tdm_section *> candidates;
    for (const auto &section : sections_) candidates.push_back(section->section);
    const auto count = static_cast<uint32_t>(candidates.size());
    const tdm_arr array = {sizeof(void *), count, count, candidates.data()};
    std::vector<CallerSection *> taken;
    tdm_selection_statement_get_sections(
        statement, env, &array,
        [](void *handle, void *user) {
          static_cast<std::vector<CallerSection *> *>(user)->push_back(
              static_cast<CallerSection *>(handle));
        },
        1, &taken);
    std::string text = " ->";
    for (CallerSection *section : taken) {
      text += " " + section->name;
      tdm_section_delete(section->section);
      std::erase_if(sections_, [&](const auto &owned) { return owned.get() == section; });
    }
    return text;
  }

  std::string location_of(tdm_group *group)
  {
    const tdm_group_location *location = tdm_group_get_address(group);
    if (location == nullptr) return "";
    const char *before = tdm_get_last_error();
    std::string text;
    if (tdm_group_location_is_address(location))
      text = " address=" + hex(tdm_group_location_get_address(location));
    const int count = tdm_group_location_count_ranges(location);
    if (text.empty()) text = " ranges=";
    for (int i = 0; i < count; ++i)
      text += "[" + hex(tdm_group_location_get_range_start(location, i)) + "," +
              hex(tdm_group_location_get_range_end(location, i)) + ")";
    if (tdm_get_last_error() != before) text += std::string(" error ") + tdm_get_last_error();
    return text;
  }

  static tdm_walk_callbacks table();
  static void clear(tdm_walk_callbacks &callbacks, const std::string &name);

  std::vector<std::unique_ptr<CallerSection>> sections_;
  std::vector<std::string> exists_;
  std::vector<std::string> nulls_;
  bool with_expressions_ = true;
  Lines lines_;
  std::size_t depth_ = 1;
  std::vector<tdm_statement_env *> envs_{nullptr};
};

template <class Definition> std::string definition(const Definition &text, int alignment, int fixed)
{
  return text + " align=" + std::to_string(alignment) + (fixed != 0 ? " fixed" : "");
}

tdm_walk_callbacks Reader::table()
{
  tdm_walk_callbacks t{};
  t.stack_def = [](tdm_stack_def *d, void *user) {
    of(user).say(definition("stack_def" + at(tdm_stack_def_get_source_location(d)) +
                                quoted(tdm_stack_def_get_name(d)) +
                                " size=" + hex(tdm_stack_def_get_minimal_size(d)),
                            tdm_stack_def_get_alignment(d), tdm_stack_def_get_fixed(d)));
  };
  t.heap_def = [](tdm_heap_def *d, void *user) {
    of(user).say(definition("heap_def" + at(tdm_heap_def_get_source_location(d)) +
                                quoted(tdm_heap_def_get_name(d)) +
                                " size=" + hex(tdm_heap_def_get_minimal_size(d)),
                            tdm_heap_def_get_alignment(d), tdm_heap_def_get_fixed(d)));
  };
  t.vector_table_begin = [](tdm_vector_table *v, void *user) {
    of(user).say("vector_table_begin" + at(tdm_vector_table_get_source_location(v)) +
                 quoted(tdm_vector_table_get_name(v)) +
                 " size=" + hex(tdm_vector_table_get_size(v)) +
                 " vector_size=" + hex(tdm_vector_table_get_vector_size(v)) +
                 " address=" + hex(tdm_vector_table_get_run_address(v)));
  };
  t.vector_table_end = [](tdm_vector_table *v, void *user) {
    of(user).say("vector_table_end" + quoted(tdm_vector_table_get_name(v)));
  };
  t.copy_table = [](tdm_copy_table *table, void *user) {
    of(user).say(table != nullptr ? "copy_table" : "copy_table null");
  };
  t.direct_init = [](tdm_direct_init *, void *user) { of(user).say("direct_init"); };
  t.reserved_range = [](tdm_reserved_range *r, void *user) {
    of(user).say("reserved_range " + hex(tdm_reserved_range_get_low(r)) + " " +
                 hex(tdm_reserved_range_get_high(r)));
  };
  t.section_layout_begin = [](tdm_section_layout *layout, void *user) {
    of(user).open("section_layout_begin" + at(tdm_section_layout_get_source_location(layout)),
                  nullptr);
  };
  t.section_layout_end = [](tdm_section_layout *, void *user) {
    of(user).close("section_layout_end");
  };
  t.assignment = [](tdm_assignment *, tdm_statement_env *env, void *user) {
    of(user).check(env);
    of(user).say("assignment");
  };
  t.block_begin = [](tdm_block *, tdm_statement_env *env, void *user) {
    of(user).check(env);
    of(user).open("block_begin", env);
  };
  t.block_end = [](tdm_block *, tdm_statement_env *env, void *user) {
    of(user).check(env);
    of(user).close("block_end");
  };
  t.if_begin = [](tdm_if_statement *, tdm_statement_env *env, void *user) {
    of(user).check(env);
    of(user).open("if_begin", env);
  };
  t.if_end = [](tdm_if_statement *, tdm_statement_env *env, void *user) {
    of(user).check(env);
    of(user).close("if_end");
  };
  t.create_section_begin = [](tdm_create_section_statement *s, tdm_statement_env *env, void *user) {
    of(user).check(env);
    of(user).open("create_section_begin" + at(tdm_create_section_statement_get_source_location(s)) +
                      quoted(tdm_create_section_statement_get_name(s)) +
                      " size=" + hex(tdm_create_section_statement_get_size(s)) +
                      attributes(tdm_create_section_statement_get_attributes(s)),
                  nullptr);
  };
  t.create_section_end = [](tdm_create_section_statement *, tdm_statement_env *env, void *user) {
    of(user).close("create_section_end");
    of(user).check(env);
  };
  t.group_begin = [](tdm_group *g, tdm_statement_env *outer, tdm_statement_env *inner, void *user) {
    of(user).check(outer);
    std::string line = "group_begin" + at(tdm_group_get_source_location(g));
    if (const int64_t alignment = tdm_statement_env_get_alignment(inner))
      line += " align=" + hex(alignment);
    of(user).open(line + of(user).location_of(g), inner);
  };
  t.group_end = [](tdm_group *, tdm_statement_env *outer, tdm_statement_env *inner, void *user) {
    of(user).check(inner);
    of(user).close("group_end");
    of(user).check(outer);
  };
  t.heap_statement = [](tdm_heap_statement *s, tdm_statement_env *env, void *user) {
    of(user).check(env);
    of(user).say("heap_statement" + at(tdm_heap_statement_get_source_location(s)) +
                 quoted(tdm_heap_statement_get_name(s)) +
                 " size=" + hex(tdm_heap_statement_get_size(s)));
  };
  t.memory_copy = [](tdm_memory_copy_statement *, tdm_statement_env *env, void *user) {
    of(user).check(env);
    of(user).say("memory_copy");
  };
  t.reserved_statement = [](tdm_reserved_statement *s, tdm_statement_env *env, void *user) {
    of(user).check(env);
    of(user).say("reserved_statement" + at(tdm_reserved_statement_get_source_location(s)) +
                 quoted(tdm_reserved_statement_get_name(s)) +
                 " size=" + hex(tdm_reserved_statement_get_size(s)) +
                 attributes(tdm_reserved_statement_get_attributes(s)) +
                 (tdm_reserved_statement_get_alloc_allowed_absolute(s) ? " absolute" : "") +
                 (tdm_reserved_statement_get_alloc_allowed_ranged(s) ? " ranged" : ""));
  };
  t.selection = [](tdm_selection_statement *s, tdm_statement_env *env, void *user) {
    of(user).check(env);
    of(user).select(s, env);
  };
  t.stack_statement = [](tdm_stack_statement *s, tdm_statement_env *env, void *user) {
    of(user).check(env);
    of(user).say("stack_statement" + at(tdm_stack_statement_get_source_location(s)) +
                 quoted(tdm_stack_statement_get_name(s)) +
                 " size=" + hex(tdm_stack_statement_get_size(s)));
  };
  t.struct_statement = [](tdm_struct_statement *, tdm_statement_env *env, void *user) {
    of(user).check(env);
    of(user).say("struct_statement");
  };
  t.table_statement = [](tdm_table_statement *s, tdm_statement_env *env, void *user) {
    of(user).check(env);
    of(user).say("table_statement" + at(tdm_table_statement_get_source_location(s)));
  };
  return t;
}

/// The entries that open and close scopes are cleared in pairs, or the lines lose their order.
void Reader::clear(tdm_walk_callbacks &callbacks, const std::string &name)
{
  if (name == "copy_table")
    callbacks.copy_table = nullptr;
  else if (name == "selection")
    callbacks.selection = nullptr;
  else if (name == "vector_table_end")
    callbacks.vector_table_end = nullptr;
  else if (name == "block")
    callbacks.block_begin = callbacks.block_end = nullptr;
  else if (name == "group")
    callbacks.group_begin = callbacks.group_end = nullptr;
  else if (name == "if")
    callbacks.if_begin = callbacks.if_end = nullptr;
  else if (name == "section_layout")
    callbacks.section_layout_begin = callbacks.section_layout_end = nullptr;
  else
    throw std::runtime_error("unknown callback " + name);
}

} // namespace

Lines read_space(tdm_space *space, const std::vector<std::string> &options)
{
  return Reader(options).read(space);
}

} // namespace cases
