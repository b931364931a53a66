// What the tests of expressions share: records written briefly, an environment that keeps a log,
// and the text of a failure.
#pragma once

#include <pthread.h>

#include <cstdlib>
#include <functional>
#include <initializer_list>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "common/failures.h"
#include "expressions/expression_env.h"
#include "expressions/exprlib/exprlib.h"
#include "expressions/translate.h"
#include "language/expr_records.h"

// Numbers that nothing under test overflows.
__extension__ typedef __int128 Wide;
__extension__ typedef unsigned __int128 UnsignedWide;

using tdm::ExpressionList;
using tdm::ExpressionPtr;

inline const TDMSourceLocation here = {"file", 7, 9}; // the place of the property at hand
inline const TDMSourceLocation inside = {"file", 7, 20};

inline ExpressionPtr num(std::int64_t value)
{
  return std::make_unique<TDMExprNumber>(value);
}

inline ExpressionPtr var(tdm::Text name, bool located = false)
{
  auto record = std::make_unique<TDMExprVarRef>(name);
  if (located) record->store_location("name", inside);
  return record;
}

inline ExpressionPtr symbol(tdm::Text name, bool located = false)
{
  auto record = std::make_unique<TDMExprSymbolRef>(name);
  if (located) record->store_location("name", inside);
  return record;
}

inline ExpressionPtr unary(std::int32_t op, ExpressionPtr operand)
{
  return std::make_unique<TDMExprUnaryApplication>(op, std::move(operand));
}

inline ExpressionPtr binary(std::int32_t op, ExpressionPtr left, ExpressionPtr right)
{
  return std::make_unique<TDMExprBinaryApplication>(op, std::move(left), std::move(right));
}

inline ExpressionPtr conditional(ExpressionPtr test, ExpressionPtr first, ExpressionPtr second)
{
  return std::make_unique<TDMExprConditional>(std::move(test), std::move(first), std::move(second));
}

inline ExpressionPtr exists(tdm::Text section)
{
  return std::make_unique<TDMExprExists>(section);
}

inline ExpressionPtr defined(tdm::Text name)
{
  return std::make_unique<TDMExprDefined>(name);
}

inline ExpressionPtr address_of(std::int32_t kind, tdm::Text name, bool located = false)
{
  auto record = std::make_unique<TDMExprAddress>();
  record->objType = kind;
  record->objName = name;
  if (located)
    for (const char *key : {"addressof", "objType", "objName"})
      record->store_location(LocationKey::of(key), inside);
  return record;
}

inline ExpressionPtr size_of(std::int32_t kind, tdm::Text name, bool located = false)
{
  auto record = std::make_unique<TDMExprSizeOf>();
  record->objType = kind;
  record->objName = name;
  if (located)
    for (const char *key : {"sizeof", "objType", "objName"})
      record->store_location(LocationKey::of(key), inside);
  return record;
}

inline ExpressionPtr checksum(ExpressionPtr start, ExpressionPtr end)
{
  auto record = std::make_unique<TDMExprChecksum>();
  record->start = std::move(start);
  record->end = std::move(end);
  return record;
}

inline std::unique_ptr<TDMExpression> translated(const TDMFileExpression &record,
                                                 const tdm::ArgumentScope &scope = {})
{
  return tdm_translate_expression(&record, scope, here);
}

/// The text of the failure that the action ends in, or an empty text.
inline std::string failure_of(const std::function<void()> &action)
{
  try {
    action();
  } catch (TDMFileException *failure) {
    std::string text = failure->text();
    delete failure;
    return text;
  } catch (TDMArgumentsException *failure) {
    std::string text = failure->text();
    delete failure;
    return text;
  } catch (int number) {
    return "int " + std::to_string(number);
  }
  return {};
}

