// Reads spaces with a walker, an environment, sections and a map of the client's own.
#include "client.h"

namespace {

class Section final : public TDMSection {
public:
  Section(std::string name, bool absolute = false, bool scratch = false)
      : name_(std::move(name)), absolute_(absolute), scratch_(scratch)
  {
  }

  bool is_readable() const override { return true; }
  bool is_writable() const override { return false; }
  bool is_executable() const override { return true; }
  bool is_inited() const override { return true; }
  bool is_scratch() const override { return scratch_; }
  bool is_blanked() const override { return false; }
  bool is_p() const override { return false; }
  const std::string &name() const override { return name_; }
  std::string display_name() const override { return "<" + name_ + ">"; }
  bool is_absolute() const { return absolute_; }

  std::vector<TDMSection *> refers_to;

private:
  std::string name_;
  bool absolute_, scratch_;
};

/// Sections in the order of a list.
class List final : public TDMSectionMap {
public:
  std::unique_ptr<TDMSectionEnumerator> all() override { return enumerate(nullptr); }
  bool contains(const std::string &name) override { return enumerate(&name)->has_more(); }
  std::unique_ptr<TDMSectionEnumerator> with_name(const std::string &name) override
  {
    return enumerate(&name);
  }
  void remove(TDMSection *section) override { std::erase(sections_, section); }
  void add(TDMSection *section) override { sections_.push_back(section); }

private:
  class Enumerator final : public TDMSectionEnumerator {
  public:
    explicit Enumerator(std::vector<TDMSection *> sections) : sections_(std::move(sections)) {}
    bool has_more() override { return next_ < sections_.size(); }
    TDMSection *next() override { return has_more() ? sections_[next_++] : nullptr; }

  private:
    std::vector<TDMSection *> sections_;
    std::size_t next_ = 0;
  };

  std::unique_ptr<TDMSectionEnumerator> enumerate(const std::string *name) const
  {
    std::vector<TDMSection *> found;
    for (TDMSection *section : sections_)
      if (name == nullptr || section->name() == *name) found.push_back(section);
    return std::make_unique<Enumerator>(std::move(found));
  }

  std::vector<TDMSection *> sections_;
};

/// Knows the references between sections, and keeps what it is told.
class Env final : public TDMStatementEnv {
public:
  explicit Env(std::vector<std::string> &messages) : messages_(messages) {}
  std::unique_ptr<TDMStatementEnv> clone() const override
  {
    return std::unique_ptr<TDMStatementEnv>(new Env(*this));
  }
  bool has_absolute_restriction(const TDMSection &section) override
  {
    return dynamic_cast<const Section &>(section).is_absolute();
  }
  std::vector<TDMSection *> references(const std::vector<TDMSection *> &taken) override
  {
    std::vector<TDMSection *> all;
    for (TDMSection *section : taken)
      for (TDMSection *other : static_cast<Section *>(section)->refers_to) all.push_back(other);
    return all;
  }
  void message(const std::string &text) override { messages_.push_back(text); }

private:
  Env(const Env &) = default;

  std::vector<std::string> &messages_;
};

class Names final : public TDMSelectionStatement::SectionFunction {
public:
  void call(TDMSection &section) override { names.push_back(section.name()); }

  std::vector<std::string> names;
};

/// Writes the course of a walk down, and does a linker's work on the way.
class Walker final : public TDMSpaceWalker {
public:
  Walker(TDMExpressionEnv *expressions, TDMSectionMap &map) : expressions_(expressions), map_(map)
  {
  }

