// The rules of spaces, their stacks and heaps.
#include "common/failures.h"
#include "language/parser.h"

using tdm::TokenSet;

// space_definition: "space" identifier tag_list "{" space_item* "}"
void TDMParser::space_definition(TDMFileSpace &space)
{
  constexpr TokenSet items = {KEY_mau,           KEY_id,
                              KEY_align,         KEY_page_size,
                              KEY_page,          KEY_direction,
                              KEY_map,           KEY_address_literal_space,
                              KEY_bank,          KEY_stack,
                              KEY_heap,          KEY_copytable,
                              KEY_direct_init,   KEY_start_address,
                              KEY_reserved,      KEY_vector_table,
                              KEY_section_layout};
  match(KEY_space);
  space.name = identifier(space, "name");
  tag_list();
  match(LCURLY);
  while (at(items)) space_item(space);
  match(RCURLY);
}

// space_item: space_property ";" | section_layout_definition | vector_table_definition
//           | reserved_range
void TDMParser::space_item(TDMFileSpace &space)
{
  switch (LA(1)) {
  case KEY_reserved:
    space.reservedRanges.push_back(reserved_range());
    break;
  case KEY_section_layout:
    section_layout_definition(tdm::append_new(space.sectionLayouts), tdm::name_of(space.name));
    break;
  case KEY_vector_table:
    space.vectorTables.push_back(vector_table_definition());
    break;
  default:
    space_property(space);
    match(SEMICOLON);
    break;
  }
}

// space_property: "mau" "=" expression | "id" "=" number | align_value
//               | "page_size" "=" expression [page_ranges] | "page"
//               | "direction" "=" direction_value | "address_literal_space" "=" identifier
//               | map_definition | bank_definition | stack_definition | heap_definition
//               | copytable_definition | direct_init_definition | start_address_spec
void TDMParser::space_property(TDMFileSpace &space)
{
  switch (LA(1)) {
  case KEY_mau:
    space_mau(space);
    break;
  case KEY_id:
    space_id(space);
    break;
  case KEY_align:
    space_alignment(space);
    break;
  case KEY_page_size:
    space_page_size(space);
    break;
  case KEY_page:
    keep(space, "pageRestrictSections");
    consume();
    space.pageRestrictSections = true;
    break;
  case KEY_direction:
    consume();
    match(EQUALS);
    keep(space, "locateDirection");
    space.locateDirection = direction_value();
    break;
  case KEY_address_literal_space:
    space_literal_space(space);
    break;
  case KEY_map:
    append_mapping(space);
    break;
  case KEY_bank:
    bank_definition(tdm::append_new(space.banks));
    break;
  case KEY_stack:
    stack_definition(tdm::append_new(space.stacks));
    break;
  case KEY_heap:
    heap_definition(tdm::append_new(space.heaps));
    break;
  case KEY_copytable:
    space_copy_table(space);
    break;
  case KEY_direct_init:
    space_direct_init(space);
    break;
  case KEY_start_address:
    keep(space, "start_address");
    space.startAddress = start_address_spec();
    break;
  default:
    no_viable_alternative();
  }
}

// "mau" "=" expression
void TDMParser::space_mau(TDMFileSpace &space)
{
  keep(space, "mauSize");
  match(KEY_mau);
  match(EQUALS);
  tdm::ExpressionPtr value = expression();
  if (space.mauSize)
    throw new TDMFileSyntaxException("trying to set mau size twice in space " +
                                     tdm::name_of(space.name));
  space.mauSize = std::move(value);
}

// "id" "=" number
void TDMParser::space_id(TDMFileSpace &space)
{
  keep(space, "id");
  match(KEY_id);
  match(EQUALS);
  const std::int32_t value = tdm::low_word(number());
  if (space.id >= 0)
    throw new TDMFileSyntaxException("trying to set id twice in space " + tdm::name_of(space.name));
  space.id = value;
}

// align_value
void TDMParser::space_alignment(TDMFileSpace &space)
{
  keep(space, "alignment");
  tdm::ExpressionPtr value = align_value();
  if (space.alignment)
    throw new TDMFileSyntaxException("trying to set alignment twice in space " +
                                     tdm::name_of(space.name));
  space.alignment = std::move(value);
}

