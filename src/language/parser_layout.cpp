// The rules of section layouts: the frame, the choice of a statement, and the statements that
// contain no others.
#include "common/failures.h"
#include "language/parser.h"

using tdm::TokenSet;
using tdm::TokenSets;

// section_layout_definition: "section_layout" [layout_target]
//                            ["(" layout_attribute ("," layout_attribute)* ")"] statement_block
void TDMParser::section_layout_definition(TDMFileSectionLayout &layout, tdm::Text enclosing_space)
{
  keep(layout, "section_layout");
  match(KEY_section_layout);
  if (at(TokenSets::identifier_start | TokenSet{COLON}))
    space_path(layout, layout.cpuName, layout.coreName, layout.spaceName); // layout_target
  else
    require_next({LPAREN, LCURLY});
  optional_list({LCURLY}, [&] { layout_attribute(layout, enclosing_space); });
  keep(layout, "statement");
  layout.statement = statement_block();
}

// layout_attribute: "direction" "=" direction_value | tag_property
void TDMParser::layout_attribute(TDMFileSectionLayout &layout, tdm::Text enclosing_space)
{
  if (!at(KEY_direction)) {
    require_next({KEY_tag});
    tag_property();
    return;
  }
  consume();
  match(EQUALS);
  keep(layout, "locateDirection");
  const int direction = direction_value();
  if (layout.locateDirection != tdm::kDirectionNotSet)
    throw new TDMFileSyntaxException(
        "trying to set locate direction twice for a section layout of space " +
        layout.spaceName.value_or(enclosing_space));
  layout.locateDirection = direction;
}

// statement_block: "{" statement* "}"
std::unique_ptr<TDMFileBlock> TDMParser::statement_block()
{
  auto block = std::make_unique<TDMFileBlock>();
  block->statements.reserve(4);
  match(LCURLY);
  while (at(TokenSets::statement_start)) block->statements.push_back(statement());
  match(RCURLY);
  return block;
}

// statement: group_statement | section_statement | struct_statement | if_statement
//          | statement_block | simple_statement ";"
TDMFileStatementPtr TDMParser::statement()
{
  switch (LA(1)) {
  case KEY_group:
    return group_statement();
  case KEY_section:
    return section_statement();
  case KEY_struct:
    return struct_statement();
  case KEY_if:
    return if_statement();
  case LCURLY: {
    const NestingGuard guard(*this);
    return statement_block();
  }
  default: {
    TDMFileStatementPtr simple = simple_statement();
    match(SEMICOLON);
    return simple;
  }
  }
}

// The statement of a group or condition. Braces right behind the head are no nesting of their own.
TDMFileStatementPtr TDMParser::nested_statement()
{
  if (at(LCURLY)) return statement_block();
  return statement();
}

// simple_statement: assignment | select_statement | reserved_statement | stack_statement
//                 | heap_statement | table_statement | memcopy_statement
TDMFileStatementPtr TDMParser::simple_statement()
{
  switch (LA(1)) {
  case STRING:
    return assignment();
  case KEY_select:
    return select_statement();
  case KEY_reserved:
    return reserved_statement();
  case KEY_stack:
    return stack_statement();
  case KEY_heap:
    return heap_statement();
  case KEY_copytable:
    return table_statement();
  case KEY_memcopy:
    return memcopy_statement();
  default:
    no_viable_alternative();
  }
}

// assignment: string_value assignment_operator expression
TDMFileStatementPtr TDMParser::assignment()
{
  auto record = std::make_unique<TDMFileAssignment>();
  record->symbolName = string_value(*record, "symbolName");
  keep(*record, "op");
  record->op = assignment_operator();
  record->value = expression(*record, "value");
  return record;
}

// assignment_operator: "=" | ":=" | "+=" | "-=" | "*=" | "/="
std::int32_t TDMParser::assignment_operator()
{
  switch (LA(1)) {
  case EQUALS:
    consume();
    return tdm::kAssign;
  case COLON_EQUALS:
    consume();
    return tdm::kAssignColon;
  case PLUS_EQUALS:
    consume();
    return tdm::kAssignAdd;
  case MINUS_EQUALS:
    consume();
    return tdm::kAssignSub;
  case MULT_EQUALS:
    consume();
    return tdm::kAssignMul;
  case DIV_EQUALS:
    consume();
    return tdm::kAssignDiv;
  default:
    no_viable_alternative();
  }
}

