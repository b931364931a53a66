// The rules of vector tables and their vectors.
#include "common/failures.h"
#include "language/parser.h"

using tdm::TokenSets;

// vector_table_definition: "vector_table" string_value
//                          "(" vector_table_property ("," vector_table_property)* ")"
//                          "{" vector_definition* "}"
std::unique_ptr<TDMFileVectorTable> TDMParser::vector_table_definition()
{
  auto table = std::make_unique<TDMFileVectorTable>();
  match(KEY_vector_table);
  table->name = string_value(*table, "name");
  parenthesized_list([&] { vector_table_property(*table); });
  match(LCURLY);
  while (at(KEY_vector)) table->vectors.push_back(vector_definition());
  match(RCURLY);
  return table;
}

// vector_table_property: one of the alternatives below
void TDMParser::vector_table_property(TDMFileVectorTable &table)
{
  switch (LA(1)) {
  case KEY_size:
    vector_table_size(table);
    break;
  case KEY_vector_size:
    consume();
    match(EQUALS);
    table.vectorSize = expression(table, "vector_size");
    break;
  case KEY_fill:
    vector_table_fill(table);
    break;
  case KEY_id_symbol_prefix:
    consume();
    match(EQUALS);
    table.idSymbolPrefix = string_value(table, "id_symbol_prefix");
    break;
  case KEY_run_addr:
    vector_table_address(table);
    break;
  case KEY_template:
    vector_table_template(table);
    break;
  case KEY_template_symbol:
    vector_table_template_symbol(table);
    break;
  case KEY_vector_prefix:
    vector_table_vector_prefix(table);
    break;
  case KEY_no_inline:
    keep(table, "default_inline");
    consume();
    table.defaultInline = false;
    break;
  case KEY_copy:
    consume();
    table.copy = true;
    break;
  case KEY_tag:
    tag_property();
    break;
  default:
    no_viable_alternative();
  }
}

// "size" "=" expression
void TDMParser::vector_table_size(TDMFileVectorTable &table)
{
  match(KEY_size);
  match(EQUALS);
  tdm::ExpressionPtr value = expression(table, "size");
  if (table.size) throw new TDMFileSyntaxException("trying to set size twice for vector table");
  table.size = std::move(value);
}

// "fill" "=" vector_value
void TDMParser::vector_table_fill(TDMFileVectorTable &table)
{
  match(KEY_fill);
  match(EQUALS);
  keep(table, "default_value");
  std::unique_ptr<TDMFileVectorValue> value = vector_value();
  if (table.defaultValue)
    throw new TDMFileSyntaxException("trying to set default vector value twice for vector table");
  table.defaultValue = std::move(value);
}

// "run_addr" "=" (expression | memory_reference "[" expression "]")
void TDMParser::vector_table_address(TDMFileVectorTable &table)
{
  match(KEY_run_addr);
  match(EQUALS);
  keep(table, "run_address");
  std::optional<tdm::Text> memory;
  tdm::ExpressionPtr address;
  if (at(KEY_mem)) {
    memory = memory_reference();
    match(LBRACK);
    address = expression();
    match(RBRACK);
  } else {
    require_next(TokenSets::expression_start);
    address = expression();
  }
  if (memory && table.memoryName)
    throw new TDMFileSyntaxException("trying to set memory address twice for vector table");
  if (table.address)
    throw new TDMFileSyntaxException("trying to set address twice for vector table");
  table.memoryName = memory;
  table.address = std::move(address);
}

// "template" "=" string_value
void TDMParser::vector_table_template(TDMFileVectorTable &table)
{
  match(KEY_template);
  match(EQUALS);
  tdm::Text name = string_value(table, "template_name");
  if (table.templateName)
    throw new TDMFileSyntaxException("trying to set template name twice for vector table");
  table.templateName = name;
}

// "template_symbol" "=" string_value
void TDMParser::vector_table_template_symbol(TDMFileVectorTable &table)
{
  match(KEY_template_symbol);
  match(EQUALS);
  tdm::Text name = string_value(table, "template_symbol_name");
  if (table.templateSymbolName)
    throw new TDMFileSyntaxException("trying to set template symbol name twice for vector table");
  table.templateSymbolName = name;
}