/// Answers from tables and logs each question but the two about data availability and context.
class LoggingEnv final : public TDMExpressionEnv {
public:
  explicit LoggingEnv(std::uint32_t value_size = 8)
  {
    exprlib_make_context(&context, value_size, 0);
  }
  ~LoggingEnv() { exprlib_end_context(context); }

  bool section_exists(const std::string &name) override { return asked("exists " + name, name); }
  bool symbol_defined(const std::string &name) override { return asked("defined " + name, name); }
  ExprlibContext *exprlib_context() override { return context; }
  bool section_address(const std::string &name, const TDMSourceLocation &at,
                       std::int64_t &value) override
  {
    return asked("address " + name + " " + std::to_string(at.column), name, &value);
  }
  ExprlibNode *section_address_node(const std::string &name, const TDMSourceLocation &at) override
  {
    return node("address_node " + name + " " + std::to_string(at.column), name);
  }
  bool section_size(const std::string &name, const TDMSourceLocation &at,
                    std::int64_t &value) override
  {
    return asked("size " + name + " " + std::to_string(at.column), name, &value);
  }
  ExprlibNode *section_size_node(const std::string &name, const TDMSourceLocation &at) override
  {
    return node("size_node " + name + " " + std::to_string(at.column), name);
  }
  std::string group_start_symbol(const std::string &group) override { return group + ".begin"; }
  std::string group_end_symbol(const std::string &group) override { return group + ".end"; }
  ExprlibNode *group_address_node(const std::string &group) override
  {
    return node("group_node " + group, group + ".begin");
  }
  bool symbol_value(const std::string &name, std::int64_t &value) override
  {
    return asked("symbol " + name, name, &value);
  }
  ExprlibNode *symbol_node(const std::string &name) override { return node("node " + name, name); }
  bool layout_data_available() override { return available; }
  std::uint32_t *located_data(const TDMSourceLocation &, std::int64_t start,
                              std::int64_t end) override
  {
    log += "data " + std::to_string(start) + " " + std::to_string(end) + ";";
    if (data.empty()) return nullptr;
    auto *copy = static_cast<std::uint32_t *>(std::malloc(data.size() * sizeof(std::uint32_t)));
    std::copy(data.begin(), data.end(), copy);
    return copy;
  }
  int data_endianness() override { return endianness; }
  int data_mau_size() override { return mau; }

  /// What was asked since the last call.
  std::string take_log() { return std::exchange(log, {}); }

  ExprlibContext *context = nullptr;
  std::map<std::string, std::int64_t> values;
  std::vector<std::uint32_t> data;
  int mau = 8;
  int endianness = 1;
  bool available = true;

private:
  bool asked(const std::string &question, const std::string &name, std::int64_t *value = nullptr)
  {
    log += question + ";";
    const auto found = values.find(name);
    if (found == values.end()) return false;
    if (value != nullptr) *value = found->second;
    return true;
  }

  ExprlibNode *node(const std::string &question, const std::string &name)
  {
    std::int64_t value = 0;
    ExprlibNode *made = nullptr;
    if (asked(question, name, &value)) exprlib_make_int64(context, &made, value);
    return made;
  }

  std::string log;
};

/// The tree as text.
inline std::string printed(ExprlibNode *node)
{
  std::string text;
  exprlib_print(
      node,
      [](const char *piece, std::size_t length, void *to) {
        static_cast<std::string *>(to)->append(piece, length);
      },
      &text);
  return text;
}

/// Runs the action on a thread whose stack has 256 KiB.
inline void on_small_stack(void (*action)())
{
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  pthread_attr_setstacksize(&attributes, 256 * 1024);
  pthread_t thread;
  const auto entry = [](void *function) -> void * {
    reinterpret_cast<void (*)()>(function)();
    return nullptr;
  };
  if (pthread_create(&thread, &attributes, entry, reinterpret_cast<void *>(action)) != 0)
    std::abort();
  pthread_join(thread, nullptr);
  pthread_attr_destroy(&attributes);
}
