// The built-in functions of expressions, and the names of what they ask about.
#include "language/parser.h"
#include "preprocessor/string_pool.h"

// builtin_call: one of the calls below
tdm::ExpressionPtr TDMParser::builtin_call()
{
  const NestingGuard guard(*this);
  switch (LA(1)) {
  case KEY_absolute:
    return absolute_call();
  case KEY_addressof:
    return addressof_call();
  case KEY_defined:
    return defined_call();
  case KEY_exists:
    return exists_call();
  case KEY_max:
    return choice_call<TDMExprMax>(KEY_max);
  case KEY_min:
    return choice_call<TDMExprMin>(KEY_min);
  case KEY_sizeof:
    return sizeof_call();
  case KEY_checksum:
    return checksum_call();
  default:
    no_viable_alternative();
  }
}

// "absolute" "(" expression ")"
tdm::ExpressionPtr TDMParser::absolute_call()
{
  match(KEY_absolute);
  match(LPAREN);
  auto record = std::make_unique<TDMExprAbsolute>(expression());
  match(RPAREN);
  return record;
}

// "addressof" "(" addressof_object ")"
tdm::ExpressionPtr TDMParser::addressof_call()
{
  auto record = std::make_unique<TDMExprAddress>();
  match(KEY_addressof);
  match(LPAREN);
  keep(*record, "addressof");
  layout_object(*record, tdm::kAddressSection, tdm::kAddressGroup, tdm::kAddressMemory);
  match(RPAREN);
  return record;
}

// "sizeof" "(" sizeof_object ")"
tdm::ExpressionPtr TDMParser::sizeof_call()
{
  auto record = std::make_unique<TDMExprSizeOf>();
  match(KEY_sizeof);
  match(LPAREN);
  keep(*record, "sizeof");
  layout_object(*record, tdm::kSizeSection, tdm::kSizeGroup, tdm::kSizeMemory);
  match(RPAREN);
  return record;
}

// addressof_object, sizeof_object: "sect" ":" string_value | "group" ":" identifier
//                                | memory_reference
template <typename Record>
void TDMParser::layout_object(Record &record, std::int32_t section, std::int32_t group,
                              std::int32_t memory)
{
  keep(record, "objType");
  switch (LA(1)) {
  case KEY_sect:
    consume();
    match(COLON);
    record.objType = section;
    record.objName = string_value(record, "objName");
    break;
  case KEY_group:
    consume();
    match(COLON);
    record.objType = group;
    record.objName = identifier(record, "objName");
    break;
  case KEY_mem:
    record.objType = memory;
    keep(record, "objName");
    record.objName = memory_reference();
    break;
  default:
    no_viable_alternative();
  }
}

// "defined" "(" string_value ")"
tdm::ExpressionPtr TDMParser::defined_call()
{
  match(KEY_defined);
  match(LPAREN);
  auto record = std::make_unique<TDMExprDefined>(string_value());
  match(RPAREN);
  return record;
}

// "exists" "(" string_value ")"
tdm::ExpressionPtr TDMParser::exists_call()
{
  match(KEY_exists);
  match(LPAREN);
  auto record = std::make_unique<TDMExprExists>(string_value());
  match(RPAREN);
  return record;
}

// ("max" | "min") "(" expression "," expression ")"
template <typename Record> tdm::ExpressionPtr TDMParser::choice_call(int keyword)
{
  match(keyword);
  match(LPAREN);
  tdm::ExpressionPtr left = expression();
  match(COMMA);
  tdm::ExpressionPtr right = expression();
  match(RPAREN);
  return std::make_unique<Record>(std::move(left), std::move(right));
}

// "checksum" "(" "crc32w" "," expression "," expression ")"
tdm::ExpressionPtr TDMParser::checksum_call()
{
  auto record = std::make_unique<TDMExprChecksum>();
  match(KEY_checksum);
  keep(*record, "checksum");
  match(LPAREN);
  keep(*record, "algo");
  match(KEY_crc32w);
  match(COMMA);
  record->start = expression(*record, "start");
  match(COMMA);
  record->end = expression(*record, "end");
  match(RPAREN);
  return record;
}

// memory_reference: "mem" ":" memory_name
tdm::Text TDMParser::memory_reference()
{
  match(KEY_mem);
  match(COLON);
  return memory_name();
}

// memory_name: identifier [":" identifier]
tdm::Text TDMParser::memory_name()
{
  const tdm::Text name = identifier();
  if (accept(COLON)) return tdm::joined_text(name, ':', identifier());
  require_next(tdm::TokenSets::memory_name_end);
  return name;
}
