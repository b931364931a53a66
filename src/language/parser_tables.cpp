// The rules of copy tables, direct init and banks.
#include "common/failures.h"
#include "language/parser.h"
#include "preprocessor/string_pool.h"

using tdm::TokenSet;

// copytable_definition: "copytable" ["(" copytable_property ("," copytable_property)* ")"]
void TDMParser::copytable_definition(TDMFileCopyTable &table)
{
  match(KEY_copytable);
  optional_list({SEMICOLON}, [&] { copytable_property(table); });
}

// copytable_property: align_value | "copy_unit" "=" expression | "page" | destination
//                   | "table" "{" (subtable_property ";")* "}" | tag_property
void TDMParser::copytable_property(TDMFileCopyTable &table)
{
  switch (LA(1)) {
  case KEY_align:
    keep(table, "alignment");
    table.alignment = align_value();
    break;
  case KEY_copy_unit:
    keep(table, "copyUnit");
    consume();
    match(EQUALS);
    table.copyUnit = expression();
    break;
  case KEY_page:
    keep(table, "pageRestrictROMCopies");
    consume();
    table.pageRestrictROMCopies = true;
    break;
  case KEY_dest:
    destination(table, "defaultCopyDestination", table.defaultCopyDestination, table.destinations);
    break;
  case KEY_table:
    subtable(tdm::append_new(table.subTables));
    break;
  case KEY_tag:
    tag_property();
    break;
  default:
    no_viable_alternative();
  }
}

// destination: "dest" ("=" identifier | identifier "=" identifier)
//
// The key of a pair is the name of its source: whoever looks a pair up asks for the place under
// that name.
void TDMParser::destination(TDMFileObject &record, LocationKey key,
                            std::optional<tdm::Text> &single,
                            tdm::RecordList<tdm::FileDestination> &pairs)
{
  match(KEY_dest);
  if (accept(EQUALS)) {
    single = identifier(record, key);
    return;
  }
  const TDMSourceLocation place = here();
  tdm::FileDestination pair;
  pair.source = identifier();
  record.store_location(LocationKey::of(tdm::intern(pair.source)), place);
  match(EQUALS);
  pair.destination = identifier(record, key);
  pairs.push_back(pair);
}

// "table" "{" (subtable_property ";")* "}"
void TDMParser::subtable(TDMFileCopySubTable &table)
{
  constexpr TokenSet properties = {KEY_symbol, KEY_space};
  match(KEY_table);
  keep(table, "table");
  match(LCURLY);
  while (at(properties)) {
    subtable_property(table);
    match(SEMICOLON);
  }
  match(RCURLY);
}

// subtable_property: "symbol" "=" string_value | "space" "=" space_reference ("," space_reference)*
void TDMParser::subtable_property(TDMFileCopySubTable &table)
{
  if (accept(KEY_space)) {
    match(EQUALS);
    comma_list([&] { table.spaces.push_back(space_reference()); });
    return;
  }
  match(KEY_symbol);
  match(EQUALS);
  tdm::Text symbol = string_value();
  if (table.symbol) throw new TDMFileSyntaxException("Tried to set subtable symbol twice");
  table.symbol = symbol;
}

// direct_init_definition: "direct_init"
//                         ["(" direct_init_property ("," direct_init_property)* ")"]
void TDMParser::direct_init_definition(TDMFileDirectInit &init)
{
  match(KEY_direct_init);
  optional_list({SEMICOLON}, [&] { direct_init_property(init); });
}

// direct_init_property: align_value | destination
void TDMParser::direct_init_property(TDMFileDirectInit &init)
{
  switch (LA(1)) {
  case KEY_align:
    keep(init, "alignment");
    init.alignment = align_value();
    break;
  case KEY_dest:
    destination(init, "name", init.defaultDestination, init.destinations);
    break;
  default:
    no_viable_alternative();
  }
}

// bank_definition: "bank" "(" bank_property ("," bank_property)* ")"
void TDMParser::bank_definition(TDMFileBankDef &bank)
{
  keep(bank, "bank");
  match(KEY_bank);
  parenthesized_list([&] { bank_property(bank); });
}

// bank_property: "stub" ":" stub_property | "switch" ":" switch_property | "space" "=" identifier
void TDMParser::bank_property(TDMFileBankDef &bank)
{
  switch (LA(1)) {
  case KEY_stub:
    consume();
    match(COLON);
    stub_property(bank);
    break;
  case KEY_switch:
    consume();
    match(COLON);
    switch_property(bank);
    break;
  case KEY_space:
    consume();
    match(EQUALS);
    bank.spaceName = identifier(bank, "space_name");
    break;
  default:
    no_viable_alternative();
  }
}

// stub_property: "template" "=" string_value | "prefix" "=" string_value | "args" ":" stub_argument
void TDMParser::stub_property(TDMFileBankDef &bank)
{
  switch (LA(1)) {
  case KEY_template:
    bank_string(KEY_template, bank, "stub_template", bank.stubTemplate);
    break;
  case KEY_prefix:
    bank_string(KEY_prefix, bank, "stub_prefix", bank.stubPrefix);
    break;
  case KEY_args:
    consume();
    match(COLON);
    stub_argument(bank);
    break;
  default:
    no_viable_alternative();
  }
}

// stub_argument: "bank" "=" string_value | "run_addr" "=" string_value | "switch" "=" string_value
void TDMParser::stub_argument(TDMFileBankDef &bank)
{
  switch (LA(1)) {
  case KEY_bank:
    bank_string(KEY_bank, bank, "stub_arg_bank", bank.stubArgBank);
    break;
  case KEY_run_addr:
    bank_string(KEY_run_addr, bank, "stub_arg_address", bank.stubArgAddress);
    break;
  case KEY_switch:
    bank_string(KEY_switch, bank, "stub_arg_switch", bank.stubArgSwitch);
    break;
  default:
    no_viable_alternative();
  }
}

// switch_property: "template" "=" string_value | "prefix" "=" string_value
//                | "args" ":" "bank" "=" string_value
void TDMParser::switch_property(TDMFileBankDef &bank)
{
  switch (LA(1)) {
  case KEY_template:
    bank_string(KEY_template, bank, "switch_template", bank.switchTemplate);
    break;
  case KEY_prefix:
    bank_string(KEY_prefix, bank, "switch_prefix", bank.switchPrefix);
    break;
  case KEY_args:
    consume();
    match(COLON);
    bank_string(KEY_bank, bank, "switch_arg_bank", bank.switchArgBank);
    break;
  default:
    no_viable_alternative();
  }
}

// word "=" string_value; the last value counts
void TDMParser::bank_string(int word, TDMFileBankDef &bank, LocationKey key,
                            std::optional<tdm::Text> &field)
{
  match(word);
  match(EQUALS);
  field = string_value(bank, key);
}
