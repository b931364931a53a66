// The stores below the preprocessor proper: arenas, hash table, string pool, options, catalogue.
#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "common/failures.h"
#include "preprocessor/c_buffer.h"
#include "preprocessor/c_con.h"
#include "preprocessor/c_diag.h"
#include "preprocessor/c_memory.h"
#include "preprocessor/c_opt.h"
#include "preprocessor/c_pragma.h"
#include "preprocessor/hashtab.h"
#include "preprocessor/preprocessor.h"
#include "preprocessor/string_pool.h"

namespace {

TEST(Memory, IsZeroedAlignedAndReused)
{
  tdm::MemoryArena arena;
  for (const std::size_t size : {1U, 4U, 8U, 12U, 16U, 200U, 201U, 100000U}) {
    auto *bytes = static_cast<unsigned char *>(arena.allocate(size));
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(bytes) % (size % 8 == 0 ? 8 : 4), 0U);
    for (std::size_t i = 0; i < size; ++i) ASSERT_EQ(bytes[i], 0);
  }
  EXPECT_EQ(arena.total(), 4U + 4 + 8 + 12 + 16 + 200 + 204 + 100000);
  void *first = arena.allocate(24);
  void *second = arena.allocate(40);
  void *third = arena.allocate(56);
  arena.release(first, 24);
  EXPECT_EQ(static_cast<unsigned char *>(first)[23], 0x2A);
  arena.release(second, 40);
  arena.release(third, 56); // a third size is abandoned
  EXPECT_NE(arena.allocate(56), third);
  EXPECT_EQ(arena.allocate(40), second);
  EXPECT_EQ(arena.allocate(24), first);
  EXPECT_EQ(static_cast<unsigned char *>(first)[0], 0);
}

TEST(Hashtab, AgreesWithAMap)
{
  hashtab table;
  std::map<std::string, const char *> expected;
  std::set<std::string> texts; // owns the entries
  for (unsigned i = 0; i < 20000; ++i) {
    const std::string key = "k" + std::to_string(i * 7919 % 5003);
    void *found = hashtab_lookup(&table, key.c_str());
    ASSERT_EQ(found != nullptr, expected.count(key) != 0) << key;
    if (found == nullptr) {
      const char *entry = texts.insert(key).first->c_str();
      hashtab_insert(&table, const_cast<char *>(entry));
      expected[key] = entry;
    } else if (i % 3 != 0) {
      EXPECT_EQ(found, expected[key]);
      hashtab_delete(&table);
      expected.erase(key);
    }
  }
  std::size_t walked = 0;
  for (void *entry = hashtab_first(&table); entry != nullptr; entry = hashtab_next(&table)) {
    EXPECT_EQ(expected.count(static_cast<const char *>(entry)), 1U);
    ++walked;
  }
  EXPECT_EQ(walked, expected.size());
  EXPECT_EQ(table.used - table.deleted, expected.size());
  tdm::hashtab_free(table);
}

TEST(Hashtab, ComparesKeysByKind)
{
  // As pointers, equal texts at two places are two keys.
  char a[] = "x", b[] = "x";
  hashtab by_pointer;
  by_pointer.key_length = -1;
  EXPECT_EQ(hashtab_lookup(&by_pointer, a), nullptr);
  hashtab_insert(&by_pointer, a);
  EXPECT_EQ(hashtab_lookup(&by_pointer, b), nullptr);
  EXPECT_EQ(hashtab_lookup(&by_pointer, a), a);
  tdm::hashtab_free(by_pointer);

  const std::uint32_t one[2] = {1, 2}, same[2] = {1, 2}, other[2] = {1, 3};
  hashtab by_bytes;
  by_bytes.key_length = sizeof one;
  EXPECT_EQ(hashtab_lookup(&by_bytes, one), nullptr);
  hashtab_insert(&by_bytes, const_cast<std::uint32_t *>(one));
  EXPECT_EQ(hashtab_lookup(&by_bytes, same), one);
  EXPECT_EQ(hashtab_lookup(&by_bytes, other), nullptr);
  tdm::hashtab_free(by_bytes);
}

