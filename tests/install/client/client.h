// What the parts of this program share: checks, and what a linker knows.
#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <tdm_c/client.h>
#include <tdm_c/tdm.h>
#include <vector>

/// Counts what is not as it should be, and says where.
void check(bool holds, const char *what, const char *file, int line);
#define CHECK(condition) check(condition, #condition, __FILE__, __LINE__)

/// The answers of a linker that has placed two sections, and leaves one symbol open.
class Linker final : public TDMExpressionEnv {
public:
  struct Placed {
    std::int64_t address, size;
  };

  Linker();
  ~Linker();
  Linker(const Linker &) = delete;
  Linker &operator=(const Linker &) = delete;

  bool section_exists(const std::string &name) override { return placed.count(name) != 0; }
  bool symbol_defined(const std::string &name) override { return name == "open"; }
  ExprlibContext *exprlib_context() override { return context; }
  bool section_address(const std::string &name, const TDMSourceLocation &location,
                       std::int64_t &value) override;
  ExprlibNode *section_address_node(const std::string &name,
                                    const TDMSourceLocation &location) override;
  bool section_size(const std::string &name, const TDMSourceLocation &location,
                    std::int64_t &value) override;
  ExprlibNode *section_size_node(const std::string &name,
                                 const TDMSourceLocation &location) override;
  std::string group_start_symbol(const std::string &group) override { return group + "_start"; }
  std::string group_end_symbol(const std::string &group) override { return group + "_end"; }
  ExprlibNode *group_address_node(const std::string &) override { return number(0); }
  bool symbol_value(const std::string &name, std::int64_t &value) override;
  ExprlibNode *symbol_node(const std::string &name) override;
  bool layout_data_available() override { return data_available; }
  std::uint32_t *located_data(const TDMSourceLocation &location, std::int64_t start,
                              std::int64_t end) override;
  int data_endianness() override { return 2; }
  int data_mau_size() override { return 8; }

  ExprlibNode *number(std::int64_t value) const;

  ExprlibContext *context = nullptr;
  std::map<std::string, Placed> placed{{".text", {0x1000, 64}}, {".data", {0x2000, 24}}};
  std::string bytes = "12345678"; ///< what stands from address 0x100 on
  bool data_available = true;
  ExprlibSymbolRow open{}; ///< the symbol "open", once it has a value
  ExprlibSymbolTable symbols{&open, 1};
};

void test_expressions(tdm_spec *spec);
void test_walk(tdm_space *space);
void test_failures(tdm_space *space, tdm_space *bad);
void test_keeping(const tdm_arr &names);
