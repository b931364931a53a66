// What the linker answers.
#include <cstdlib>

#include "client.h"

Linker::Linker()
{
  CHECK(exprlib_make_context(&context, 8, 0) == 0);
}

Linker::~Linker()
{
  if (open.value != nullptr) exprlib_release(open.value);
  CHECK(context->live_nodes == 0);
  exprlib_end_context(context);
}

ExprlibNode *Linker::number(std::int64_t value) const
{
  ExprlibNode *node = nullptr;
  CHECK(exprlib_make_int64(context, &node, value) == 0);
  return node;
}

bool Linker::section_address(const std::string &name, const TDMSourceLocation &location,
                             std::int64_t &value)
{
  CHECK(location.line > 0 && std::string(location.file).find("chip.tdm") != std::string::npos);
  const auto found = placed.find(name);
  if (found == placed.end()) return false;
  value = found->second.address;
  return true;
}

ExprlibNode *Linker::section_address_node(const std::string &name, const TDMSourceLocation &)
{
  return number(placed.at(name).address);
}

bool Linker::section_size(const std::string &name, const TDMSourceLocation &, std::int64_t &value)
{
  const auto found = placed.find(name);
  if (found == placed.end()) return false;
  value = found->second.size;
  return true;
}

ExprlibNode *Linker::section_size_node(const std::string &name, const TDMSourceLocation &)
{
  return number(placed.at(name).size);
}

bool Linker::symbol_value(const std::string &, std::int64_t &)
{
  return false;
}

ExprlibNode *Linker::symbol_node(const std::string &name)
{
  CHECK(name == "open");
  ExprlibNode *node = nullptr;
  CHECK(exprlib_make_variable(context, &node, EXPRLIB_INT, &symbols, 0) == 0);
  return node;
}

std::uint32_t *Linker::located_data(const TDMSourceLocation &, std::int64_t start, std::int64_t end)
{
  CHECK(start == 0x100 && end == 0x108);
  if (bytes.empty()) return nullptr;
  auto *units = static_cast<std::uint32_t *>(std::malloc(bytes.size() * sizeof(std::uint32_t)));
  for (std::size_t i = 0; i < bytes.size(); i++) units[i] = static_cast<unsigned char>(bytes[i]);
  return units;
}
