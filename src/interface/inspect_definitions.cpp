// The additive readers of what a space defines: start address, stacks, heaps, tables, banks, input
// modifications; and of fills, attributes and selectors, wherever they stand.
#include "interface/inspect_lists.h"
#include "interface/tdm_inspect_model.h"
#include "layout/section_selector.h"
#include "model/space.h"

#include <algorithm>

using tdm::guarded;
using tdm::guarded_array;
using tdm::text_result;

namespace {

/// In the order of names: the order of the addresses of spaces would differ from run to run.
tdm_arr *destinations(const tdm::ObjectMap<TDMSpace *, TDMSpace *> &pairs)
{
  return guarded_array<tdm_inspect_copy_destination>([&] {
    std::vector<std::pair<std::string, tdm_inspect_copy_destination>> sorted;
    sorted.reserve(pairs.size());
    for (const auto &[source, destination] : pairs)
      sorted.push_back({source->full_name(), {source, destination}});
    std::sort(sorted.begin(), sorted.end(),
              [](const auto &a, const auto &b) { return a.first < b.first; });
    return tdm::array_of(sorted, [](const auto &entry) { return entry.second; });
  });
}

int direction_of(const TDMStackOrHeapDef &definition)
{
  return definition.high_to_low ? TDM_HIGH_TO_LOW : TDM_LOW_TO_HIGH;
}

tdm_attributes *attributes_of(const tdm_section_selector *selector,
                              TDMAttributes TDMSectionAttributesSelector::*flags)
{
  const auto *attributes = dynamic_cast<const TDMSectionAttributesSelector *>(selector);
  return attributes != nullptr ? tdm::handle(&(attributes->*flags)) : nullptr;
}

} // namespace

// Start address, stacks, heaps.

int tdm_inspect_get_start_address(const tdm_start_address *start, tdm_inspect_start_address *out)
{
  return guarded([&] {
    *out = {text_result(start->symbol), start->address.get(), start->bank};
    return 1;
  });
}

tdm_expression *tdm_inspect_stack_def_minimal_size(const tdm_stack_def *definition)
{
  return definition->minimal_size.get();
}

int tdm_inspect_stack_def_direction(const tdm_stack_def *definition)
{
  return direction_of(*definition);
}

tdm_expression *tdm_inspect_stack_def_id(const tdm_stack_def *definition)
{
  return definition->id.get();
}

tdm_expression *tdm_inspect_heap_def_minimal_size(const tdm_heap_def *definition)
{
  return definition->minimal_size.get();
}

int tdm_inspect_heap_def_direction(const tdm_heap_def *definition)
{
  return direction_of(*definition);
}

// Copy tables and direct initialisation.

int tdm_inspect_get_copy_table(const tdm_copy_table *table, tdm_inspect_copy_table *out)
{
  return guarded([&] {
    *out = {text_result(table->name), table->alignment, table->copy_unit,
            table->default_destination, table->page_restrict_rom_copies ? 1 : 0};
    return 1;
  });
}

tdm_arr *tdm_inspect_copy_table_destinations(const tdm_copy_table *table)
{
  return destinations(table->destinations);
}

tdm_arr *tdm_inspect_copy_table_sub_tables(const tdm_copy_table *table)
{
  return guarded_array<void *>([&] {
    return tdm::array_of(table->sub_tables,
                         [](const TDMCopySubTable &part) { return tdm::handle(&part); });
  });
}

const char *tdm_inspect_copy_sub_table_symbol(const tdm_copy_sub_table *table)
{
  return guarded([&] { return text_result(table->symbol); });
}

tdm_arr *tdm_inspect_copy_sub_table_spaces(const tdm_copy_sub_table *table)
{
  return tdm::handle_list(table->spaces);
}

int tdm_inspect_get_direct_init(const tdm_direct_init *init, tdm_inspect_direct_init *out)
{
  return guarded([&] {
    *out = {text_result(init->name), init->alignment, init->default_destination};
    return 1;
  });
}

tdm_arr *tdm_inspect_direct_init_destinations(const tdm_direct_init *init)
{
  return destinations(init->destinations);
}

// Banks.

int tdm_inspect_get_bank_def(const tdm_bank_def *banks, tdm_inspect_bank_def *out)
{
  return guarded([&] {
    tdm_inspect_bank_def record = {.kind = text_result(banks->kind_name()),
                                   .name = text_result(banks->name),
                                   .space_name = text_result(banks->space_name),
                                   .stub_template = text_result(banks->stub_template),
                                   .stub_prefix = text_result(banks->stub_prefix),
                                   .stub_arg_address = text_result(banks->stub_arg_address),
                                   .stub_arg_bank = text_result(banks->stub_arg_bank),
                                   .stub_arg_switch = nullptr,
                                   .switch_template = nullptr,
                                   .switch_prefix = nullptr,
                                   .switch_arg_bank = nullptr};
    if (const auto *own = dynamic_cast<const TDMBankDependentSwitchBankDef *>(banks)) {
      record.stub_arg_switch = text_result(own->stub_arg_switch);
      record.switch_template = text_result(own->switch_template);
      record.switch_prefix = text_result(own->switch_prefix);
      record.switch_arg_bank = text_result(own->switch_arg_bank);
    }
    *out = record;
    return 1;
  });
}

tdm_arr *tdm_inspect_bank_def_banks(const tdm_bank_def *banks)
{
  return tdm::number_list(banks->banks);
}

// Input modifications, fills, attributes, selectors.

tdm_space *tdm_inspect_input_modification_space(const tdm_input_modification *modification)
{
  return modification->space;
}

tdm_section_selector *
tdm_inspect_input_modification_selector(const tdm_input_modification *modification)
{
  return modification->selector.get();
}

tdm_arr *tdm_inspect_input_modification_selections(const tdm_input_modification *modification)
{
  return tdm::handle_list(modification->selects);
}

tdm_arr *tdm_inspect_fillspec_values(const tdm_fillspec *fill)
{
  return tdm::handle_list(fill->values);
}

tdm_expression *tdm_inspect_fillspec_alignment(const tdm_fillspec *fill)
{
  return fill->alignment.get();
}

int tdm_inspect_attributes_is_p(const tdm_attributes *attributes)
{
  return attributes->p ? 1 : 0;
}

tdm_attributes *tdm_inspect_section_selector_required(const tdm_section_selector *selector)
{
  return attributes_of(selector, &TDMSectionAttributesSelector::required);
}

tdm_attributes *tdm_inspect_section_selector_excluded(const tdm_section_selector *selector)
{
  return attributes_of(selector, &TDMSectionAttributesSelector::excluded);
}

const char *tdm_inspect_section_selector_file(const tdm_section_selector *selector)
{
  return guarded([&]() -> const char * {
    const auto *file = dynamic_cast<const TDMSectionFileSelector *>(selector);
    return file != nullptr ? text_result(file->file_name) : nullptr;
  });
}
