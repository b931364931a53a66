// Records by themselves: trees of any shape on a small stack, vector ids, places.
#include <gtest/gtest.h>

#include <pthread.h>

#include <set>

#include "common/failures.h"
#include "language/parse_driver.h"
#include "preprocessor/string_pool.h"
#include "record_dump.h"
#include "text_stream.h"

namespace {

/// Runs the function on a thread with a stack of 256 KiB, or of what a sanitizer needs for that.
template <typename Function> void on_small_stack(Function function)
{
#if defined(__SANITIZE_ADDRESS__)
  constexpr std::size_t stack_size = 8 << 20;
#else
  constexpr std::size_t stack_size = 256 << 10;
#endif
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  ASSERT_EQ(pthread_attr_setstacksize(&attributes, stack_size), 0);
  pthread_t thread = {};
  const auto start = [](void *argument) -> void * {
    (*static_cast<Function *>(argument))();
    return nullptr;
  };
  ASSERT_EQ(pthread_create(&thread, &attributes, start, &function), 0);
  pthread_join(thread, nullptr);
  pthread_attr_destroy(&attributes);
}

constexpr int chain_length = 100000;

tdm::ExpressionPtr leaf()
{
  return std::make_unique<TDMExprNumber>(1);
}

/// Makes one node above the tree; the number picks the kind and the side of the chain.
tdm::ExpressionPtr grown(tdm::ExpressionPtr tree, int shape)
{
  switch (shape) {
  case 0:
    return std::make_unique<TDMExprBinaryApplication>(4, std::move(tree), leaf());
  case 1:
    return std::make_unique<TDMExprBinaryApplication>(4, leaf(), std::move(tree));
  case 2:
    return std::make_unique<TDMExprUnaryApplication>(3, std::move(tree));
  case 3:
    return std::make_unique<TDMExprConditional>(std::move(tree), leaf(), leaf());
  case 4:
    return std::make_unique<TDMExprConditional>(leaf(), std::move(tree), leaf());
  case 5:
    return std::make_unique<TDMExprConditional>(leaf(), leaf(), std::move(tree));
  case 6:
    return std::make_unique<TDMExprAbsolute>(std::move(tree));
  case 7:
    return std::make_unique<TDMExprMax>(leaf(), std::move(tree));
  case 8:
    return std::make_unique<TDMExprMin>(std::move(tree), nullptr);
  default: {
    auto checksum = std::make_unique<TDMExprChecksum>();
    checksum->start = leaf();
    checksum->end = std::move(tree);
    return checksum;
  }
  }
}

std::size_t count_nodes(TDMFileExpression &root)
{
  std::size_t count = 0;
  std::vector<TDMFileExpression *> pending = {&root};
  while (!pending.empty()) {
    const tdm::ExpressionOperands operands = tdm::expression_operands(*pending.back());
    pending.pop_back();
    ++count;
    for (std::size_t i = 0; i < operands.count; ++i)
      if (*operands.slots[i]) pending.push_back(operands.slots[i]->get());
  }
  return count;
}

TEST(ExpressionRecords, LongChainsNeedNoStack)
{
  on_small_stack([] {
    for (int shape = 0; shape <= 10; ++shape) { // 10: all shapes in turn
      const bool mixed = shape == 10;
      tdm::ExpressionPtr tree = leaf();
      for (int i = 0; i < (mixed ? chain_length : chain_length / 5); ++i)
        tree = grown(std::move(tree), mixed ? i % 10 : shape);
      const tdm::ExpressionPtr copy = tree->clone();
      EXPECT_EQ(count_nodes(*copy), count_nodes(*tree));
    }
  });
}

TEST(ExpressionRecords, ClonesKeepEveryField)
{
  tdm::string_pool_start();
  const char *const texts[] = {"!(~aa.bb - \"cc\") ? absolute(1) : max(0x7F, min(2, dd))",
                               "checksum(crc32w, addressof(sect:\"a\"), sizeof(group:gg))",
                               "defined(\"a\") || exists(\"b\") && addressof(mem:aa:bb)"};
  for (const std::string text : texts) {
    TextStream stream("memory aa { area = " + text + "; area = 0; size = " + text + "; }");
    const auto result = parse_target_file(stream);
    const TDMFileExpression &size = *result->memories.front()->size;
    EXPECT_EQ(dump(*size.clone()), dump(size)) << text;
  }
}

std::string repeated(const std::string &text, int count)
{
  std::string result;
  for (int i = 0; i < count; ++i) result += text;
  return result;
}

/// The failure of a parse without its position, or "" if there is none.
std::string failure_of(const std::string &text)
{
  TextStream stream(text);
  try {
    (void)parse_target_file(stream);
    return "";
  } catch (TDMFileException *failure) {
    const std::unique_ptr<TDMFileException> owner(failure);
    return failure->text().substr(failure->text().find("syntax error: "));
  }
}

TEST(Nesting, HasOneLimitAndFitsASmallStack)
{
  tdm::string_pool_start();
  const std::string memory = "memory aa { area = ";
  const std::string layout = "section_layout { ";
  const std::string section = layout + "section \"a\" (size = 1) { ";
  struct Form {
    std::string before, open, core, close;
  };
  const Form forms[] = {
      {memory, "(", "1", ")"},
      {memory, "1 || 1 && 1 | 1 ^ 1 & 1 == 1 > 1 >> 1 + 1 * (", "1", ")"},
      {memory, "- ", "1", ""},
      {memory, "1 ? 1 : ", "1", ""},
      {memory, "1 ? ", "1", " : 1"},
      {memory, "max(1, ", "1", ")"},
      {layout, "{ ", "", "} "},
      {layout, "group { ", "", "} "},
      {layout, "group (align = 1) ", "select;", ""},
      {layout, "if (1) { ", "", "} "},
      {layout, "if (1) select; else ", "select;", ""},
      {section, "group { ", "", "} "},
  };
  on_small_stack([&] {
    for (const Form &form : forms) {
      const std::string end = form.before == memory ? "; }" : form.before == section ? "} }" : "}";
      const auto nested = [&](int depth) {
        return form.before + repeated(form.open, depth) + form.core + repeated(form.close, depth) +
               end;
      };
      EXPECT_EQ(failure_of(nested(256)), "") << form.open;
      for (const int depth : {257, 100000})
        EXPECT_EQ(failure_of(nested(depth)), "syntax error: nested too deeply, the limit is 256")
            << form.open;
    }
    EXPECT_EQ(failure_of(memory + "1" + repeated(" + 1", chain_length) + "; }"), "");
    EXPECT_EQ(failure_of(layout + repeated("{ } ", 1000) + "}"), "");
  });
}

TEST(VectorIds, KeepEachIdOnce)
{
  // Every sequence of three ranges over a few numbers, and the same at both ends of the type.
  constexpr std::int32_t bases[] = {0, std::numeric_limits<std::int32_t>::min(),
                                    std::numeric_limits<std::int32_t>::max() - 4};
  std::vector<std::pair<int, int>> spans;
  for (int low = 0; low <= 4; ++low)
    for (int high = low; high <= 4; ++high) spans.emplace_back(low, high);
  for (const std::int32_t base : bases)
    for (const auto &first : spans)
      for (const auto &second : spans)
        for (const auto &third : spans) {
          tdm::VectorIds ids;
          std::set<std::int32_t> expected;
          for (const auto &[low, high] : {first, second, third}) {
            ids.add(base + low, base + high);
            for (int id = low; id <= high; ++id) expected.insert(base + id);
          }
          std::set<std::int32_t> kept;
          std::int64_t last = std::numeric_limits<std::int64_t>::min() + 2;
          for (const auto &[low, high] : ids.ranges()) {
            EXPECT_GT(low, last + 1) << "ranges touch";
            for (std::int64_t id = low; id <= high; ++id)
              kept.insert(static_cast<std::int32_t>(id));
            last = high;
          }
          EXPECT_EQ(kept, expected);
        }
}

TEST(FileObject, TheFirstPlaceUnderAKeyWins)
{
  TDMFileFillSpec record;
  EXPECT_EQ(record.find_location("alignment"), nullptr);
  record.store_location("alignment", {"a", 1, 2});
  record.store_location(LocationKey::of(std::string("alignment").c_str()), {"b", 3, 4});
  EXPECT_STREQ(record.get_location("alignment").file, "a");
  EXPECT_EQ(record.sourceLocations.entries().size(), 1U);
  EXPECT_DEATH((void)record.get_location("size"), "loc_itr != sourceLocations.end\\(\\)");
}

TEST(FileObject, ListsOfPlacesAreSharedUntilOneChanges)
{
  SourceLocations list;
  std::vector<std::string> keys;
  for (int i = 0; i < 500; ++i) keys.push_back("key" + std::to_string(i));
  std::vector<SourceLocations> copies;
  for (int i = 0; i < 500; ++i) {
    if (i % 50 == 49) copies.push_back(list);
    list.store(LocationKey::of(keys[static_cast<std::size_t>(i)].c_str()), {"f", i, 1});
    list.store(LocationKey::of(keys[static_cast<std::size_t>(i / 2)].c_str()), {"late", 0, 0});
  }
  EXPECT_EQ(list.entries().size(), 500U);
  copies.push_back(list);
  for (const SourceLocations &copy : copies)
    for (std::size_t i = 0; i < keys.size(); ++i) {
      const TDMSourceLocation *found = copy.find(LocationKey::of(keys[i].c_str()));
      ASSERT_EQ(found != nullptr, i < copy.entries().size());
      if (found == nullptr) break;
      EXPECT_EQ(found->line, static_cast<int>(i));
    }
}

TEST(VectorValue, RefusesASecondOffset)
{
  TDMFileVectorValue value;
  value.set_loop_offset(leaf());
  try {
    value.set_loop_offset(leaf());
    FAIL();
  } catch (TDMFileSyntaxException *failure) {
    EXPECT_EQ(failure->text(), "trying to set vector value loop offset twice");
    delete failure;
  }
}

} // namespace