// if_statement: "if" "(" expression ")" statement ["else" statement]
TDMFileStatementPtr TDMParser::if_statement()
{
  const NestingGuard guard(*this);
  auto record = std::make_unique<TDMFileIfStatement>();
  match(KEY_if);
  match(LPAREN);
  record->condition = expression(*record, "condition");
  match(RPAREN);
  keep(*record, "trueStatement");
  record->trueStatement = nested_statement();
  if (at_else_statement()) {
    consume();
    keep(*record, "falseStatement");
    record->falseStatement = nested_statement();
  } else {
    // An `else` that begins nothing might still be that of an enclosing condition.
    require_next(TokenSets::statement_start | TokenSet{RCURLY, KEY_else});
  }
  return record;
}

// One token does not do: `else` may also follow the whole statement, as part of an enclosing one.
bool TDMParser::at_else_statement()
{
  return at(KEY_else) && TokenSets::statement_start.contains(LA(2));
}

// table_statement: "copytable"
TDMFileStatementPtr TDMParser::table_statement()
{
  auto record = std::make_unique<TDMFileTableStatement>();
  keep(*record, "copytable");
  match(KEY_copytable);
  return record;
}

// stack_statement: "stack" string_value ["(" size_or_tag ("," size_or_tag)* ")"]
TDMFileStatementPtr TDMParser::stack_statement()
{
  auto record = std::make_unique<TDMFileStackStatement>();
  match(KEY_stack);
  record->name = string_value(*record, "name");
  optional_list({SEMICOLON}, [&] { size_or_tag(*record, record->size); });
  return record;
}

// heap_statement: "heap" string_value ["(" size_or_tag ("," size_or_tag)* ")"]
TDMFileStatementPtr TDMParser::heap_statement()
{
  auto record = std::make_unique<TDMFileHeapStatement>();
  match(KEY_heap);
  record->sectionName = string_value(*record, "sectionName");
  optional_list({SEMICOLON}, [&] { size_or_tag(*record, record->size); });
  return record;
}

// size_or_tag: "size" "=" expression | tag_property
void TDMParser::size_or_tag(TDMFileObject &record, tdm::ExpressionPtr &size)
{
  if (!at(KEY_size)) {
    require_next({KEY_tag});
    tag_property();
    return;
  }
  keep(record, "size");
  consume();
  match(EQUALS);
  size = expression();
}

// reserved_statement: "reserved" string_value
//                     ["(" reserved_property ("," reserved_property)* ")"]
TDMFileStatementPtr TDMParser::reserved_statement()
{
  auto record = std::make_unique<TDMFileReservedStatement>();
  match(KEY_reserved);
  record->sectionName = string_value(*record, "sectionName");
  optional_list({SEMICOLON}, [&] { reserved_property(*record); });
  return record;
}

// reserved_property: "size" "=" expression | attributes_value | fill_value | alloc_allowed
void TDMParser::reserved_property(TDMFileReservedStatement &record)
{
  switch (LA(1)) {
  case KEY_size:
    keep(record, "size");
    consume();
    match(EQUALS);
    record.size = expression();
    break;
  case KEY_attributes:
    keep(record, "attributes");
    record.attributes = attributes_value();
    break;
  case KEY_fill:
    record.fillSpec = fill_value();
    break;
  case KEY_alloc_allowed:
    alloc_allowed(record);
    break;
  default:
    no_viable_alternative();
  }
}

// alloc_allowed: "alloc_allowed" "=" ("absolute" | "ranged")
void TDMParser::alloc_allowed(TDMFileReservedStatement &record)
{
  match(KEY_alloc_allowed);
  match(EQUALS);
  if (at(KEY_absolute)) {
    keep(record, "allowAllocAbsolute");
  } else {
    require_next({KEY_ranged});
    keep(record, "allowAllocRanged");
    record.allowAllocRanged = true;
  }
  consume();
  record.allowAllocAbsolute = true;
}

// attributes_value: "attributes" "=" IDENTIFIER
tdm::AttributeSet TDMParser::attributes_value()
{
  match(KEY_attributes);
  match(EQUALS);
  return attribute_word();
}

