/// @file
/// The words under which the places of an object's parts are kept.
///
/// A place is kept for nearly each word of a description, so its key is a small number: the place
/// of the word in this table, counted from 1. A key that a line of code writes out is looked up by
/// the compiler, which refuses a word that isn't here.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>

namespace tdm {

/// The words, sorted.
inline constexpr auto location_keys = std::to_array<std::string_view>({
    "address",
    "address_literal_space",
    "addressof",
    "algo",
    "alignment",
    "allowAllocAbsolute",
    "allowAllocRanged",
    "archName",
    "attributes",
    "bank",
    "bankNum",
    "base",
    "blockSize",
    "busAddressWidth",
    "busWidth",
    "checksum",
    "clustered",
    "condition",
    "connectedDestinationLines",
    "connectedSourceLines",
    "contiguous",
    "copy",
    "copyTableCoreName",
    "copyTableSpaceName",
    "copyUnit",
    "copytable",
    "coreName",
    "cpuName",
    "crossReferences",
    "defaultCopyDestination",
    "default_inline",
    "default_value",
    "derivativeName",
    "destination",
    "destinationBankNum",
    "destinationOffset",
    "end",
    "exec_priority",
    "falseStatement",
    "fillSpec",
    "fixed",
    "group",
    "growDirection",
    "heap",
    "id",
    "id_symbol_prefix",
    "loadAddress",
    "loadTimeGroup",
    "locateDirection",
    "loop_offset",
    "map",
    "mauSize",
    "memName",
    "memoryReference",
    "memtype",
    "minimalSize",
    "name",
    "nocopy",
    "number",
    "objName",
    "objType",
    "op",
    "optional",
    "ordered",
    "outputSectionName",
    "overflowSectionName",
    "overlay",
    "pageAlign",
    "pageNum",
    "pageRestrictROMCopies",
    "pageRestrictSections",
    "pageSize",
    "paged",
    "priority",
    "range",
    "referenceTree",
    "reserved",
    "runAddress",
    "run_address",
    "sectionName",
    "section_layout",
    "section_setup",
    "select",
    "size",
    "sizeof",
    "sourceOffset",
    "spaceName",
    "spaceRef",
    "space_name",
    "speed",
    "stack",
    "start",
    "startAddress",
    "start_address",
    "statement",
    "stub_arg_address",
    "stub_arg_bank",
    "stub_arg_switch",
    "stub_prefix",
    "stub_template",
    "switch_arg_bank",
    "switch_prefix",
    "switch_template",
    "symbolName",
    "symbol_name",
    "table",
    "template_name",
    "template_symbol_name",
    "trueStatement",
    "type",
    "value",
    "vector_name_prefix",
    "vector_size",
});
static_assert(std::ranges::is_sorted(location_keys));

/// The number of the word, or 0.
[[nodiscard]] constexpr std::uint32_t find_location_key(std::string_view text)
{
  const auto found = std::ranges::lower_bound(location_keys, text);
  if (found == location_keys.end() || *found != text) return 0;
  return static_cast<std::uint32_t>(found - location_keys.begin()) + 1;
}

/// The number of a word that must be in the table.
[[nodiscard]] consteval std::uint32_t known_location_key(std::string_view text)
{
  const std::uint32_t number = find_location_key(text);
  if (number == 0) throw "no such key";
  return number;
}

} // namespace tdm
