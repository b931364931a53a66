// Sections of the caller, and which of them a statement selects.
#include "interface/guard.h"
#include "interface/tdm.h"
#include "interface/values.h"
#include "layout/section.h"
#include "layout/selection_statement.h"
#include "layout/statement_env.h"

using tdm::guarded;

tdm_section *tdm_section_create(void *handle, const tdm_section_functions *functions)
{
  return guarded([&]() -> tdm_section * { return new TDMSectionWrapper(handle, functions); });
}

void tdm_section_delete(tdm_section *section)
{
  delete section;
}

const char *
tdm_selection_statement_get_literal_section_name(const tdm_selection_statement *statement)
{
  return guarded([&] { return tdm::text_result(statement->literal_section_name()); });
}

int tdm_selection_statement_use_reference_tree(const tdm_selection_statement *statement)
{
  return statement->use_reference_tree ? 1 : 0;
}

tdm_arr *tdm_selection_statement_get_selectors(const tdm_selection_statement *statement)
{
  return tdm::guarded_array<void *>([&] { return tdm::array_of_pointers(statement->selectors); });
}

void tdm_selection_statement_get_sections(tdm_selection_statement *statement,
                                          tdm_statement_env *env, const tdm_arr *sections,
                                          void (*function)(void *handle, void *user), int verbose,
                                          void *user)
{
  guarded([&] {
    SelectionFunctionWrapper selected(function, user);
    statement->select(*env, {static_cast<TDMSection *const *>(sections->items), sections->count},
                      selected, verbose != 0);
  });
}

tdm_source_location *
tdm_selection_statement_get_source_location(const tdm_selection_statement *statement)
{
  return tdm::handle(statement->location("select"));
}
