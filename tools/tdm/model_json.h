// What the parts of the model's JSON share: lists, values that stand in many places, and where
// things were written.
#pragma once

#include <cstddef>
#include <map>

#include <tdm_c/tdm_inspect.h>

#include "json_values.h"
#include "session.h"

namespace tool {

/// Numbers mappings, so that the objects at both ends can refer to them.
class MappingNumbers {
public:
  explicit MappingNumbers(const tdm_spec *spec);

  /// From 0, in the order in which the JSON writes the mappings.
  [[nodiscard]] size_t of(const tdm_mapping *mapping) const { return numbers_.at(mapping); }

private:
  void add(tdm_arr *mappings);

  std::map<const tdm_mapping *, size_t> numbers_;
};

struct ModelContext {
  const FileNames &names;
  const MappingNumbers &mappings;
  bool origins; ///< wanted: "file:line:column" of every part whose place is known
};

/// A list of what `convert` makes of each element.
template <class Element, class Convert> Json json_list(tdm_arr *arr, Convert convert)
{
  Json list = Json::array();
  for (const Element &element : take_elements<Element>(arr)) list.push_back(convert(element));
  return list;
}

[[nodiscard]] Json json_texts(tdm_arr *arr);
[[nodiscard]] Json json_numbers(tdm_arr *arr);

/// The full name, or null.
[[nodiscard]] Json json_name(const tdm_space *space);
[[nodiscard]] Json json_name(const tdm_memory *memory);

/// The directions of enum tdm_locate_direction, and null for none.
[[nodiscard]] Json json_direction(int direction);

/// By letters, as a description has them; null for null.
[[nodiscard]] Json json_attributes(const tdm_attributes *attributes);

/// A priority: a whole number where it is one, as those that are written are.
[[nodiscard]] Json json_fixed_point(int32_t number);

/// Data lines, the last one included, of so many.
[[nodiscard]] Json json_lines(int32_t low, int32_t high, int32_t width);

/// As text, and with its value if it asks for nothing that only a link can tell.
[[nodiscard]] Json json_expression(const ModelContext &context, const tdm_expression *expression);
[[nodiscard]] Json json_fill(const ModelContext &context, const tdm_fillspec *fill);

/// Adds where each part of an object was written, by the keys of the library, if that is wanted.
[[nodiscard]] Json json_placed(const ModelContext &context, int kind, const void *object,
                               Json json);

/// Mappings in full, and by their numbers.
[[nodiscard]] Json json_mappings(const ModelContext &context, tdm_arr *mappings);
[[nodiscard]] Json json_mapping_numbers(const ModelContext &context, tdm_arr *mappings);

/// All that a space holds beyond what tdm.h tells, added to its JSON.
void add_definitions(const ModelContext &context, const tdm_space *space, Json &json);

[[nodiscard]] Json json_vector_table(const ModelContext &context, const tdm_vector_table *table);
[[nodiscard]] Json json_layout(const ModelContext &context, const tdm_section_layout *layout);
[[nodiscard]] Json json_selection(const ModelContext &context,
                                  const tdm_selection_statement *statement);
// What a definition or a statement says, without what it contains; what `origins` would add is left
// to json_placed().
[[nodiscard]] Json written(const ModelContext &context, const tdm_stack_def *stack);
[[nodiscard]] Json written(const ModelContext &context, const tdm_heap_def *heap);
[[nodiscard]] Json written(const ModelContext &context, const tdm_copy_table *table);
[[nodiscard]] Json written(const ModelContext &context, const tdm_direct_init *init);
[[nodiscard]] Json written(const ModelContext &context, const tdm_section_layout *layout);
[[nodiscard]] Json written(const ModelContext &context, const tdm_assignment *statement);
[[nodiscard]] Json written(const ModelContext &context, const tdm_if_statement *statement);
[[nodiscard]] Json written(const ModelContext &context,
                           const tdm_create_section_statement *section);
[[nodiscard]] Json written(const ModelContext &context, const tdm_group *group);
[[nodiscard]] Json written(const ModelContext &context, const tdm_heap_statement *heap);
[[nodiscard]] Json written(const ModelContext &context, const tdm_stack_statement *stack);
[[nodiscard]] Json written(const ModelContext &context, const tdm_memory_copy_statement *statement);
[[nodiscard]] Json written(const ModelContext &context, const tdm_reserved_statement *area);
[[nodiscard]] Json written(const ModelContext &context, const tdm_selection_statement *statement);
[[nodiscard]] Json written(const ModelContext &context, const tdm_struct_statement *structure);

[[nodiscard]] Json json_selector(const tdm_section_selector *selector);

} // namespace tool
