// The additive readers of spaces: their kind, and the lists of what they define.
#include "interface/inspect_lists.h"
#include "interface/tdm_inspect_model.h"
#include "model/space.h"

int tdm_inspect_space_kind(const tdm_space *space)
{
  if (dynamic_cast<const TDMCloneSpace *>(space) != nullptr) return TDM_SPACE_CLONE;
  if (dynamic_cast<const TDMVoidSpace *>(space) != nullptr) return TDM_SPACE_NON_ALLOC;
  return TDM_SPACE_DEFINED;
}

tdm_arr *tdm_inspect_space_members(const tdm_space *space)
{
  const auto *clone = dynamic_cast<const TDMCloneSpace *>(space);
  return clone != nullptr ? tdm::handle_list(clone->members) : tdm::empty_array(sizeof(void *));
}

tdm_arr *tdm_inspect_space_stacks(const tdm_space *space)
{
  return tdm::handle_list(space->stacks);
}

tdm_arr *tdm_inspect_space_heaps(const tdm_space *space)
{
  return tdm::handle_list(space->heaps);
}

tdm_arr *tdm_inspect_space_vector_tables(const tdm_space *space)
{
  return tdm::handle_list(space->vector_tables);
}

tdm_arr *tdm_inspect_space_reserved_ranges(const tdm_space *space)
{
  return tdm::handle_list(space->reserved_ranges);
}

tdm_arr *tdm_inspect_space_section_layouts(const tdm_space *space)
{
  return tdm::handle_list(space->section_layouts);
}

tdm_copy_table *tdm_inspect_space_copy_table(const tdm_space *space)
{
  return space->copy_table.get();
}

tdm_direct_init *tdm_inspect_space_direct_init(const tdm_space *space)
{
  return space->direct_init.get();
}

tdm_bank_def *tdm_inspect_space_bank_def(const tdm_space *space)
{
  return space->bank_def.get();
}

tdm_arr *tdm_inspect_space_prohibited_spaces(const tdm_space *space)
{
  return tdm::number_list(space->prohibited_spaces);
}

tdm_arr *tdm_inspect_space_input_modifications(const tdm_space *space)
{
  return tdm::handle_list(space->input_modifications);
}
