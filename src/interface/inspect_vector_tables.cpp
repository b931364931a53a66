// The additive readers of vector tables: vectors and what stands in them.
#include "interface/inspect_lists.h"
#include "interface/tdm_inspect_layout.h"
#include "layout/vector_table.h"

using tdm::guarded;
using tdm::guarded_array;
using tdm::text_result;

static_assert(TDMVectorValue::symbol_value == int{TDM_VECTOR_SYMBOL} &&
              TDMVectorValue::numbers == int{TDM_VECTOR_NUMBERS} &&
              TDMVectorValue::loop == int{TDM_VECTOR_LOOP});

int tdm_inspect_get_vector_table(const tdm_vector_table *table, tdm_inspect_vector_table *out)
{
  return guarded([&] {
    *out = {.size = table->size.get(),
            .vector_size = table->vector_size.get(),
            .run_address = table->run_address.get(),
            .id_symbol_prefix = text_result(table->id_symbol_prefix),
            .template_name = text_result(table->template_name),
            .template_symbol_name = text_result(table->template_symbol_name),
            .vector_name_prefix = text_result(table->vector_name_prefix),
            .default_value = table->default_value.get(),
            .default_inline = table->default_inline,
            .copy = table->copy};
    return 1;
  });
}

tdm_arr *tdm_inspect_vector_table_vectors(const tdm_vector_table *table)
{
  return tdm::handle_list(table->vectors);
}

tdm_arr *tdm_inspect_vector_id_runs(const tdm_vector *vector)
{
  return guarded_array<tdm_inspect_id_run>([&] {
    return tdm::array_of(vector->ids, [](const auto &run) -> tdm_inspect_id_run {
      return {run.first, run.second};
    });
  });
}

tdm_vector_value *tdm_inspect_vector_value(const tdm_vector *vector)
{
  return vector->value.get();
}

int tdm_inspect_vector_is_optional(const tdm_vector *vector)
{
  return vector->optional ? 1 : 0;
}

int tdm_inspect_vector_value_kind(const tdm_vector_value *value)
{
  return value->type;
}

const char *tdm_inspect_vector_value_symbol(const tdm_vector_value *value)
{
  return guarded([&]() -> const char * {
    return value->type == TDMVectorValue::symbol_value ? text_result(value->symbol) : nullptr;
  });
}

tdm_arr *tdm_inspect_vector_value_numbers(const tdm_vector_value *value)
{
  return guarded_array<int64_t>(
      [&] { return tdm::array_of(value->values, [](int64_t number) { return number; }); });
}

tdm_expression *tdm_inspect_vector_value_loop_offset(const tdm_vector_value *value)
{
  return value->loop_offset.get();
}
