// The additive readers of positions: one for all classes, since all keep them in the same base.
#include "common/tdm_object.h"
#include "interface/guard.h"
#include "interface/tdm_inspect_model.h"
#include "interface/values.h"
#include "layout/group.h"
#include "model/bus.h"
#include "model/core.h"
#include "model/memory.h"
#include "model/processor.h"
#include "model/space.h"

using tdm::guarded;
using tdm::guarded_array;

namespace {

/// The base need not be where the object begins, so each kind is converted as what it is.
template <class Object> const TDMObject *as(const void *object)
{
  return static_cast<const Object *>(object);
}

struct Kind {
  int kind;
  const TDMObject *(*base)(const void *object);
};

constexpr Kind kinds[] = {
    {TDM_OBJECT_PROCESSOR, as<TDMProcessor>},
    {TDM_OBJECT_CORE, as<TDMCore>},
    {TDM_OBJECT_BUS, as<TDMBus>},
    {TDM_OBJECT_MEMORY, as<TDMMemory>},
    {TDM_OBJECT_SPACE, as<TDMSpace>},
    {TDM_OBJECT_MAPPING, as<TDMMapping>},
    {TDM_OBJECT_STACK_DEF, as<TDMStackDef>},
    {TDM_OBJECT_HEAP_DEF, as<TDMHeapDef>},
    {TDM_OBJECT_COPY_TABLE, as<TDMCopyTable>},
    {TDM_OBJECT_DIRECT_INIT, as<TDMDirectInit>},
    {TDM_OBJECT_VECTOR_TABLE, as<TDMVectorTable>},
    {TDM_OBJECT_VECTOR, as<TDMVector>},
    {TDM_OBJECT_VECTOR_VALUE, as<TDMVectorValue>},
    {TDM_OBJECT_START_ADDRESS, as<TDMStartAddress>},
    {TDM_OBJECT_BANK_DEF, as<TDMBankDef>},
    {TDM_OBJECT_INPUT_MODIFICATION, as<TDMInputModification>},
    {TDM_OBJECT_SECTION_LAYOUT, as<TDMSectionLayout>},
    {TDM_OBJECT_GROUP_LOCATION, as<TDMGroupLocation>},
    {TDM_OBJECT_EXPRESSION, as<TDMExpression>},
    {TDM_OBJECT_STATEMENT, as<TDMStatement>},
    {TDM_OBJECT_ASSIGNMENT, as<TDMAssignment>},
    {TDM_OBJECT_BLOCK, as<TDMBlock>},
    {TDM_OBJECT_IF_STATEMENT, as<TDMIfStatement>},
    {TDM_OBJECT_CREATE_SECTION_STATEMENT, as<TDMCreateSectionStatement>},
    {TDM_OBJECT_GROUP, as<TDMGroup>},
    {TDM_OBJECT_HEAP_STATEMENT, as<TDMHeapStatement>},
    {TDM_OBJECT_MEMORY_COPY_STATEMENT, as<TDMMemoryCopyStatement>},
    {TDM_OBJECT_RESERVED_STATEMENT, as<TDMReservedStatement>},
    {TDM_OBJECT_SELECTION_STATEMENT, as<TDMSelectionStatement>},
    {TDM_OBJECT_STACK_STATEMENT, as<TDMStackStatement>},
    {TDM_OBJECT_STRUCT_STATEMENT, as<TDMStructStatement>},
    {TDM_OBJECT_TABLE_STATEMENT, as<TDMTableStatement>},
};

/// The table stands in the order of the kinds, which begin at 1.
constexpr bool in_order()
{
  int expected = 1;
  for (const Kind &entry : kinds)
    if (entry.kind != expected++) return false;
  return true;
}
static_assert(in_order());

/// Null for a kind that there isn't.
const TDMObject *object_of(int kind, const void *object)
{
  if (kind < 1 || kind > static_cast<int>(std::size(kinds))) return nullptr;
  return kinds[kind - 1].base(object);
}

} // namespace

tdm_arr *tdm_inspect_position_keys(int kind, const void *object)
{
  return guarded_array<const char *>([&] {
    const TDMObject *found = object_of(kind, object);
    if (found == nullptr) return tdm::empty_array(sizeof(const char *));
    return tdm::array_of(found->sourceLocations.entries(),
                         [](const auto &entry) { return tdm::text_result(entry.first.text()); });
  });
}

int tdm_inspect_position(int kind, const void *object, const char *key, tdm_srcpos *out)
{
  return guarded([&] {
    const TDMObject *found = object_of(kind, object);
    if (found == nullptr || key == nullptr) return 0;
    const TDMSourceLocation *place = found->location(LocationKey::find(key));
    if (place == nullptr) return 0;
    *out = {tdm::text_result(place->file.text()), place->line, place->column, nullptr};
    return 1;
  });
}