  void stack_def(TDMStackDef &definition) override { trace += "stack " + definition.name + "; "; }
  void heap_def(TDMHeapDef &definition) override { trace += "heap " + definition.name + "; "; }
  void vector_table_begin(TDMVectorTable &) override { trace += "vectors; "; }
  void vector_table_end(TDMVectorTable &) override { trace += "end vectors; "; }
  void copy_table(TDMCopyTable *table) override { trace += table ? "copytable; " : "none; "; }
  void direct_init(TDMDirectInit &) override { trace += "init; "; }
  void reserved_range(TDMReservedRange &) override { trace += "range; "; }
  void assignment(TDMAssignment &statement, TDMStatementEnv &) override
  {
    trace += statement.symbol + " = " + number(*statement.value) + "; ";
  }
  void block_begin(TDMBlock &block, TDMStatementEnv &) override
  {
    trace += std::to_string(block.statements.size()) + " {";
  }
  void block_end(TDMBlock &, TDMStatementEnv &) override { trace += "} "; }
  void if_begin(TDMIfStatement &statement, TDMStatementEnv &) override
  {
    CHECK(dynamic_cast<TDMStackStatement *>(statement.false_statement.get()) != nullptr);
    trace += "if ";
  }
  void if_end(TDMIfStatement &, TDMStatementEnv &) override { trace += "fi; "; }
  void create_section_begin(TDMCreateSectionStatement &, TDMStatementEnv &) override {}
  void create_section_end(TDMCreateSectionStatement &, TDMStatementEnv &) override {}
  void group_begin(TDMGroup &group, TDMStatementEnv &outer, TDMStatementEnv &inner) override
  {
    CHECK(dynamic_cast<Env *>(&outer) != nullptr && dynamic_cast<Env *>(&inner) != nullptr);
    CHECK(inner.group_name != nullptr && *inner.group_name == group.name);
    trace += "group " + *group.name;
    if (inner.location != nullptr && inner.location->is_address())
      trace += "@" + std::to_string(inner.location->address_in_space());
    trace += "( ";
  }
  void group_end(TDMGroup &, TDMStatementEnv &, TDMStatementEnv &) override { trace += ") "; }
  void heap_statement(TDMHeapStatement &statement, TDMStatementEnv &) override
  {
    trace += "heap " + statement.name + "; ";
  }
  void memory_copy(TDMMemoryCopyStatement &, TDMStatementEnv &) override {}
  void reserved_statement(TDMReservedStatement &, TDMStatementEnv &) override {}
  void section_layout_begin(TDMSectionLayout &) override { trace += "layout "; }
  void section_layout_end(TDMSectionLayout &) override { trace += "end"; }
  void selection(TDMSelectionStatement &statement, TDMStatementEnv &env) override
  {
    Names names;
    statement.select(env, map_, names, true);
    trace += "select " + *statement.section_name + ":";
    for (const std::string &name : names.names) trace += " " + name;
    trace += "; ";
  }
  void stack_statement(TDMStackStatement &, TDMStatementEnv &) override { trace += "stack; "; }
  void struct_statement(TDMStructStatement &statement, TDMStatementEnv &) override
  {
    trace += statement.name + ":";
    for (const auto &[value, size] : statement.members)
      trace += " " + number(*value) + "/" + std::to_string(size);
    trace += "; ";
  }
  void table_statement(TDMTableStatement &, TDMStatementEnv &) override { trace += "table; "; }
  TDMExpressionEnv *expression_env() override { return expressions_; }
  std::unique_ptr<TDMStatementEnv> new_statement_env() override
  {
    return std::make_unique<Env>(messages);
  }

  std::string trace;
  std::vector<std::string> messages;

private:
  std::string number(TDMExpression &expression) const
  {
    return std::to_string(expression.value(expressions_));
  }

  TDMExpressionEnv *expressions_;
  TDMSectionMap &map_;
};

/// What a failed walk told, and the text of its failure, which is deleted.
template <class Failure>
void fails(tdm_space *space, TDMExpressionEnv *expressions, const char *text, const char *trace)
{
  TDMDefaultSectionMap empty;
  Walker walker(expressions, empty);
  try {
    tdm_walk_space(*space, walker);
    CHECK(!"a walk that fails");
  } catch (Failure *failure) {
    CHECK(failure->text().find(text) != std::string::npos);
    delete failure;
  }
  CHECK(walker.trace == trace);
}

} // namespace

void test_walk(tdm_space *space)
{
  Linker linker;
  // In an array, since the sections that others refer to come in the order of their addresses.
  Section sections[] = {{".text"},      {".tabs", true}, {".fixed", true},      {".rodata"},
                        {".abs", true}, {".gone"},       {".scr", false, true}, {".other"}};
  for (int n : {0, 2, 3, 4, 5, 6}) sections[0].refers_to.push_back(&sections[n]);
  TDMDefaultSectionMap ordered;
  List list;
  for (TDMSectionMap *map :
       {static_cast<TDMSectionMap *>(&ordered), static_cast<TDMSectionMap *>(&list)}) {
    for (Section &section : sections)
      if (section.name() != ".gone") map->add(&section);
    Walker walker(&linker, *map);
    tdm_walk_space(*space, walker);
    CHECK(walker.trace == "none; layout 3 {start = 4096; if header: 4096/4 24/2 2598427311/4; fi; "
                          "group g1@1040( 2 {select .fixed: .fixed; "
                          "select .t*: .text .rodata; } ) } end");
    const std::vector<std::string> messages = {
        "section <.tabs> was not selected because it already has an absolute restriction",
        "section <.fixed> not selected: the section is referenced by 'ref_tree', but could not be "
        "selected",
        "section <.gone> not selected: the section is referenced by 'ref_tree', but could not be "
        "selected",
        "section <.abs> not selected: the section is referenced by 'ref_tree', but the section has "
        "an absolute restriction"};
    CHECK(walker.messages == messages);
    CHECK(!map->contains(".text") && map->contains(".other"));
  }
}

void test_failures(tdm_space *space, tdm_space *bad)
{
  Linker linker;
  fails<TDMSyntaxException>(
      bad, &linker, "trying to set nocopy attribute for group with inherited copy attribute",
      "none; layout 2 {heap he; group g2( 1 {");
  // Without an environment a condition can't be answered; the root of the family serves too.
  TDMDefaultSectionMap empty;
  fails<TDMFileException>(bad, nullptr, "nocopy", "none; layout 2 {heap he; group g2( 1 {");
  try {
    Walker walker(nullptr, empty);
    tdm_walk_space(*space, walker);
    CHECK(!"a walk that fails");
  } catch (TDMFileException *failure) {
    CHECK(failure->text().find("can only be used in struct statements") != std::string::npos);
    delete failure;
  }
  // The arithmetic of addresses has a family of its own.
  try {
    CHECK(AddressValue(1, 0, 8) < AddressValue(1, 0, 16));
    CHECK(!"different units");
  } catch (MauLibException *failure) {
    delete failure;
  }
}
