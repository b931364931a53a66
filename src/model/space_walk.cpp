// Reads a space to a walker, in the one order that all walks have.
#include "layout/space_walker.h"
#include "layout/statement_env.h"
#include "model/space.h"

namespace {

std::shared_ptr<const std::vector<TDMRange>>
copied(const tdm::ObjectList<std::unique_ptr<TDMRange>> &ranges)
{
  auto copies = std::make_shared<std::vector<TDMRange>>();
  copies->reserve(ranges.size());
  for (const auto &range : ranges) copies->push_back(*range);
  return copies;
}

/// The environment goes before the end of the layout is told.
void walk_statements(TDMSectionLayout &layout, const TDMSpace &space, TDMSpaceWalker &walker,
                     TDMStatementEnv &env)
{
  env.direction = layout.locate_direction;
  env.page_size = space.page_size;
  env.page_ranges = copied(space.page_ranges);
  walker.section_layout_begin(layout);
  layout.statement->walk(walker, env, space.layout_view());
}

} // namespace

void TDMSpace::walk(TDMSpaceWalker &walker)
{
  for (const auto &stack : stacks) walker.stack_def(*stack);
  for (const auto &heap : heaps) walker.heap_def(*heap);
  walker.copy_table(copy_table.get());
  if (direct_init != nullptr) walker.direct_init(*direct_init);
  for (const auto &table : vector_tables) walker.vector_table_begin(*table);
  for (const auto &range : reserved_ranges) walker.reserved_range(*range);
  for (const auto &layout : section_layouts) {
    walk_statements(*layout, *this, walker, *walker.new_statement_env());
    walker.section_layout_end(*layout);
  }
  for (const auto &table : vector_tables) walker.vector_table_end(*table);
}