TEST(StringPool, FindsWhatIsInternedAlone)
{
  tdm::string_pool_start();
  const std::string text = "a text that is kept \0 twice";
  const char *const first = tdm::keep_unindexed(text);
  const char *const second = tdm::keep_unindexed(text);
  const char *const interned = tdm::intern(text);
  EXPECT_NE(first, second);
  EXPECT_NE(first, interned);
  EXPECT_EQ(tdm::intern(text), interned);
  for (const char *copy : {first, second, interned}) {
    EXPECT_EQ(std::string_view(copy, tdm::pooled(copy).length), text);
    EXPECT_EQ(copy[text.size()], '\0');
    EXPECT_EQ(tdm::pooled(copy).marks, 0U);
  }
  tdm::string_pool_end();
}

TEST(StringPool, GivesOneAddressForEqualTexts)
{
  tdm::string_pool_start();
  std::vector<const char *> pooled;
  for (int i = 0; i < 3000; ++i)
    pooled.push_back(
        tdm::intern(std::string(static_cast<std::size_t>(i % 300), 'x') + std::to_string(i)));
  tdm::string_pool_start(); // keeps the pool that exists
  for (int i = 0; i < 3000; ++i) {
    const std::string text =
        std::string(static_cast<std::size_t>(i % 300), 'x') + std::to_string(i);
    ASSERT_EQ(tdm::intern(text), pooled[static_cast<std::size_t>(i)]);
    ASSERT_EQ(pooled[static_cast<std::size_t>(i)], text);
    ASSERT_EQ(tdm::pooled(pooled[static_cast<std::size_t>(i)]).length, text.size());
  }
  EXPECT_EQ(tdm::intern(""), tdm::intern({}));
  EXPECT_NE(tdm::intern(std::string_view("a\0b", 3)), tdm::intern("a"));
  tdm::string_pool_end();
  EXPECT_FALSE(tdm::string_pool_started());
}

TEST(StringPool, LeavesTextsToThoseWhoKeepThem)
{
  tdm::string_pool_start();
  const tdm::Text text = tdm::pooled_text("kept");
  auto first = std::make_unique<tdm::TextKeeper>();
  auto second = std::make_unique<tdm::TextKeeper>();
  tdm::string_pool_end();
  try {
    static_cast<void>(tdm::pooled_text("new"));
    ADD_FAILURE() << "a text without a pool";
  } catch (TDMFileException *failure) {
    EXPECT_EQ(failure->text(), "tdm_init has not been called");
    delete failure;
  }
  tdm::string_pool_start();
  const tdm::TextKeeper of_the_next_pool;
  EXPECT_NE(tdm::intern("kept"), text.data());
  second.reset();
  EXPECT_EQ(text, "kept");
  first.reset();
  tdm::string_pool_end();
}

TEST(Buffer, GrowsWithItsText)
{
  tdm::TextBuffer buffer(4);
  std::string expected;
  for (int i = 0; i < 100; ++i) {
    const std::string piece(static_cast<std::size_t>(i), static_cast<char>('a' + i % 26));
    buffer.append(piece);
    buffer.append('\0');
    expected += piece + '\0';
  }
  EXPECT_EQ(buffer.view(), expected);
  EXPECT_EXIT(buffer.append(buffer.view().substr(1)), testing::ExitedWithCode(4), "");
}

