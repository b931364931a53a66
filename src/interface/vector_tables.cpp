// What a caller asks a vector table.
#include "interface/guard.h"
#include "interface/tdm.h"
#include "interface/values.h"
#include "layout/vector_table.h"

using tdm::guarded;

const char *tdm_vector_table_get_name(const tdm_vector_table *table)
{
  return guarded([&] { return tdm::text_result(table->name); });
}

int64_t tdm_vector_table_get_size(const tdm_vector_table *table)
{
  return guarded([&] { return table->size->value(); });
}

int64_t tdm_vector_table_get_vector_size(const tdm_vector_table *table)
{
  return guarded([&] { return table->vector_size->value(); });
}

int64_t tdm_vector_table_get_run_address(const tdm_vector_table *table)
{
  return guarded(
      [&] { return table->run_address != nullptr ? table->run_address->value() : int64_t{0}; });
}

tdm_source_location *tdm_vector_table_get_source_location(const tdm_vector_table *table)
{
  return tdm::handle(table->location("name"));
}
