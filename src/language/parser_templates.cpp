// The rules of architectures, cores, derivatives and processors, with their parameters and
// arguments.
#include "common/failures.h"
#include "language/parser.h"

using tdm::TokenSet;
using tdm::TokenSets;

// architecture_definition: "architecture" identifier ["(" parameter_list ")"]
//                          [architecture_extends] "{" architecture_item* "}"
void TDMParser::architecture_definition(TDMFileArchitecture &architecture)
{
  constexpr TokenSet items = {KEY_bus, KEY_space, KEY_endianness};
  match(KEY_architecture);
  architecture.name = identifier(architecture, "name");
  architecture.parameters = optional_parameters();
  extends(architecture, architecture.base, architecture.baseArguments);
  match(LCURLY);
  while (at(items)) architecture_item(architecture);
  match(RCURLY);
}

// architecture_item: bus_definition | space_definition | endianness_block
void TDMParser::architecture_item(TDMFileArchitecture &architecture)
{
  switch (LA(1)) {
  case KEY_bus:
    bus_definition(tdm::append_new(architecture.buses));
    break;
  case KEY_space:
    space_definition(tdm::append_new(architecture.spaces));
    break;
  case KEY_endianness:
    endianness_block(architecture);
    break;
  default:
    no_viable_alternative();
  }
}

// extends: ["extends" identifier ["(" expression_list ")"]]
void TDMParser::extends(TDMFileObject &record, std::optional<tdm::Text> &base,
                        tdm::ExpressionList &arguments)
{
  if (!accept(KEY_extends)) {
    require_next({LCURLY});
    return;
  }
  base = identifier(record, "base");
  arguments = optional_arguments({LCURLY});
}

// ["(" expression_list ")"]
tdm::ExpressionList TDMParser::optional_arguments(const TokenSet &following)
{
  tdm::ExpressionList arguments;
  if (accept(LPAREN)) {
    arguments = expression_list();
    match(RPAREN);
  } else {
    require_next(following);
  }
  return arguments;
}

// ["(" parameter_list ")"]
tdm::FileParameters TDMParser::optional_parameters()
{
  tdm::FileParameters parameters;
  if (accept(LPAREN)) {
    parameters = parameter_list();
    match(RPAREN);
  } else {
    require_next({KEY_extends, LCURLY});
  }
  return parameters;
}

// parameter_list: parameter ("," parameter)*
tdm::FileParameters TDMParser::parameter_list()
{
  tdm::FileParameters parameters;
  comma_list([&] { parameters.push_back(parameter()); });
  return parameters;
}

// parameter: identifier ["=" expression]
tdm::FileParameter TDMParser::parameter()
{
  tdm::FileParameter result;
  result.name = identifier();
  if (accept(EQUALS))
    result.defaultValue = expression();
  else
    require_next(TokenSets::list_end);
  return result;
}

// endianness_block: "endianness" "{" (endianness_value ";")+ "}"
void TDMParser::endianness_block(TDMFileArchitecture &architecture)
{
  constexpr TokenSet values = {KEY_big, KEY_little};
  match(KEY_endianness);
  match(LCURLY);
  do {
    architecture.endianness.push_back(endianness_value());
    match(SEMICOLON);
  } while (at(values));
  match(RCURLY);
}

// endianness_value: "big" | "little"
std::int32_t TDMParser::endianness_value()
{
  switch (LA(1)) {
  case KEY_big:
    consume();
    return tdm::kEndiannessBig;
  case KEY_little:
    consume();
    return tdm::kEndiannessLittle;
  default:
    no_viable_alternative();
  }
}

// core_definition: "core" identifier "{" (core_property ";")* "}"
void TDMParser::core_definition(TDMFileCore &core)
{
  constexpr TokenSet properties = {KEY_architecture, KEY_endianness,      KEY_copytable_space,
                                   KEY_import,       KEY_space_id_offset, KEY_start_address};
  match(KEY_core);
  core.name = identifier(core, "name");
  match(LCURLY);
  while (at(properties)) {
    core_property(core);
    match(SEMICOLON);
  }
  match(RCURLY);
}