TEST(Options, FollowTheTable)
{
  tdm::preprocessor_start();
  EXPECT_TRUE(option_get_bool(tdm::optCOMMENT));
  EXPECT_FALSE(option_get_bool(tdm::optDETERMINISTIC));
  EXPECT_EQ(option_get_integer(tdm::optISO), 99);
  EXPECT_EQ(option_count(tdm::optCOMMENT), 0);
  EXPECT_STREQ(tdm::option_attribute(tdm::optINCDIR, "MUL"), ",");
  EXPECT_STREQ(tdm::option_attribute(tdm::optDEFINE, "NOCC"), "");
  EXPECT_EQ(tdm::option_attribute(tdm::optUNDEF, "MUL"), nullptr);
  option_set_string(tdm::optINCDIR, "a,b");
  option_set_string(tdm::optINCDIR, "c");
  EXPECT_EQ(option_count(tdm::optINCDIR), 2);
  EXPECT_STREQ(option_get_string(tdm::optINCDIR, 0), "a,b");
  option_set_string(tdm::optUNDEF, "x");
  option_set_string(tdm::optUNDEF, "y");
  EXPECT_EQ(option_count(tdm::optUNDEF), 2);
  EXPECT_STREQ(option_get_string(tdm::optUNDEF), "y");
  EXPECT_EXIT(static_cast<void>(option_get_string(tdm::optINCDIR, 2)), testing::ExitedWithCode(4),
              "");
  EXPECT_EXIT(static_cast<void>(option_get_bool(tdm::optISO)), testing::ExitedWithCode(4), "");
  tdm::pragma_start();
  EXPECT_FALSE(pragma_get(pragma_vector_current(), tdm::optSTDINC));
  EXPECT_EXIT(static_cast<void>(option_get_bool(tdm::optSTDINC)), testing::ExitedWithCode(4), "");
  EXPECT_EXIT(static_cast<void>(pragma_get(pragma_vector_current(), tdm::optISO)),
              testing::ExitedWithCode(4), "");
  tdm::pragma_end();
  tdm::preprocessor_start();
  EXPECT_EQ(option_count(tdm::optINCDIR), 0);
  tdm::preprocessor_end();
}

TEST(Catalogue, NotesBelongToTheMessageBefore)
{
  tdm::preprocessor_start();
  diag_plain(E_bad_line);
  diag_plain(W_macro_redefined, "A");
  diag_plain(I_previous_macro_def, "A");
  diag_plain(I_previous_macro_def, "B"); // belongs to the note
  diag_plain(W_hash_warning, "x");
  EXPECT_EQ(tdm::diag_error_count(), 2);
  EXPECT_EQ(tdm::diag_warning_count(), 1);
  EXPECT_EQ(tdm::diag_list('E')[0].note, -1);
  EXPECT_EQ(tdm::diag_list('W')[0].note, 0);
  EXPECT_EQ(tdm::diag_list('I')[0].note, 1);
  EXPECT_STREQ(tdm::diag_list('I')[1].text, "previous definition of macro \"B\"");
  EXPECT_EQ(tdm::diag_list('E')[1].number, 980);
  EXPECT_EXIT(diag_plain(S_pragma_used_as_option, "x"), testing::ExitedWithCode(4), "");
  EXPECT_EQ(tdm::diag_row(948)->message, E_include_file);
  EXPECT_EQ(tdm::diag_row(1), nullptr);
  tdm::preprocessor_end();
}

TEST(WideValue, HasEightyBits)
{
  const TDMWideValue one = 1, bottom = one << 79;
  EXPECT_TRUE(bottom < 0);
  EXPECT_TRUE(bottom - one == ~bottom);
  EXPECT_TRUE(bottom / -1 == bottom); // wraps
  EXPECT_TRUE((bottom % -1).is_zero());
  EXPECT_TRUE(bottom * 2 == 0);
  EXPECT_TRUE((bottom >> 79) == -1);
  EXPECT_TRUE((one << 40) * (one << 39) == bottom);
  EXPECT_TRUE(TDMWideValue(-1).narrowed(true) == (one << 64) - 1);
  EXPECT_TRUE((one << 63).narrowed(false) < 0);
}

} // namespace