// IDENTIFIER, read letter by letter
tdm::AttributeSet TDMParser::attribute_word()
{
  const std::string_view word = next_token().characters(); // stays, as all texts of tokens do
  match(IDENTIFIER);
  return tdm::attribute_set(word);
}

// memcopy_statement: "memcopy" string_value "(" memcopy_property ("," memcopy_property)* ")"
TDMFileStatementPtr TDMParser::memcopy_statement()
{
  auto record = std::make_unique<TDMFileMemCopyStatement>();
  match(KEY_memcopy);
  record->sectionName = string_value();
  keep(*record, "sectionName");
  parenthesized_list([&] { memcopy_property(*record); });
  return record;
}

// memcopy_property: "memory" "=" memory_name | fill_value
void TDMParser::memcopy_property(TDMFileMemCopyStatement &record)
{
  switch (LA(1)) {
  case KEY_memory: {
    keep(record, "memName");
    consume();
    match(EQUALS);
    tdm::Text name = memory_name();
    if (record.memName)
      throw new TDMFileSyntaxException("trying to set memory name twice for memory copy \"" +
                                       record.sectionName + '"');
    record.memName = name;
    break;
  }
  case KEY_fill: {
    keep(record, "fillSpec");
    std::unique_ptr<TDMFileFillSpec> fill = fill_value();
    if (record.fillSpec)
      throw new TDMFileSyntaxException("trying to set fill specification twice for memory copy \"" +
                                       record.sectionName + '"');
    record.fillSpec = std::move(fill);
    break;
  }
  default:
    no_viable_alternative();
  }
}

// struct_statement: "struct" string_value "{" struct_member* "}"
TDMFileStatementPtr TDMParser::struct_statement()
{
  auto record = std::make_unique<TDMFileStructStatement>();
  match(KEY_struct);
  record->sectionName = string_value(*record, "sectionName");
  match(LCURLY);
  while (at(TokenSets::expression_start)) record->members.push_back(struct_member());
  match(RCURLY);
  return record;
}

// struct_member: expression ":" number ";"
TDMFileStructStatement::Member TDMParser::struct_member()
{
  TDMFileStructStatement::Member member;
  member.value = expression();
  match(COLON);
  member.size = tdm::low_word(number());
  match(SEMICOLON);
  return member;
}

// select_statement: "select" ["ref_tree"] [string_value]
//                   ["(" select_property ("," select_property)* ")"]
std::unique_ptr<TDMFileSelectSectionStatement> TDMParser::select_statement()
{
  auto record = std::make_unique<TDMFileSelectSectionStatement>();
  record->sourceLocations.reserve(2); // what most of them need
  keep(*record, "select");
  match(KEY_select);
  if (at(KEY_ref_tree)) {
    keep(*record, "referenceTree");
    consume();
    record->referenceTree = true;
  } else {
    require_next({STRING, LPAREN, SEMICOLON});
  }
  if (at(STRING))
    record->sectionName = string_value(*record, "sectionName");
  else
    require_next({LPAREN, SEMICOLON});
  optional_list({SEMICOLON}, [&] { select_property(*record); });
  return record;
}

// select_property: "attributes" "=" attribute_change+ | tag_property
void TDMParser::select_property(TDMFileSelectSectionStatement &record)
{
  if (at(KEY_attributes)) {
    record.selectors.push_back(select_attributes());
  } else {
    require_next({KEY_tag});
    tag_property();
  }
}

// "attributes" "=" attribute_change+
std::unique_ptr<TDMFileSelectAttrs> TDMParser::select_attributes()
{
  constexpr TokenSet signs = {PLUS, MINUS};
  auto attributes = std::make_unique<TDMFileSelectAttrs>();
  match(KEY_attributes);
  match(EQUALS);
  require_next(signs);
  while (at(signs)) attribute_change(*attributes);
  return attributes;
}

// attribute_change: ("+" | "-") IDENTIFIER
void TDMParser::attribute_change(TDMFileSelectAttrs &attributes)
{
  tdm::AttributeSet &set = at(PLUS) ? attributes.attributesSet : attributes.attributesNotSet;
  consume();
  set.merge(attribute_word());
}
