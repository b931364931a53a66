// Sections, the map and the enumerators over it, selectors, and what a selection takes.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "common/failures.h"
#include "layout/section.h"
#include "layout/section_map.h"
#include "layout/selection_statement.h"
#include "layout/statement_env.h"
#include "preprocessor/string_pool.h"

namespace {

/// A section with the flags of the letters.
class Section final : public TDMSection {
public:
  Section(std::string name, std::string letters) : name_(std::move(name)), letters_(letters) {}

  bool is_readable() const override { return has('r'); }
  bool is_writable() const override { return has('w'); }
  bool is_executable() const override { return has('x'); }
  bool is_inited() const override { return has('i'); }
  bool is_scratch() const override { return has('s'); }
  bool is_blanked() const override { return has('b'); }
  bool is_p() const override { return has('p'); }
  const std::string &name() const override { return name_; }
  std::string display_name() const override { return "<" + name_ + ">"; }

  std::vector<Section *> refers_to;
  bool absolute = false;

private:
  bool has(char letter) const { return letters_.find(letter) != std::string::npos; }

  std::string name_;
  std::string letters_;
};

/// Knows what the sections are, and writes down what it is told.
class Env final : public TDMStatementEnv {
public:
  Env() = default;

  bool has_absolute_restriction(const TDMSection &section) override
  {
    return static_cast<const Section &>(section).absolute;
  }
  std::vector<TDMSection *> references(const std::vector<TDMSection *> &taken) override
  {
    std::vector<TDMSection *> all;
    for (TDMSection *section : taken)
      for (Section *other : static_cast<Section *>(section)->refers_to) all.push_back(other);
    return all;
  }
  void message(const std::string &text) override { log += "[" + text + "]"; }

  std::string log;
};

class Names final : public TDMSelectionStatement::SectionFunction {
public:
  void call(TDMSection &section) override
  {
    text += (text.empty() ? "" : " ") + section.name();
    taken.push_back(&section);
  }

  std::string text;
  std::vector<TDMSection *> taken;
};

struct Sections {
  Section &add(const std::string &name, const std::string &letters = "r")
  {
    owned.push_back(std::make_unique<Section>(name, letters));
    map.add(owned.back().get());
    return *owned.back();
  }

