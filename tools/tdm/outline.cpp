// Walks a space and keeps what it meets as a tree of items. Getters are asked inside the callbacks,
// as environments don't live longer.
#include "outline.h"

#include <array>
#include <exception>
#include <string_view>
#include <utility>

#include <tdm_c/tdm_inspect.h>

#include "item_reader.h"
#include "session.h"

namespace tool {

namespace {

class OutlineReader {
public:
  OutlineReader(const Answers &answers, const ModelContext &context, int mau,
                const AtSelection &at_selection)
      : answers_(answers), at_selection_(at_selection), read_(context, mau)
  {
  }

  Outline read(tdm_space *space)
  {
    const tdm_walk_callbacks callbacks = all_callbacks();
    const tdm_expression_callbacks questions = {section_exists, nullptr};
    const int64_t failures_before = tdm_inspect_failure_count();
    tdm_space_walk(space, &callbacks, this, &questions, this);
    if (pending_ != nullptr) std::rethrow_exception(pending_);
    const bool complete = tdm_inspect_failure_count() - failures_before == read_.count();
    if (!complete) {
      read_.keep_failure(tdm_inspect_failure_text());
      add({.kind = ItemKind::walk_ended});
    }
    return {text_of(tdm_space_get_full_name(space)), tdm_space_get_mausize(space),
            std::move(items_), read_.failures(), complete};
  }

private:
  /// The innermost open item alone grows, so pointers to those around it stay valid.
  Item &add(Item item)
  {
    std::vector<Item> &siblings = open_.empty() ? items_ : open_.back()->children;
    return siblings.emplace_back(std::move(item));
  }
  void begin(Item item) { open_.push_back(&add(std::move(item))); }
  void end() { open_.pop_back(); }

  // ---- what is met

  template <class Definition> void definition(Definition *definition) { add(read_.of(definition)); }

  template <class Statement> void statement(Statement *statement, tdm_statement_env *env)
  {
    add(read_.of(statement, env));
  }

  void copy_table(tdm_copy_table *table)
  {
    if (table != nullptr) add(read_.of(table));
  }

  void direct_init(tdm_direct_init *init) { add(read_.of(init)); }

  void selection(tdm_selection_statement *statement, tdm_statement_env *env)
  {
    add(read_.of(statement, env)).selection = selections_++;
    if (at_selection_) read_.succeeds([&] { at_selection_(statement, env); });
  }

  void layout_begin(tdm_section_layout *layout) { begin(read_.of(layout)); }
  void layout_end(tdm_section_layout *) { end(); }

  void block_begin(tdm_block *block, tdm_statement_env *) { begin(read_.of(block)); }
  void block_end(tdm_block *, tdm_statement_env *) { end(); }

  /// The condition is evaluated next, so its questions come before the branch.
  void if_begin(tdm_if_statement *statement, tdm_statement_env *)
  {
    Item item = read_.of(statement);
    const std::optional<bool> holds = value_of(statement);
    item.facts = {{"", Phrase{holds ? *holds ? "true" : "false" : ""}},
                  {"holds", holds ? Value(*holds) : Value(Unknown{}), false},
                  {"asked", std::vector<Question>{}},
                  {"nothing_chosen", false}};
    begin(std::move(item));
  }

  void if_end(tdm_if_statement *, tdm_statement_env *)
  {
    Item &item = *open_.back();
    item.facts.back().value = item.children.empty();
    end();
  }

  void section_begin(tdm_create_section_statement *statement, tdm_statement_env *env)
  {
    begin(read_.of(statement, env));
  }
  void section_end(tdm_create_section_statement *, tdm_statement_env *) { end(); }

  void group_begin(tdm_group *group, tdm_statement_env *outer, tdm_statement_env *inner)
  {
    begin(read_.of(group, outer, inner));
  }
  void group_end(tdm_group *, tdm_statement_env *, tdm_statement_env *) { end(); }

  // ---- conditions

  /// What the walk is about to find; nothing if the condition asks for what nobody can tell.
  std::optional<bool> value_of(const tdm_if_statement *statement)
  {
    tdm_inspect_environment table{};
    table.section_exists = is_known_section;
    return read_.quietly([&]() -> std::optional<bool> {
      int64_t value = 0;
      if (tdm_inspect_expression_evaluate(tdm_inspect_if_statement_condition(statement), &table,
                                          this, &value) == 0)
        return std::nullopt;
      return value != 0;
    });
  }

