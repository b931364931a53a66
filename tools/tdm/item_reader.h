// What the library tells of each thing that a walk hands out, as an item with its facts. A getter
// that fails makes the fact unknown, and its failure is kept. Nothing here knows the order of a
// walk.
#pragma once

#include <set>
#include <string>
#include <vector>

#include <tdm_c/tdm.h>
#include <tdm_c/tdm_inspect.h>

#include "outline.h"

namespace tool {

class ItemReader {
public:
  Item of(const tdm_stack_def *definition);
  Item of(const tdm_heap_def *definition);
  Item of(const tdm_vector_table *table);
  static Item of(const tdm_reserved_range *range);
  static Item of(const tdm_section_layout *layout);
  Item of(const tdm_heap_statement *statement);
  Item of(const tdm_stack_statement *statement);
  Item of(const tdm_reserved_statement *statement);
  Item of(const tdm_selection_statement *statement);
  static Item of(const tdm_table_statement *statement);
  Item of(const tdm_create_section_statement *statement);
  Item of(const tdm_group *group, const tdm_statement_env *outer, const tdm_statement_env *inner);
  /// Of what has no getters.
  static Item of(ItemKind kind);

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

  void keep_failure(const std::string &text);

  /// How many calls failed.
  [[nodiscard]] int64_t count() const { return count_; }
  /// Their texts, each once, in the order in which they came.
  [[nodiscard]] const std::vector<std::string> &failures() const { return failures_; }

private:
  /// What the getter says, as a value of that kind.
  template <class Kind, class Object, class Number>
  Value ask(Number (*getter)(const Object *), const Object *object)
  {
    Number number{};
    if (!succeeds([&] { number = getter(object); })) return Unknown{};
    return Kind{number};
  }

  Fact fact_of(const tdm_group_location *location);

  int64_t count_ = 0;
  std::vector<std::string> failures_;
  std::set<std::string> seen_;
};

} // namespace tool
