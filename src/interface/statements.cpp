// What a caller asks the statements of a layout and the definitions of a space that a walk hands
// out, and their attributes.
#include "layout/statements.h"
#include "expressions/expression.h"
#include "interface/guard.h"
#include "interface/tdm.h"
#include "interface/values.h"
#include "layout/reserved_range.h"
#include "layout/section_layout.h"
#include "layout/stack_heap_def.h"
#include "layout/statement_env.h"

using tdm::guarded;

namespace {

/// What the expression comes to without data of the caller; 0 where the text gives none.
int64_t value_of(TDMExpression *expression)
{
  return guarded([&] { return expression != nullptr ? expression->value() : 0; });
}

int64_t value_of(const std::unique_ptr<TDMExpression> &expression)
{
  return value_of(expression.get());
}

const char *text_of(tdm::Text text)
{
  return guarded([&] { return tdm::text_result(text); });
}

tdm_source_location *place_of(const TDMObject &object, LocationKey key)
{
  return tdm::handle(object.location(key));
}

} // namespace

// Attributes.

int tdm_attributes_is_readable(const tdm_attributes *attributes)
{
  return attributes->r ? 1 : 0;
}

int tdm_attributes_is_writable(const tdm_attributes *attributes)
{
  return attributes->w ? 1 : 0;
}

int tdm_attributes_is_executable(const tdm_attributes *attributes)
{
  return attributes->x ? 1 : 0;
}

int tdm_attributes_is_inited(const tdm_attributes *attributes)
{
  return attributes->i ? 1 : 0;
}

int tdm_attributes_is_scratch(const tdm_attributes *attributes)
{
  return attributes->s ? 1 : 0;
}

int tdm_attributes_is_blanked(const tdm_attributes *attributes)
{
  return attributes->b ? 1 : 0;
}

int tdm_attributes_none(const tdm_attributes *attributes)
{
  const TDMAttributes &set = *attributes;
  return set.r || set.w || set.x || set.i || set.s || set.b || set.p ? 0 : 1;
}

// Sections that are made on the spot.

const char *tdm_create_section_statement_get_name(const tdm_create_section_statement *statement)
{
  return text_of(statement->name);
}

int64_t tdm_create_section_statement_get_size(const tdm_create_section_statement *statement)
{
  return value_of(statement->size);
}

tdm_attributes *
tdm_create_section_statement_get_attributes(const tdm_create_section_statement *statement)
{
  return tdm::handle(&statement->attributes);
}

tdm_source_location *
tdm_create_section_statement_get_source_location(const tdm_create_section_statement *statement)
{
  return place_of(*statement, "statement");
}

// Heaps, stacks, reserved areas and the copy table in a layout.

const char *tdm_heap_statement_get_name(const tdm_heap_statement *statement)
{
  return text_of(statement->name);
}

int64_t tdm_heap_statement_get_size(const tdm_heap_statement *statement)
{
  return value_of(statement->size);
}

tdm_source_location *tdm_heap_statement_get_source_location(const tdm_heap_statement *statement)
{
  return place_of(*statement, "sectionName");
}

const char *tdm_stack_statement_get_name(const tdm_stack_statement *statement)
{
  return text_of(statement->name);
}

int64_t tdm_stack_statement_get_size(const tdm_stack_statement *statement)
{
  return value_of(statement->size);
}

tdm_source_location *tdm_stack_statement_get_source_location(const tdm_stack_statement *statement)
{
  return place_of(*statement, "name");
}

const char *tdm_reserved_statement_get_name(const tdm_reserved_statement *statement)
{
  return text_of(statement->name);
}

int64_t tdm_reserved_statement_get_size(const tdm_reserved_statement *statement)
{
  return value_of(statement->size);
}

tdm_attributes *tdm_reserved_statement_get_attributes(const tdm_reserved_statement *statement)
{
  return tdm::handle(&statement->attributes);
}

int tdm_reserved_statement_get_alloc_allowed_absolute(const tdm_reserved_statement *statement)
{
  return statement->allow_alloc_absolute ? 1 : 0;
}

int tdm_reserved_statement_get_alloc_allowed_ranged(const tdm_reserved_statement *statement)
{
  return statement->allow_alloc_ranged ? 1 : 0;
}

tdm_source_location *
tdm_reserved_statement_get_source_location(const tdm_reserved_statement *statement)
{
  return place_of(*statement, "sectionName");
}

tdm_source_location *tdm_table_statement_get_source_location(const tdm_table_statement *statement)
{
  return place_of(*statement, "copytable");
}

tdm_source_location *tdm_section_layout_get_source_location(const tdm_section_layout *layout)
{
  return place_of(*layout, "section_layout");
}

int64_t tdm_statement_env_get_alignment(const tdm_statement_env *env)
{
  return value_of(env->alignment);
}

// Definitions of a space.

const char *tdm_stack_def_get_name(const tdm_stack_def *definition)
{
  return text_of(definition->name);
}

int64_t tdm_stack_def_get_minimal_size(const tdm_stack_def *definition)
{
  return value_of(definition->minimal_size);
}

int tdm_stack_def_get_alignment(const tdm_stack_def *definition)
{
  return definition->alignment;
}

int tdm_stack_def_get_fixed(const tdm_stack_def *definition)
{
  return definition->fixed ? 1 : 0;
}

tdm_source_location *tdm_stack_def_get_source_location(const tdm_stack_def *definition)
{
  return place_of(*definition, "name");
}

const char *tdm_heap_def_get_name(const tdm_heap_def *definition)
{
  return text_of(definition->name);
}

int64_t tdm_heap_def_get_minimal_size(const tdm_heap_def *definition)
{
  return value_of(definition->minimal_size);
}

int tdm_heap_def_get_alignment(const tdm_heap_def *definition)
{
  return definition->alignment;
}

int tdm_heap_def_get_fixed(const tdm_heap_def *definition)
{
  return definition->fixed ? 1 : 0;
}

tdm_source_location *tdm_heap_def_get_source_location(const tdm_heap_def *definition)
{
  return place_of(*definition, "name");
}

int64_t tdm_reserved_range_get_low(const tdm_reserved_range *range)
{
  return range->low;
}

int64_t tdm_reserved_range_get_high(const tdm_reserved_range *range)
{
  return range->high;
}