  std::vector<std::unique_ptr<Section>> owned;
  TDMDefaultSectionMap map;
};

std::string names_of(TDMSectionEnumerator &enumerator)
{
  std::string text;
  while (enumerator.has_more()) text += enumerator.next()->name() + " ";
  return text;
}

TEST(SectionMap, KeepsNamesInOrderOfBytes)
{
  Sections sections;
  for (const char *name : {"b", "a", "\xff", "B", "", "a"}) sections.add(name);
  EXPECT_EQ(names_of(*sections.map.all()), " B a a b \xff ");
  EXPECT_TRUE(sections.map.contains("a"));
  EXPECT_FALSE(sections.map.contains("c"));
  EXPECT_FALSE(sections.map.with_name("c")->has_more());
  EXPECT_EQ(sections.map.with_name("c")->next(), nullptr);

  const auto same_name = sections.map.with_name("a");
  EXPECT_EQ(same_name->next(), sections.owned[1].get());
  sections.map.remove(sections.owned[1].get()); // behind the enumerator
  sections.map.remove(sections.owned[1].get());
  EXPECT_EQ(same_name->next(), sections.owned[5].get());
  EXPECT_FALSE(same_name->has_more());

  sections.map.add(sections.owned[5].get()); // is there already
  EXPECT_EQ(names_of(*sections.map.all()), " B a b \xff ");
}

TEST(SectionWrapper, AsksThroughTheTable)
{
  static int asked = 0;
  tdm_section_functions functions{};
  EXPECT_EQ(TDMSectionWrapper(nullptr, &functions).name(), "");
  EXPECT_EQ(TDMSectionWrapper(nullptr, &functions).display_name(), "");
  EXPECT_FALSE(TDMSectionWrapper(nullptr, &functions).is_p());

  functions.get_name = [](void *handle) {
    ++asked;
    return static_cast<const char *>(handle);
  };
  functions.get_display_name = [](void *) -> const char * { return nullptr; };
  functions.is_writable = [](void *) { return -1; };
  char handle[] = "text";
  const TDMSectionWrapper section(handle, &functions);
  EXPECT_EQ(section.name(), "text");
  EXPECT_EQ(section.name(), "text");
  EXPECT_EQ(asked, 1);
  EXPECT_EQ(section.display_name(), "");
  EXPECT_TRUE(section.is_writable());
  EXPECT_EQ(section.user(), handle);
}

TDMAttributes attributes(const std::string &letters)
{
  TDMAttributes set;
  const std::pair<char, bool *> flags[] = {{'r', &set.r}, {'w', &set.w}, {'x', &set.x},
                                           {'i', &set.i}, {'s', &set.s}, {'b', &set.b},
                                           {'p', &set.p}};
  for (const auto &[letter, flag] : flags) *flag = letters.find(letter) != std::string::npos;
  return set;
}

TEST(SectionSelectors, CompareEachFlag)
{
  const std::string letters = "rwxisbp";
  for (const char letter : letters) {
    const std::string one(1, letter);
    std::string others = letters;
    others.erase(others.find(letter), 1);
    const TDMSectionAttributesSelector set(attributes(one), {});
    EXPECT_TRUE(set.matches(Section("", one))) << letter;
    EXPECT_FALSE(set.matches(Section("", others))) << letter;
    const TDMSectionAttributesSelector clear({}, attributes(one));
    EXPECT_FALSE(clear.matches(Section("", one))) << letter;
    EXPECT_TRUE(clear.matches(Section("", others))) << letter;
  }
  EXPECT_FALSE(
      TDMSectionAttributesSelector(attributes("r"), attributes("r")).matches(Section("", "r")));
  EXPECT_TRUE(TDMSectionFileSelector("f.o").matches(Section("", "")));

  std::ostringstream out;
  TDMSectionAttributesSelector(attributes("prx"), attributes("wb")).print(out);
  TDMSectionFileSelector("f.o").print(out);
  EXPECT_EQ(out.str(), "attributes: +rxp-wb");
}

struct SelectRow {
  const char *pattern; ///< null: no name
  const char *set;     ///< null: no selector
  const char *clear;
  bool load_time;
  const char *taken;
};

TEST(Selection, TakesByNameAndAttributes)
{
  const SelectRow rows[] = {
      {"a*", nullptr, "", false, "a ab ac"},
      {"a", nullptr, "", false, "a"},
      {"a", "w", "", false, ""},
      {"a*", "r", "w", false, "a ac"},
      {nullptr, nullptr, "", false, "[a] a ab ac b"},
      {nullptr, "w", "", false, "ab"},
      {"c*", nullptr, "", false, ""},
      {"a", nullptr, "", true, "[a]"},
      {"?", nullptr, "", true, "[a]"},
      {"a|b", nullptr, "", true, ""},
      {"\\[a\\]", nullptr, "", false, "[a]"},
      {"[a]", nullptr, "", false, "a"},
  };
  for (const SelectRow &row : rows) {
    Sections sections;
    sections.add("b", "x");
    sections.add("ac");
    sections.add("ab", "rw");
    sections.add("a");
    sections.add("[a]", "x");
    std::optional<tdm::Text> name;
    if (row.pattern != nullptr) name = row.pattern;
    TDMSelectionStatement statement({}, name);
    if (row.set != nullptr)
      statement.selectors.push_back(std::make_unique<TDMSectionAttributesSelector>(
          attributes(row.set), attributes(row.clear)));
    Env env;
    env.load_time = row.load_time;
    Names taken;
    statement.select(env, sections.map, taken, true);
    EXPECT_EQ(taken.text, row.taken) << (row.pattern != nullptr ? row.pattern : "<none>");
    EXPECT_EQ(env.log, "");
    for (TDMSection *section : taken.taken)
      EXPECT_FALSE(sections.map.contains(section->name())) << section->name();
  }
}

TEST(Selection, TakesSectionsOfOneNameInOrderOfArrival)
{
  Sections sections;
  std::vector<TDMSection *> arrival;
  for (int i = 0; i < 5; ++i) arrival.push_back(&sections.add("a"));
  TDMSelectionStatement statement({}, "a");
  TDMStatementEnv env;
  Names taken;
  statement.select(env, sections.map, taken, false);
  EXPECT_EQ(taken.taken, arrival);
}

TEST(Selection, AsksEverySelectorEvenAfterARefusal)
{
  struct Counting final : TDMSectionSelector {
    explicit Counting(int &count) : count_(count) {}
    bool matches(const TDMSection &) const override { return ++count_ < 0; }
    void print(std::ostream &) const override {}
    int &count_;
  };
  int count = 0;
  TDMSelectionStatement statement({}, std::nullopt);
  for (int i = 0; i < 3; ++i) statement.selectors.push_back(std::make_unique<Counting>(count));
  Sections sections;
  sections.add("a");
  TDMStatementEnv env;
  Names taken;
  statement.select(env, sections.map, taken, false);
  EXPECT_EQ(count, 3);
  EXPECT_EQ(taken.text, "");
}

TEST(Selection, PlainNamesBeatAbsoluteRestrictions)
{
  for (const bool verbose : {false, true})
    for (const char *pattern : {"a", "a*"}) {
      Sections sections;
      sections.add("a").absolute = true;
      Env env;
      Names taken;
      TDMSelectionStatement({}, pattern).select(env, sections.map, taken, verbose);
      const bool plain = std::string(pattern) == "a";
      EXPECT_EQ(taken.text, plain ? "a" : "");
      EXPECT_EQ(env.log, !plain && verbose ? "[section <a> was not selected because it already has "
                                             "an absolute restriction]"
                                           : "");
    }
}

TEST(Selection, FollowsReferences)
{
  Sections sections;
  Section &main = sections.add("main", "rx");
  Section &used = sections.add("used", "rx");
  Section &data = sections.add("data", "rw");
  Section &fixed = sections.add("fixed", "rx");
  Section &gone = sections.add("gone", "rx");
  Section &unused = sections.add("unused", "rx");
  sections.map.remove(&gone);
  fixed.absolute = true;
  main.refers_to = {&used, &data, &fixed, &gone, &main, &used};
  used.refers_to = {&unused};

  TDMSelectionStatement statement({}, "main");
  statement.selectors.push_back(
      std::make_unique<TDMSectionAttributesSelector>(attributes("x"), attributes("")));
  statement.use_reference_tree = true;
  Env env;
  Names taken;
  statement.select(env, sections.map, taken, true);
  EXPECT_EQ(taken.text, "main used");
  EXPECT_EQ(env.log, "[section <gone> not selected: the section is referenced by 'ref_tree', but "
                     "could not be selected]"
                     "[section <fixed> not selected: the section is referenced by 'ref_tree', but "
                     "the section has an absolute restriction]");

  TDMSelectionStatement nothing({}, "none");
  nothing.use_reference_tree = true;
  env.log.clear();
  nothing.select(env, sections.map, taken, true);
  EXPECT_EQ(env.log, "");
}

/// Counts who is asked for all sections, or for the name of one.
struct CountingMap final : TDMSectionMap {
  struct CountedSection final : public TDMSection {
    CountedSection(CountingMap &map, const std::string &name) : map_(map), name_(name) {}
    bool is_readable() const override { return true; }
    bool is_writable() const override { return false; }
    bool is_executable() const override { return false; }
    bool is_inited() const override { return false; }
    bool is_scratch() const override { return false; }
    bool is_blanked() const override { return false; }
    bool is_p() const override { return false; }
    const std::string &name() const override
    {
      ++map_.names_asked;
      return name_;
    }
    std::string display_name() const override { return name_; }

