// The rules of memories, buses and mappings.
#include "common/failures.h"
#include "language/parser.h"

using tdm::TokenSet;
using tdm::TokenSets;

// memory_definition: "memory" identifier tag_list "{" (memory_property ";")* "}"
void TDMParser::memory_definition(TDMFileMemory &memory)
{
  constexpr TokenSet properties = {
      KEY_type,      KEY_mau,           KEY_size,        KEY_speed,
      KEY_priority,  KEY_exec_priority, KEY_setuptime,   KEY_holdtime,
      KEY_cycles,    KEY_area,          KEY_write_mode,  KEY_read_ports,
      KEY_map,       KEY_fill,          KEY_write_ports, KEY_readwrite_ports,
      KEY_write_unit};
  memory.sourceLocations.reserve(7); // what most of them need
  match(KEY_memory);
  memory.name = identifier(memory, "name");
  tag_list();
  match(LCURLY);
  while (at(properties)) {
    memory_property(memory);
    match(SEMICOLON);
  }
  match(RCURLY);
}

// memory_property: one of the alternatives below. What describes the hardware beyond sizes and
// priorities may be repeated, and the last value counts.
void TDMParser::memory_property(TDMFileMemory &memory)
{
  const auto hardware = [&]() -> tdm::FileMemoryHardware & {
    if (memory.hardware == nullptr) memory.hardware = std::make_unique<tdm::FileMemoryHardware>();
    return *memory.hardware;
  };
  const auto last_counts = [&](tdm::ExpressionPtr tdm::FileMemoryHardware::*field) {
    consume();
    match(EQUALS);
    hardware().*field = expression();
  };
  switch (LA(1)) {
  case KEY_type:
    memory_type_property(memory);
    break;
  case KEY_mau:
    memory_mau(memory);
    break;
  case KEY_size:
    memory_size(memory);
    break;
  case KEY_speed:
  case KEY_priority:
    memory_priority(memory);
    break;
  case KEY_exec_priority:
    memory_exec_priority(memory);
    break;
  case KEY_write_mode:
    consume();
    match(EQUALS);
    hardware().writeMode = string_value();
    break;
  case KEY_setuptime:
    last_counts(&tdm::FileMemoryHardware::setupTime);
    break;
  case KEY_holdtime:
    last_counts(&tdm::FileMemoryHardware::holdTime);
    break;
  case KEY_cycles:
    last_counts(&tdm::FileMemoryHardware::cycles);
    break;
  case KEY_area:
    last_counts(&tdm::FileMemoryHardware::area);
    break;
  case KEY_read_ports:
    last_counts(&tdm::FileMemoryHardware::readPorts);
    break;
  case KEY_write_ports:
    last_counts(&tdm::FileMemoryHardware::writePorts);
    break;
  case KEY_readwrite_ports:
    last_counts(&tdm::FileMemoryHardware::readWritePorts);
    break;
  case KEY_write_unit:
    last_counts(&tdm::FileMemoryHardware::writeUnit);
    break;
  case KEY_map:
    append_mapping(memory);
    break;
  case KEY_fill:
    keep(memory, "fillSpec");
    memory.fillSpec = fill_value();
    break;
  default:
    no_viable_alternative();
  }
}

// "type" "=" ["reserved"] memory_type
void TDMParser::memory_type_property(TDMFileMemory &memory)
{
  match(KEY_type);
  match(EQUALS);
  if (at(KEY_reserved)) {
    keep(memory, "reserved");
    consume();
    memory.reserved = true;
  } else {
    require_next({KEY_ram, KEY_rom, KEY_nvram, KEY_blockram});
  }
  keep(memory, "memtype");
  const int type = memory_type();
  if (memory.memtype != tdm::kMemoryNone)
    throw new TDMFileSyntaxException("trying to set memory type twice for memory " +
                                     tdm::name_of(memory.name));
  memory.memtype = type;
}

// memory_type: "ram" | "rom" | "nvram" | "blockram"
int TDMParser::memory_type()
{
  switch (LA(1)) {
  case KEY_ram:
    consume();
    return tdm::kMemoryRam;
  case KEY_rom:
    consume();
    return tdm::kMemoryRom;
  case KEY_nvram:
    consume();
    return tdm::kMemoryNvram;
  case KEY_blockram:
    consume();
    return tdm::kMemoryBlockram;
  default:
    no_viable_alternative();
  }
}