// "page_size" "=" expression ["[" range_value "]" ("|" "[" range_value "]")*]
void TDMParser::space_page_size(TDMFileSpace &space)
{
  keep(space, "pageSize");
  match(KEY_page_size);
  match(EQUALS);
  tdm::ExpressionPtr value = expression();
  if (space.pageSize)
    throw new TDMFileSyntaxException("trying to set page size twice in space " +
                                     tdm::name_of(space.name));
  space.pageSize = std::move(value);
  optional_page_ranges(space.pages, {SEMICOLON});
}

void TDMParser::optional_page_ranges(tdm::RecordList<tdm::FileRange> &pages,
                                     const TokenSet &following)
{
  if (!at(LBRACK)) {
    require_next(following);
    return;
  }
  do {
    match(LBRACK);
    pages.push_back(range_value());
    match(RBRACK);
  } while (accept(BAR));
}

// "address_literal_space" "=" identifier
void TDMParser::space_literal_space(TDMFileSpace &space)
{
  keep(space, "address_literal_space");
  match(KEY_address_literal_space);
  match(EQUALS);
  tdm::Text name = identifier();
  if (space.addressLiteralSpace)
    throw new TDMFileSyntaxException("trying to set address literal space twice in space " +
                                     tdm::name_of(space.name));
  space.addressLiteralSpace = name;
}

// copytable_definition, once; refused before it is read
void TDMParser::space_copy_table(TDMFileSpace &space)
{
  if (space.copyTable)
    throw new TDMFileSyntaxException("trying to define copy table twice in space " +
                                     tdm::name_of(space.name));
  space.copyTable = std::make_unique<TDMFileCopyTable>();
  copytable_definition(*space.copyTable);
  keep(space, "table");
}

// direct_init_definition, once; refused before it is read
void TDMParser::space_direct_init(TDMFileSpace &space)
{
  if (space.directInit)
    throw new TDMFileSyntaxException("trying to define direct init section twice in space " +
                                     tdm::name_of(space.name));
  space.directInit = std::make_unique<TDMFileDirectInit>();
  direct_init_definition(*space.directInit);
}

// reserved_range: "reserved" tag_list expression ".." expression ";"
tdm::FileRange TDMParser::reserved_range()
{
  match(KEY_reserved);
  tag_list();
  tdm::FileRange range = range_value();
  match(SEMICOLON);
  return range;
}

// direction_value: "low_to_high" | "high_to_low"
int TDMParser::direction_value()
{
  switch (LA(1)) {
  case KEY_low_to_high:
    consume();
    return tdm::kLowToHigh;
  case KEY_high_to_low:
    consume();
    return tdm::kHighToLow;
  default:
    no_viable_alternative();
  }
}

// align_value: "align" "=" expression
tdm::ExpressionPtr TDMParser::align_value()
{
  match(KEY_align);
  match(EQUALS);
  return expression();
}

// stack_definition: "stack" string_value "(" stack_heap_property ("," stack_heap_property)* ")"
void TDMParser::stack_definition(TDMFileStackDef &stack)
{
  keep(stack, "stack");
  match(KEY_stack);
  stack.name = string_value(stack, "name");
  parenthesized_list([&] { stack_heap_property(stack); });
}

// heap_definition: "heap" string_value "(" stack_heap_property ("," stack_heap_property)* ")"
void TDMParser::heap_definition(TDMFileHeapDef &heap)
{
  keep(heap, "heap");
  match(KEY_heap);
  heap.name = string_value(heap, "name");
  parenthesized_list([&] { stack_heap_property(heap); });
}

// stack_heap_property: "id" "=" expression | align_value | "min_size" "=" expression
//                    | "grows" "=" direction_value | "fixed" | tag_property
void TDMParser::stack_heap_property(TDMFileStackOrHeapDef &definition)
{
  switch (LA(1)) {
  case KEY_id:
    consume();
    match(EQUALS);
    definition.set_id(expression(definition, "id"));
    break;
  case KEY_align:
    keep(definition, "alignment");
    definition.set_alignment(align_value());
    break;
  case KEY_min_size:
    consume();
    match(EQUALS);
    definition.set_minimal_size(expression(definition, "minimalSize"));
    break;
  case KEY_grows:
    consume();
    match(EQUALS);
    keep(definition, "growDirection");
    definition.set_grow_direction(direction_value());
    break;
  case KEY_fixed:
    keep(definition, "fixed");
    consume();
    definition.set_fixed();
    break;
  case KEY_tag:
    tag_property();
    break;
  default:
    no_viable_alternative();
  }
}