  private:
    CountingMap &map_;
    std::string name_;
  };

  std::unique_ptr<TDMSectionEnumerator> all() override
  {
    ++passes;
    return inner.all();
  }
  bool contains(const std::string &name) override { return inner.contains(name); }
  std::unique_ptr<TDMSectionEnumerator> with_name(const std::string &name) override
  {
    return inner.with_name(name);
  }
  void remove(TDMSection *section) override { inner.remove(section); }
  void add(TDMSection *section) override { inner.add(section); }

  TDMDefaultSectionMap inner;
  int passes = 0;
  int names_asked = 0;
};

TEST(Selection, PlainNamesDontLookAtAllSections)
{
  CountingMap map;
  std::vector<std::unique_ptr<CountingMap::CountedSection>> sections;
  for (int i = 0; i < 100'000; ++i) {
    const std::string name = ".text.f" + std::to_string(i);
    sections.push_back(std::make_unique<CountingMap::CountedSection>(map, name));
    map.add(sections.back().get());
  }
  TDMStatementEnv env;
  Names taken;
  map.names_asked = 0;
  constexpr int selections = 1000;
  for (int i = 0; i < selections; ++i)
    TDMSelectionStatement({}, tdm::pooled_text(".text.f" + std::to_string(i * 97)))
        .select(env, map, taken, false);
  EXPECT_EQ(map.passes, 0);
  EXPECT_EQ(std::count(taken.text.begin(), taken.text.end(), 'f'), selections);
  EXPECT_LE(map.names_asked, 4 * selections); // each of those taken is found, told and removed
}

std::string selected(const std::optional<tdm::Text> &pattern,
                     const std::vector<TDMSection *> &sections)
{
  TDMStatementEnv env;
  Names taken;
  TDMSelectionStatement({}, pattern).select(env, sections, taken, false);
  std::string text;
  for (const TDMSection *section : taken.taken)
    text +=
        section->name() + "@" +
        std::to_string(std::find(sections.begin(), sections.end(), section) - sections.begin()) +
        " ";
  return text;
}

TEST(Selection, TakesTheSameFromAnArrayHoweverOftenItComes)
{
  Sections owned;
  std::vector<TDMSection *> sections{nullptr};
  for (const char *name : {"ab", "a", "", "\xff", "abc", "b", "ab", "ab.x", "B", "a.b"})
    sections.push_back(&owned.add(name));
  sections.insert(sections.end(), {nullptr, sections[7], sections[1], sections[3]});
  struct Row {
    std::optional<tdm::Text> pattern;
    const char *taken;
  };
  const Row rows[] = {
      {std::nullopt, "@3 B@9 a@2 a.b@10 ab@1 ab@7 ab.x@8 abc@5 b@6 \xff@4 "},
      {"*", "@3 B@9 a@2 a.b@10 ab@1 ab@7 ab.x@8 abc@5 b@6 \xff@4 "},
      {"ab", "ab@1 ab@7 "},
      {"ab*", "ab@1 ab@7 ab.x@8 abc@5 "},
      {"ab?*", "ab.x@8 abc@5 "},
      {"a*b", "a.b@10 ab@1 ab@7 "},
      {"*b", "a.b@10 ab@1 ab@7 b@6 "},
      {"b|a*c", "abc@5 b@6 "},
      {"b*|a", "a@2 b@6 "},
      {"", "@3 "},
      {"\xff*", "\xff@4 "},
      {"c*", ""},
      {"abcd", ""},
  };
  for (int time = 0; time < 3; ++time)
    for (const Row &row : rows)
      EXPECT_EQ(selected(row.pattern, sections), row.taken) << row.pattern.value_or("<none>");
  for (const Row &row : rows) {
    EXPECT_EQ(selected(std::nullopt, {}), "");
    EXPECT_EQ(selected(row.pattern, sections), row.taken) << row.pattern.value_or("<none>");
  }
}

/// Nothing is remembered of a section that is gone, though another one stands in its place.
TEST(Selection, SeesAnotherNameAtAnAddress)
{
  tdm_section_functions functions{};
  functions.get_name = [](void *handle) { return static_cast<const char *>(handle); };
  char names[][4] = {"ab", "cd", "abx"};
  std::optional<TDMSectionWrapper> place(std::in_place, names[0], &functions);
  TDMSectionWrapper other(names[1], &functions);
  std::vector<TDMSection *> sections{&*place, &other};
  for (int time = 0; time < 3; ++time) EXPECT_EQ(selected("a*", sections), "ab@0 ");
  place.emplace(names[2], &functions);
  ASSERT_EQ(&*place, sections[0]);
  EXPECT_EQ(selected("a*", sections), "abx@0 ");
  EXPECT_EQ(selected("ab", sections), "");
  EXPECT_EQ(selected("*", sections), "abx@0 cd@1 ");

  std::swap(sections[0], sections[1]);
  EXPECT_EQ(selected("*", sections), "abx@1 cd@0 ");
  sections[1] = &other;
  EXPECT_EQ(selected("*", sections), "cd@0 ");
  sections.push_back(&*place);
  EXPECT_EQ(selected("*", sections), "abx@2 cd@0 ");

  // A section of a client's own.
  std::optional<Section> own(std::in_place, "ab", "r");
  sections = {&*own};
  for (int time = 0; time < 3; ++time) EXPECT_EQ(selected("*", sections), "ab@0 ");
  own.emplace("cd", "r");
  EXPECT_EQ(selected("*", sections), "cd@0 ");
}

/// The caller changes its array and its sections while it is told of those that are taken.
TEST(Selection, StandsChangesInTheMiddle)
{
  struct Changing final : TDMSelectionStatement::SectionFunction {
    explicit Changing(std::vector<TDMSection *> &array) : sections(array) {}
    void call(TDMSection &section) override
    {
      text += section.name() + " ";
      sections.erase(std::find(sections.begin(), sections.end(), &section));
      const Section short_lived("a", "r"); // drops what is kept
      text += "(" + selected("b*", sections) + ") ";
    }
    std::vector<TDMSection *> &sections;
    std::string text;
  };
  Sections owned;
  std::vector<TDMSection *> sections;
  for (const char *name : {"a2", "b", "a1"}) sections.push_back(&owned.add(name));
  selected("b*", sections);
  selected("b*", sections);
  Changing changing(sections);
  TDMStatementEnv env;
  TDMSelectionStatement({}, "a*").select(env, sections, changing, false);
  EXPECT_EQ(changing.text, "a1 (b@1 ) a2 (b@0 ) ");
}

TEST(StatementEnv, BaseKnowsNothing)
{
  TDMStatementEnv env;
  Section section("a", "r");
  EXPECT_FALSE(env.has_absolute_restriction(section));
  EXPECT_TRUE(env.references({&section}).empty());
  EXPECT_EQ(env.priority, 1);
  EXPECT_NE(dynamic_cast<TDMStatementEnv *>(env.clone().get()), nullptr);
}

} // namespace