// core_property: core_architecture
//              | "endianness" "=" "(" endianness_value ("," endianness_value)* ")"
//              | "copytable_space" "=" identifier ":" identifier | "import" identifier
//              | "space_id_offset" "=" number | start_address_spec
void TDMParser::core_property(TDMFileCore &core)
{
  switch (LA(1)) {
  case KEY_architecture:
    core_architecture(core);
    break;
  case KEY_endianness:
    consume();
    match(EQUALS);
    parenthesized_list([&] { core.endianness.push_back(endianness_value()); });
    break;
  case KEY_copytable_space:
    consume();
    match(EQUALS);
    core.copyTableCoreName = identifier(core, "copyTableCoreName");
    match(COLON);
    core.copyTableSpaceName = identifier(core, "copyTableSpaceName");
    break;
  case KEY_import:
    consume();
    core.imports.push_back(identifier());
    break;
  case KEY_space_id_offset:
    consume();
    match(EQUALS);
    core.spaceIdOffset = tdm::low_word(number());
    break;
  case KEY_start_address:
    keep(core, "startAddress");
    core.startAddress = start_address_spec();
    break;
  default:
    no_viable_alternative();
  }
}

// core_architecture: "architecture" "=" identifier ["(" expression_list ")"]
void TDMParser::core_architecture(TDMFileCore &core)
{
  match(KEY_architecture);
  match(EQUALS);
  tdm::Text name = identifier(core, "archName");
  if (core.archName)
    throw new TDMFileSyntaxException("trying to set base architecture twice for core " +
                                     tdm::name_of(core.name));
  core.archName = name;
  core.arguments = optional_arguments({SEMICOLON});
}

// start_address_spec: "start_address" "(" start_address_item ("," start_address_item)* ")"
std::unique_ptr<TDMFileStartAddress> TDMParser::start_address_spec()
{
  auto start = std::make_unique<TDMFileStartAddress>();
  match(KEY_start_address);
  parenthesized_list([&] { start_address_item(*start); });
  return start;
}

// start_address_item: "symbol" "=" string_value | "bank" "=" number | "run_addr" "=" expression
void TDMParser::start_address_item(TDMFileStartAddress &start)
{
  keep(start, "start_address");
  switch (LA(1)) {
  case KEY_symbol:
    consume();
    match(EQUALS);
    start.symbolName = string_value(start, "symbolName");
    break;
  case KEY_bank:
    consume();
    match(EQUALS);
    keep(start, "bank");
    start.bank = tdm::low_word(number());
    break;
  case KEY_run_addr:
    consume();
    match(EQUALS);
    start.value = expression(start, "value");
    break;
  default:
    no_viable_alternative();
  }
}

// derivative_definition: "derivative" identifier ["(" parameter_list ")"] [extends]
//                        "{" derivative_item* "}"
void TDMParser::derivative_definition(TDMFileDerivative &derivative)
{
  constexpr TokenSet items = {KEY_core, KEY_bus, KEY_memory, KEY_section_layout, KEY_section_setup};
  match(KEY_derivative);
  derivative.name = identifier(derivative, "name");
  derivative.parameters = optional_parameters();
  extends(derivative, derivative.base, derivative.baseArguments);
  match(LCURLY);
  while (at(items)) derivative_item(derivative);
  match(RCURLY);
}

// derivative_item: core_definition | bus_definition | memory_definition
//                | section_layout_definition | section_setup_definition
void TDMParser::derivative_item(TDMFileDerivative &derivative)
{
  switch (LA(1)) {
  case KEY_core:
    core_definition(tdm::append_new(derivative.cores));
    break;
  case KEY_bus:
    bus_definition(tdm::append_new(derivative.buses));
    break;
  case KEY_memory:
    memory_definition(tdm::append_new(derivative.memories));
    break;
  case KEY_section_layout:
    section_layout_definition(tdm::append_new(derivative.sectionLayouts), tdm::Text());
    break;
  case KEY_section_setup:
    section_setup_definition(tdm::append_new(derivative.sectionSetups));
    break;
  default:
    no_viable_alternative();
  }
}

// processor_definition: "processor" identifier "{" (derivative_reference ";")* "}"
void TDMParser::processor_definition(TDMFileCPU &processor)
{
  match(KEY_processor);
  processor.name = identifier(processor, "name");
  match(LCURLY);
  while (at(KEY_derivative)) {
    derivative_reference(processor);
    match(SEMICOLON);
  }
  match(RCURLY);
}

// derivative_reference: "derivative" "=" identifier ["(" expression_list ")"]
void TDMParser::derivative_reference(TDMFileCPU &processor)
{
  match(KEY_derivative);
  match(EQUALS);
  tdm::Text name = identifier(processor, "derivativeName");
  if (processor.derivativeName)
    throw new TDMFileSyntaxException("trying to set base derivative twice for processor " +
                                     tdm::name_of(processor.name));
  processor.derivativeName = name;
  processor.arguments = optional_arguments({SEMICOLON});
}
