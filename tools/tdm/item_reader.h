// What the library tells of each thing that a walk hands out, as an item with its facts. A getter
// that fails makes the fact unknown, and its failure is kept. Nothing here knows the order of a
// walk.
#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include <tdm_c/tdm.h>
#include <tdm_c/tdm_inspect.h>

#include "outline.h"
#include "session.h"

namespace tool {

class ItemReader {
public:
  /// `mau` is that of the space.
  ItemReader(const ModelContext &context, int mau) : context_(context), mau_(mau) {}

  Item of(const tdm_stack_def *definition);
  Item of(const tdm_heap_def *definition);
  Item of(const tdm_copy_table *table);
  Item of(const tdm_direct_init *init);
  Item of(const tdm_vector_table *table);
  Item of(const tdm_reserved_range *range);
  Item of(const tdm_section_layout *layout);
  Item of(const tdm_block *block);
  Item of(const tdm_assignment *statement, const tdm_statement_env *env);
  Item of(const tdm_if_statement *statement);
  Item of(const tdm_heap_statement *statement, const tdm_statement_env *env);
  Item of(const tdm_stack_statement *statement, const tdm_statement_env *env);
  Item of(const tdm_reserved_statement *statement, const tdm_statement_env *env);
  Item of(const tdm_memory_copy_statement *statement, const tdm_statement_env *env);
  Item of(const tdm_struct_statement *statement, const tdm_statement_env *env);
  Item of(const tdm_selection_statement *statement, const tdm_statement_env *env);
  Item of(const tdm_table_statement *statement, const tdm_statement_env *env);
  Item of(const tdm_create_section_statement *statement, const tdm_statement_env *env);
  Item of(const tdm_group *group, const tdm_statement_env *outer, const tdm_statement_env *inner);

  /// Calls; whether it went without a failure.
  template <class Call> bool succeeds(Call call)
  {
    const int64_t before = tdm_inspect_failure_count();
    call();
    const int64_t failed = tdm_inspect_failure_count() - before;
    if (failed == 0) return true;
    count_ += failed;
    keep_failure(tdm_inspect_failure_text());
    return false;
  }

  /// Calls; that an expression has no value yet is no failure there.
  template <class Call> auto quietly(Call call)
  {
    const int64_t before = tdm_inspect_failure_count();
    auto result = call();
    count_ += tdm_inspect_failure_count() - before;
    return result;
  }

  void keep_failure(const std::string &text);

  /// How many calls failed.
  [[nodiscard]] int64_t count() const { return count_; }
  /// Their texts, each once, in the order in which they came.
  [[nodiscard]] const std::vector<std::string> &failures() const { return failures_; }

private:
  /// Where a location leads to in the space.
  struct Resolved {
    Value value;       ///< an address or ranges
    std::string text;  ///< the same, as people have it; "?" if it leads nowhere
    int32_t bank = -1; ///< of an address; -1 for none
  };

  /// What the getter says, as a value of that kind, or else how the text has it.
  template <class Kind, class Object, class Number>
  Value ask(Number (*getter)(const Object *), const Object *object,
            const tdm_expression *expression)
  {
    Number number{};
    if (succeeds([&] { number = getter(object); })) return Kind{number};
    return Unknown{quietly([&] { return text_of(tdm_inspect_expression_text(expression)); })};
  }

  template <class Object> Json json_of(const Object *object)
  {
    return quietly([&] { return written(context_, object); });
  }

  Resolved resolve(const tdm_group_location *location);
  Resolved resolve_ranges(const tdm_group_location *location);
  std::string location_text(const tdm_group_location *location, const Resolved &resolved,
                            bool is_run_address);
  void add_alignment(Item &item, const tdm_statement_env *outer, const tdm_statement_env *inner);
  std::string inherited_text(const tdm_group *group, const tdm_statement_env *outer);
  Json rules_of(const tdm_statement_env *env);
  std::string fill_phrase(const tdm_fillspec *fill);

  const ModelContext &context_;
  int mau_;
  int64_t count_ = 0;
  std::vector<std::string> failures_;
  std::set<std::string> seen_;
};

} // namespace tool
