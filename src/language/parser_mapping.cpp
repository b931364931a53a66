// The rules of mappings, which memories, buses and spaces share.
#include "common/failures.h"
#include "language/parser.h"
#include "preprocessor/string_pool.h"

using tdm::TokenSets;

// map_definition: "map" [identifier] "(" map_property ("," map_property)* ")"
void TDMParser::map_definition(TDMFileMapping &mapping)
{
  mapping.sourceLocations.reserve(5); // what most of them need
  keep(mapping, "map");
  match(KEY_map);
  if (at(TokenSets::identifier_start))
    mapping.name = identifier();
  else
    require_next({LPAREN});
  parenthesized_list([&] { map_property(mapping); });
}

// map_property: "dest" "=" map_destination | "dest_dbits" "=" range_value
//             | "dest_offset" "=" expression | "src_dbits" "=" range_value
//             | "src_offset" "=" expression | "size" "=" expression | "bank" "=" number
//             | "dest_bank" "=" number | "priority" "=" number | "exec_priority" "=" number
//             | "reserved" | tag_property
void TDMParser::map_property(TDMFileMapping &mapping)
{
  // The place is that of the value, and the last value counts.
  const auto value_at = [&](LocationKey key) {
    consume();
    match(EQUALS);
    keep(mapping, key);
  };
  switch (LA(1)) {
  case KEY_dest:
    map_destination_property(mapping);
    break;
  case KEY_dest_dbits:
    value_at("connectedDestinationLines");
    mapping.connectedDestinationLines = std::make_unique<tdm::FileRange>(range_value());
    break;
  case KEY_dest_offset:
    value_at("destinationOffset");
    mapping.destinationOffset = expression();
    break;
  case KEY_src_dbits:
    value_at("connectedSourceLines");
    mapping.connectedSourceLines = std::make_unique<tdm::FileRange>(range_value());
    break;
  case KEY_src_offset:
    value_at("sourceOffset");
    mapping.sourceOffset = expression();
    break;
  case KEY_size:
    value_at("size");
    mapping.size = expression();
    break;
  case KEY_bank:
    value_at("bankNum");
    mapping.bankNum = tdm::low_word(number());
    break;
  case KEY_dest_bank:
    value_at("destinationBankNum");
    mapping.destinationBankNum = tdm::low_word(number());
    break;
  case KEY_priority:
    map_priority(mapping);
    break;
  case KEY_exec_priority:
    map_exec_priority(mapping);
    break;
  case KEY_reserved:
    consume();
    mapping.reserved = true;
    break;
  case KEY_tag:
    tag_property();
    break;
  default:
    no_viable_alternative();
  }
}

// "dest" "=" map_destination
void TDMParser::map_destination_property(TDMFileMapping &mapping)
{
  match(KEY_dest);
  match(EQUALS);
  const int kind = at(KEY_bus) ? tdm::kDestinationBus : tdm::kDestinationSpace;
  tdm::Text name = map_destination(mapping);
  if (mapping.destination)
    throw new TDMFileSyntaxException("trying to set mapping destination twice");
  mapping.destination = name;
  mapping.destinationKind = kind;
}

// map_destination: "space" ":" identifier | "bus" ":" identifier [":" identifier]
tdm::Text TDMParser::map_destination(TDMFileMapping &mapping)
{
  const bool bus = at(KEY_bus);
  if (!bus) require_next({KEY_space});
  consume();
  match(COLON);
  const tdm::Text name = identifier(mapping, "destination");
  if (!bus) return name;
  if (accept(COLON)) return tdm::joined_text(name, ':', identifier());
  require_next(TokenSets::list_end);
  return name;
}

// "priority" "=" number
void TDMParser::map_priority(TDMFileMapping &mapping)
{
  match(KEY_priority);
  keep(mapping, "priority");
  match(EQUALS);
  const std::int32_t value = tdm::low_word(number());
  if (value <= 0) throw new TDMFileSyntaxException("mapping priority value must be positive");
  if (mapping.priority > 0)
    throw new TDMFileSyntaxException("trying to set mapping priority twice");
  mapping.priority = value;
}

// "exec_priority" "=" number
void TDMParser::map_exec_priority(TDMFileMapping &mapping)
{
  match(KEY_exec_priority);
  keep(mapping, "exec_priority");
  match(EQUALS);
  const std::int32_t value = tdm::low_word(number());
  if (value < 0)
    throw new TDMFileSyntaxException("mapping exec priority value must be nonnegative");
  if (mapping.execPriority >= 0)
    throw new TDMFileSyntaxException("trying to set mapping exec priority twice");
  mapping.execPriority = value;
}
