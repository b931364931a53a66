// The rules of section setups, and of the references to spaces that several constructs share.
#include "common/failures.h"
#include "language/parser.h"
#include "preprocessor/string_pool.h"

using tdm::TokenSet;
using tdm::TokenSets;

// section_setup_definition: "section_setup" space_path tag_list "{" section_setup_item* "}"
void TDMParser::section_setup_definition(TDMFileSectionSetup &setup)
{
  constexpr TokenSet items = {
      KEY_stack,         KEY_heap,     KEY_copytable, KEY_vector_table,
      KEY_start_address, KEY_reserved, KEY_modify,    KEY_prohibit_references_to};
  keep(setup, "section_setup");
  match(KEY_section_setup);
  space_path(setup, setup.cpuName, setup.coreName, setup.spaceName);
  tag_list();
  match(LCURLY);
  while (at(items)) section_setup_item(setup);
  match(RCURLY);
}

// section_setup_item: stack_definition ";" | heap_definition ";" | copytable_definition ";"
//                   | vector_table_definition | start_address_spec ";" | reserved_range
//                   | "modify" input_modification | prohibit_references ";"
void TDMParser::section_setup_item(TDMFileSectionSetup &setup)
{
  switch (LA(1)) {
  case KEY_reserved:
    setup.reservedRanges.push_back(reserved_range());
    return;
  case KEY_vector_table:
    setup.vectorTables.push_back(vector_table_definition());
    return;
  case KEY_modify:
    consume();
    input_modification(tdm::append_new(setup.inputModifications));
    return;
  case KEY_stack:
    stack_definition(tdm::append_new(setup.stacks));
    break;
  case KEY_heap:
    heap_definition(tdm::append_new(setup.heaps));
    break;
  case KEY_copytable:
    copytable_definition(tdm::append_new(setup.copyTables));
    break;
  case KEY_start_address:
    keep(setup, "startAddress");
    setup.startAddress = start_address_spec();
    break;
  case KEY_prohibit_references_to:
    prohibit_references(setup);
    break;
  default:
    no_viable_alternative();
  }
  match(SEMICOLON);
}

// prohibit_references: "prohibit_references_to" space_reference ("," space_reference)*
void TDMParser::prohibit_references(TDMFileSectionSetup &setup)
{
  match(KEY_prohibit_references_to);
  comma_list([&] { setup.prohibitedSpaces.push_back(space_reference()); });
}

// input_modification: "input" "(" input_property ("," input_property)* ")"
//                     "{" (select_statement ";")* "}"
void TDMParser::input_modification(TDMFileInputModification &modification)
{
  match(KEY_input);
  parenthesized_list([&] { input_property(modification); });
  match(LCURLY);
  while (at(KEY_select)) {
    modification.selects.push_back(select_statement());
    match(SEMICOLON);
  }
  match(RCURLY);
}

// input_property: "space" "=" space_reference | "attributes" "=" attribute_change+ | "copy"
void TDMParser::input_property(TDMFileInputModification &modification)
{
  if (accept(KEY_space)) {
    match(EQUALS);
    std::unique_ptr<TDMFileCopySubTableSpace> space = space_reference();
    if (modification.space)
      throw new TDMFileSyntaxException("trying to set space twice for input section modification");
    modification.space = std::move(space);
    return;
  }
  require_next({KEY_attributes, KEY_copy});
  std::unique_ptr<TDMFileSelectAttrs> attributes;
  if (accept(KEY_copy)) {
    attributes = std::make_unique<TDMFileSelectAttrs>();
    attributes->attributesSet.w = true; // what is copied at start is written
  } else {
    attributes = select_attributes();
  }
  if (modification.selector)
    throw new TDMFileSyntaxException(
        "trying to set attributes twice for input section modification");
  modification.selector = std::move(attributes);
}

// space_reference: space_path
std::unique_ptr<TDMFileCopySubTableSpace> TDMParser::space_reference()
{
  auto reference = std::make_unique<TDMFileCopySubTableSpace>();
  keep(*reference, "spaceRef");
  space_path(*reference, reference->cpuName, reference->coreName, reference->spaceName);
  return reference;
}

// space_path: [identifier] ":" [identifier] ":" space_name_list
void TDMParser::space_path(TDMFileObject &record, std::optional<tdm::Text> &cpu,
                           std::optional<tdm::Text> &core, std::optional<tdm::Text> &space)
{
  optional_name(record, "cpuName", cpu);
  match(COLON);
  optional_name(record, "coreName", core);
  match(COLON);
  keep(record, "spaceName");
  space = space_name_list();
}

// [identifier], before a colon
void TDMParser::optional_name(TDMFileObject &record, LocationKey key,
                              std::optional<tdm::Text> &name)
{
  if (at(TokenSets::identifier_start))
    name = identifier(record, key);
  else
    require_next({COLON});
}

// space_name_list: identifier ("|" identifier)*
tdm::Text TDMParser::space_name_list()
{
  const tdm::Text first = identifier();
  if (!at(BAR)) return first;
  std::string names = first.str();
  while (accept(BAR)) (names += '|') += identifier();
  return tdm::pooled_text(names);
}
