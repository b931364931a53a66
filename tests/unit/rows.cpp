// Reads the tables. A table without rows would be a test that can't fail, and is an error.
#include "rows.h"

#include <fstream>
#include <stdexcept>

#include <nlohmann/json.hpp>

namespace tdm_test {
namespace {

std::string bytes_of(const std::string &utf8)
{
  std::string bytes;
  for (std::size_t i = 0; i < utf8.size(); ++i) {
    auto byte = static_cast<unsigned char>(utf8[i]);
    if (byte >= 0x80) { // two bytes, the first 0xC2 or 0xC3
      ++i;
      byte = static_cast<unsigned char>((byte << 6) | (utf8.at(i) & 0x3F));
    }
    bytes += static_cast<char>(byte);
  }
  return bytes;
}

} // namespace

std::vector<Row> rows(const std::string &file, const std::string &table)
{
  std::ifstream in(std::string(TDM_SOURCE_DIR "/tests/unit/") + file);
  const auto tables = nlohmann::json::parse(in, nullptr, true, true); // with comments
  std::vector<Row> result;
  for (const auto &row : tables.at(table)) {
    std::vector<std::string> texts;
    for (const auto &text : row) texts.push_back(bytes_of(text.get<std::string>()));
    result.emplace_back(std::move(texts));
  }
  if (result.empty()) throw std::runtime_error(file + ": " + table + " has no rows");
  return result;
}

} // namespace tdm_test