// "vector_prefix" "=" string_value
void TDMParser::vector_table_vector_prefix(TDMFileVectorTable &table)
{
  match(KEY_vector_prefix);
  match(EQUALS);
  tdm::Text prefix = string_value(table, "vector_name_prefix");
  if (table.vectorNamePrefix)
    throw new TDMFileSyntaxException("trying to set vector name prefix twice for vector table");
  table.vectorNamePrefix = prefix;
}

// vector_definition: "vector" "(" vector_property ("," vector_property)* ")" ";"
std::unique_ptr<TDMFileVector> TDMParser::vector_definition()
{
  auto vector = std::make_unique<TDMFileVector>();
  match(KEY_vector);
  parenthesized_list([&] { vector_property(*vector); });
  match(SEMICOLON);
  return vector;
}

// vector_property: "id" "=" vector_id_spec | "fill" "=" vector_value | "optional" | tag_property
void TDMParser::vector_property(TDMFileVector &vector)
{
  switch (LA(1)) {
  case KEY_id:
    consume();
    match(EQUALS);
    vector_id_spec(vector);
    break;
  case KEY_fill:
    vector_fill(vector);
    break;
  case KEY_optional:
    consume();
    vector.sourceLocations.store("optional", here()); // behind the word
    vector.optional = true;
    break;
  case KEY_tag:
    tag_property();
    break;
  default:
    no_viable_alternative();
  }
}

// vector_id_spec: number | "[" vector_id_range ("," vector_id_range)* "]"
void TDMParser::vector_id_spec(TDMFileVector &vector)
{
  if (accept(LBRACK)) {
    comma_list([&] { vector_id_range(vector); });
    match(RBRACK);
    return;
  }
  const std::int32_t id = tdm::low_word(number());
  vector.ids.add(id, id);
}

// vector_id_range: number [".." number]
void TDMParser::vector_id_range(TDMFileVector &vector)
{
  vector.sourceLocations.store("id", here());
  const std::int32_t low = tdm::low_word(number());
  if (!accept(KEY_RANGE)) {
    require_next({COMMA, RBRACK});
    vector.ids.add(low, low);
    return;
  }
  const std::int32_t high = tdm::low_word(number());
  if (low > high) throw new TDMFileSyntaxException("invalid range for vector IDs");
  vector.ids.add(low, high);
}

// "fill" "=" vector_value
void TDMParser::vector_fill(TDMFileVector &vector)
{
  match(KEY_fill);
  match(EQUALS);
  vector.sourceLocations.store("value", here());
  std::unique_ptr<TDMFileVectorValue> value = vector_value();
  if (vector.value) throw new TDMFileSyntaxException("trying to set vector value twice");
  vector.value = std::move(value);
}

// vector_value: string_value | "[" number ("," number)* "]" | "loop" ["[" expression "]"]
std::unique_ptr<TDMFileVectorValue> TDMParser::vector_value()
{
  auto value = std::make_unique<TDMFileVectorValue>();
  switch (LA(1)) {
  case STRING:
    value->type = tdm::kVectorSymbol;
    value->sourceLocations.store("type", here());
    value->sourceLocations.store("symbol_name", here());
    value->symbolName = string_value();
    break;
  case LBRACK:
    value->type = tdm::kVectorNumbers;
    consume();
    value->sourceLocations.store("type", here());
    comma_list([&] { value->values.push_back(number()); });
    match(RBRACK);
    break;
  case KEY_loop:
    value->type = tdm::kVectorLoop;
    consume();
    value->sourceLocations.store("type", here()); // behind the word
    vector_loop_offset(*value);
    break;
  default:
    no_viable_alternative();
  }
  return value;
}

// ["[" expression "]"]
void TDMParser::vector_loop_offset(TDMFileVectorValue &value)
{
  if (!accept(LBRACK)) {
    require_next(TokenSets::list_end);
    return;
  }
  value.sourceLocations.store("loop_offset", here());
  value.set_loop_offset(expression());
  match(RBRACK);
}