  static int is_known_section(const char *name, void *user)
  {
    const auto &known = static_cast<const OutlineReader *>(user)->answers_.sections;
    return known.find(std::string_view(name)) != known.end() ? 1 : 0;
  }

  bool answer(const char *name)
  {
    const bool yes = is_known_section(name, this) != 0;
    if (open_.empty() || open_.back()->kind != ItemKind::if_statement) return yes;
    const size_t asked = open_.back()->facts.size() - 2;
    std::get<std::vector<Question>>(open_.back()->facts[asked].value)
        .push_back({"exists", name, yes});
    return yes;
  }

  static int section_exists(const char *name, void *user)
  {
    return ask_reader(user, [&](OutlineReader &reader) { return reader.answer(name); });
  }

  // ---- the way in

  /// Nothing may be thrown into the library: what is thrown waits for the end of the walk.
  template <class Call> static int ask_reader(void *user, Call call) noexcept
  {
    auto &reader = *static_cast<OutlineReader *>(user);
    if (reader.pending_ != nullptr) return 0;
    try {
      return call(reader) ? 1 : 0;
    } catch (...) {
      reader.pending_ = std::current_exception();
      return 0;
    }
  }

  template <auto Method> struct Entry;
  template <class... Arguments, void (OutlineReader::*Method)(Arguments...)> struct Entry<Method> {
    static void call(Arguments... arguments, void *user)
    {
      ask_reader(user, [&](OutlineReader &reader) {
        (reader.*Method)(arguments...);
        return true;
      });
    }
  };

  static tdm_walk_callbacks all_callbacks()
  {
    using Self = OutlineReader;
    tdm_walk_callbacks table{};
    table.stack_def = Entry<&Self::definition<tdm_stack_def>>::call;
    table.heap_def = Entry<&Self::definition<tdm_heap_def>>::call;
    table.vector_table_begin = Entry<&Self::definition<tdm_vector_table>>::call;
    table.copy_table = Entry<&Self::copy_table>::call;
    table.direct_init = Entry<&Self::direct_init>::call;
    table.reserved_range = Entry<&Self::definition<tdm_reserved_range>>::call;
    table.assignment = Entry<&Self::statement<tdm_assignment>>::call;
    table.block_begin = Entry<&Self::block_begin>::call;
    table.block_end = Entry<&Self::block_end>::call;
    table.if_begin = Entry<&Self::if_begin>::call;
    table.if_end = Entry<&Self::if_end>::call;
    table.create_section_begin = Entry<&Self::section_begin>::call;
    table.create_section_end = Entry<&Self::section_end>::call;
    table.group_begin = Entry<&Self::group_begin>::call;
    table.group_end = Entry<&Self::group_end>::call;
    table.heap_statement = Entry<&Self::statement<tdm_heap_statement>>::call;
    table.memory_copy = Entry<&Self::statement<tdm_memory_copy_statement>>::call;
    table.reserved_statement = Entry<&Self::statement<tdm_reserved_statement>>::call;
    table.section_layout_begin = Entry<&Self::layout_begin>::call;
    table.section_layout_end = Entry<&Self::layout_end>::call;
    table.selection = Entry<&Self::selection>::call;
    table.stack_statement = Entry<&Self::statement<tdm_stack_statement>>::call;
    table.struct_statement = Entry<&Self::statement<tdm_struct_statement>>::call;
    table.table_statement = Entry<&Self::statement<tdm_table_statement>>::call;
    return table;
  }

  const Answers &answers_;
  const AtSelection &at_selection_;
  ItemReader read_;
  std::vector<Item> items_;
  std::vector<Item *> open_;
  size_t selections_ = 0;
  std::exception_ptr pending_;
};

// In the order of ItemKind.
constexpr std::array kind_names = {
    "stack_definition", "heap_definition", "copy_table", "direct_init", "vector_table",
    "reserved_range",   "layout",          "assignment", "block",       "if",
    "section",          "group",           "heap",       "memcopy",     "reserved",
    "select",           "stack",           "struct",     "copytable",   "walk_ended"};
static_assert(kind_names.size() == static_cast<size_t>(ItemKind::walk_ended) + 1);

} // namespace

const char *kind_name(ItemKind kind)
{
  return kind_names[static_cast<size_t>(kind)];
}

Outline read_outline(tdm_space *space, const Answers &answers, const ModelContext &context,
                     const AtSelection &at_selection)
{
  return OutlineReader(answers, context, tdm_space_get_mausize(space), at_selection).read(space);
}

} // namespace tool