// "mau" "=" expression
void TDMParser::memory_mau(TDMFileMemory &memory)
{
  match(KEY_mau);
  match(EQUALS);
  tdm::ExpressionPtr value = expression(memory, "mauSize");
  if (memory.mauSize)
    throw new TDMFileSyntaxException("trying to set mau size twice for memory " +
                                     tdm::name_of(memory.name));
  memory.mauSize = std::move(value);
}

// "size" "=" expression
void TDMParser::memory_size(TDMFileMemory &memory)
{
  match(KEY_size);
  match(EQUALS);
  tdm::ExpressionPtr value = expression(memory, "size");
  if (memory.size)
    throw new TDMFileSyntaxException("trying to set size twice for memory " +
                                     tdm::name_of(memory.name));
  memory.size = std::move(value);
}

// ("speed" | "priority") "=" plain_number: two words for one property
void TDMParser::memory_priority(TDMFileMemory &memory)
{
  consume();
  match(EQUALS);
  keep(memory, "speed");
  const std::int32_t value = tdm::low_word(plain_number());
  if (value < 0) throw new TDMFileSyntaxException("memory priority value must be nonnegative");
  if (memory.priority >= 0) throw new TDMFileSyntaxException("trying to set memory priority twice");
  memory.priority = value;
}

// "exec_priority" "=" plain_number
void TDMParser::memory_exec_priority(TDMFileMemory &memory)
{
  match(KEY_exec_priority);
  match(EQUALS);
  keep(memory, "exec_priority");
  const std::int32_t value = tdm::low_word(plain_number());
  if (value < 0)
    throw new TDMFileSyntaxException("memory execute priority value must be nonnegative");
  if (memory.execPriority >= 0)
    throw new TDMFileSyntaxException("trying to set memory execute priority twice");
  memory.execPriority = value;
}

// fill_value: "fill" ["=" fill_pattern [":" expression]]
std::unique_ptr<TDMFileFillSpec> TDMParser::fill_value()
{
  constexpr TokenSet following = TokenSets::list_end | TokenSet{SEMICOLON};
  auto fill = std::make_unique<TDMFileFillSpec>();
  match(KEY_fill);
  if (!accept(EQUALS)) {
    require_next(following);
    return fill;
  }
  fill_pattern(*fill);
  if (accept(COLON))
    fill->alignment = expression(*fill, "alignment");
  else
    require_next(following);
  return fill;
}

// fill_pattern: expression | "[" expression ("," expression)* "]"
void TDMParser::fill_pattern(TDMFileFillSpec &fill)
{
  if (accept(LBRACK)) {
    fill.values = expression_list();
    match(RBRACK);
  } else {
    fill.values.push_back(expression());
  }
}

// bus_definition: "bus" identifier "{" (bus_property ";")* "}"
void TDMParser::bus_definition(TDMFileBus &bus)
{
  constexpr TokenSet properties = {KEY_mau, KEY_width, KEY_address_width, KEY_wishbone, KEY_map};
  match(KEY_bus);
  bus.name = identifier(bus, "name");
  match(LCURLY);
  while (at(properties)) {
    bus_property(bus);
    match(SEMICOLON);
  }
  match(RCURLY);
}

// bus_property: "mau" "=" expression | "width" "=" expression | "address_width" "=" expression
//             | "wishbone" | map_definition
void TDMParser::bus_property(TDMFileBus &bus)
{
  // The place is that of the word, and the last value counts.
  const auto value = [&](LocationKey key, tdm::ExpressionPtr &field) {
    keep(bus, key);
    consume();
    match(EQUALS);
    field = expression();
  };
  switch (LA(1)) {
  case KEY_mau:
    value("mauSize", bus.mauSize);
    break;
  case KEY_width:
    value("busWidth", bus.busWidth);
    break;
  case KEY_address_width:
    value("busAddressWidth", bus.busAddressWidth);
    break;
  case KEY_wishbone:
    consume();
    bus.wishbone = true;
    break;
  case KEY_map:
    append_mapping(bus);
    break;
  default:
    no_viable_alternative();
  }
}
