#include "group_text.h"

#include <fmt/format.h>

#include "format.h"
#include "object_text.h"
#include "session.h"

namespace tool {

namespace {

std::string with_word(const char *word, const std::string &text)
{
  return text.empty() ? "" : std::string(word) + " " + text;
}

std::string quoted(const char *name)
{
  return name != nullptr ? "\"" + std::string(name) + "\"" : "";
}

/// "mem:flash/cached"
std::string reference_text(const tdm_memory *memory, const tdm_mapping *mapping)
{
  std::string text = "mem:" + text_of(tdm_memory_get_name(memory));
  tdm_inspect_mapping record;
  if (mapping != nullptr && tdm_inspect_get_mapping(mapping, &record) != 0)
    text += "/" + text_of(record.name);
  return text;
}

std::string range_text(const tdm_expression *low, const tdm_expression *high)
{
  return "[" + address_text(low) + (high != nullptr ? ".." + address_text(high) : " ..") + "]";
}

std::string range_text(const tdm_inspect_location_range &range)
{
  if (range.memory == nullptr) return range_text(range.low, range.high);
  const std::string text = reference_text(range.memory, range.mapping);
  return range.low != nullptr ? text + range_text(range.low, range.high) : text;
}

/// "rw" of a set that is given; a set of none is told, too.
std::string attributes_text(const tdm_attributes *attributes)
{
  if (attributes == nullptr) return "";
  const std::string letters = letters_of(attributes);
  return letters.empty() ? "no attributes" : "attributes " + letters;
}

std::string pages_text(const tdm_group *group)
{
  std::string text;
  for (const auto &page :
       take_elements<tdm_inspect_expression_range>(tdm_inspect_group_pages(group)))
    text += (text.empty() ? " " : " | ") + range_text(page.low, page.high);
  return text;
}

} // namespace

std::string letters_of(const tdm_attributes *attributes)
{
  std::string letters;
  const auto add = [&](int flag, char letter) {
    if (flag != 0) letters += letter;
  };
  add(tdm_attributes_is_readable(attributes), 'r');
  add(tdm_attributes_is_writable(attributes), 'w');
  add(tdm_attributes_is_executable(attributes), 'x');
  add(tdm_attributes_is_inited(attributes), 'i');
  add(tdm_attributes_is_scratch(attributes), 's');
  add(tdm_attributes_is_blanked(attributes), 'b');
  add(tdm_inspect_attributes_is_p(attributes), 'p');
  return letters;
}

std::string written_text(const tdm_group_location *location)
{
  tdm_inspect_group_location record;
  if (tdm_inspect_get_group_location(location, &record) == 0) return "";
  if (record.address != nullptr && record.memory == nullptr) return address_text(record.address);
  if (record.address != nullptr)
    return reference_text(record.memory, record.mapping) + "[" + address_text(record.address) + "]";
  std::string text;
  for (const auto &range :
       take_elements<tdm_inspect_location_range>(tdm_inspect_group_location_ranges(location)))
    text += (text.empty() ? "" : " | ") + range_text(range);
  return text;
}

void add_rules(Facts &facts, const tdm_group *group)
{
  tdm_inspect_group rules;
  if (tdm_inspect_get_group(group, &rules) == 0) return;
  facts.add_if(rules.contiguous != 0, "contiguous");
  facts.add_if(rules.clustered != 0, "clustered");
  facts.add_if(rules.ordered != 0, "ordered");
  facts.add_if(rules.overlay != 0, "overlay");
  facts.add_if(rules.copy != 0, "copy");
  facts.add_if(rules.nocopy != 0, "nocopy");
  facts.add_if(rules.load_time != 0 && tdm_group_get_address(group) == nullptr, "load_addr");
  facts.add(attributes_text(rules.attributes));
  facts.add(fill_text(rules.fill));
  if (rules.page_number != nullptr)
    facts.add("page " + number_text(rules.page_number));
  else
    facts.add_if(rules.paged != 0, "page");
  if (rules.page_size != nullptr)
    facts.add("page_size " + address_text(rules.page_size) + pages_text(group));
  if (rules.priority != 1) facts.add(fmt::format("priority {}", rules.priority));
  facts.add(with_word("create_section", quoted(rules.output_section_name)));
  facts.add_if(rules.cross_references != 0, "allow_cross_references");
}

void add_inherited(Facts &facts, const tdm_statement_env *outer, const tdm_group *group)
{
  tdm_inspect_statement_env rules;
  tdm_inspect_group own;
  if (tdm_inspect_get_statement_env(outer, &rules) == 0 || tdm_inspect_get_group(group, &own) == 0)
    return;
  const auto add_flag = [&](int32_t inherited, int32_t stated, const char *word) {
    facts.add_if(inherited != 0 && stated == 0, word);
  };
  add_flag(rules.contiguous, own.contiguous, "contiguous");
  add_flag(rules.clustered, own.clustered, "clustered");
  add_flag(rules.ordered, own.ordered, "ordered");
  add_flag(rules.overlay, own.overlay, "overlay");
  add_flag(rules.copy, own.copy, "copy");
  add_flag(rules.nocopy, own.nocopy, "nocopy");
  add_flag(rules.load_time, own.load_time, "load_addr");
  if (own.alignment == nullptr) facts.add(with_word("align", number_text(rules.alignment)));
  if (own.attributes == nullptr) facts.add(attributes_text(rules.attributes));
  if (own.fill == nullptr) facts.add(fill_text(rules.fill));
  if (own.page_number == nullptr && rules.page_number != nullptr)
    facts.add("page " + number_text(rules.page_number));
  else
    add_flag(rules.paged, own.paged, "page");
  if (own.priority == 1 && rules.priority != 1)
    facts.add(fmt::format("priority {}", rules.priority));
  if (own.output_section_name == nullptr)
    facts.add(with_word("create_section", quoted(rules.output_section_name)));
  add_flag(rules.allow_cross_references, own.cross_references, "allow_cross_references");
}

std::string conditions_text(const tdm_selection_statement *statement)
{
  std::string text;
  for (const auto *selector : take_elements<const tdm_section_selector *>(
           tdm_selection_statement_get_selectors(statement))) {
    text += text.empty() ? "" : " and ";
    for (const auto &[sign, attributes] :
         {std::pair("+", tdm_inspect_section_selector_required(selector)),
          std::pair("-", tdm_inspect_section_selector_excluded(selector))}) {
      const std::string letters = attributes != nullptr ? letters_of(attributes) : "";
      if (!letters.empty()) text += sign + letters;
    }
  }
  return text;
}

} // namespace tool
