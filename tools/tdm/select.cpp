// select: which selection of a space takes which section of a list, as a linker would ask it.
// Selections come in the order of the walk; what one has taken isn't there for those behind it.
#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

#include <tdm_c/tdm.h>

#include "find.h"
#include "format.h"
#include "outline_json.h"
#include "outline_text.h"
#include "section_list.h"
#include "verbs.h"

namespace tool {

namespace {

using Sections = std::vector<const Section *>;

template <char letter> int has_letter(void *handle)
{
  return static_cast<const Section *>(handle)->has(letter) ? 1 : 0;
}

const char *name_of(void *handle)
{
  return static_cast<const Section *>(handle)->name.c_str();
}

constexpr tdm_section_functions section_functions = {
    has_letter<'r'>, has_letter<'w'>, has_letter<'x'>, has_letter<'i'>, has_letter<'s'>,
    has_letter<'b'>, has_letter<'p'>, name_of,         name_of};

/// The sections that are still to be had.
class SectionPool {
public:
  explicit SectionPool(std::vector<Section> &sections)
  {
    for (Section &section : sections) {
      Handle handle(tdm_section_create(&section, &section_functions), tdm_section_delete);
      if (handle == nullptr) throw std::bad_alloc();
      free_.push_back({&section, std::move(handle)});
    }
  }

  /// What the selection takes, in the order in which it takes it.
  Sections take(tdm_selection_statement *statement, tdm_statement_env *env)
  {
    std::vector<tdm_section *> items;
    items.reserve(free_.size());
    for (const Free &one : free_) items.push_back(one.handle.get());
    const auto count = static_cast<uint32_t>(items.size());
    const tdm_arr candidates = {sizeof(tdm_section *), count, count, items.data()};
    Sections taken;
    taken.reserve(items.size());
    tdm_selection_statement_get_sections(
        statement, env, &candidates,
        [](void *section, void *user) {
          static_cast<Sections *>(user)->push_back(static_cast<const Section *>(section));
        },
        0, &taken);
    remove(taken);
    return taken;
  }

  [[nodiscard]] Sections rest() const
  {
    Sections rest;
    for (const Free &one : free_) rest.push_back(one.section);
    return rest;
  }

private:
  using Handle = std::unique_ptr<tdm_section, void (*)(tdm_section *)>;
  struct Free {
    const Section *section;
    Handle handle;
  };

  void remove(const Sections &taken)
  {
    Sections sorted = taken;
    std::sort(sorted.begin(), sorted.end(), std::less<>());
    std::erase_if(free_, [&](const Free &one) {
      return std::binary_search(sorted.begin(), sorted.end(), one.section, std::less<>());
    });
  }

  std::vector<Free> free_;
};

struct Answer {
  Outline outline;
  std::vector<Sections> taken; ///< by the number of the selection
  Sections rest;
};

/// The sections of the list exist, whatever else the user says of conditions.
Answer answer_of(const Options &options, tdm_space *space, std::vector<Section> &sections)
{
  Answers answers = answers_of(options);
  for (const Section &section : sections) answers.sections.insert(section.name);
  SectionPool pool(sections);
  Answer answer;
  answer.outline =
      read_outline(space, answers, [&](tdm_selection_statement *statement, tdm_statement_env *env) {
        answer.taken.push_back(pool.take(statement, env));
      });
  answer.rest = pool.rest();
  return answer;
}

// ---- text

/// Leaves selections, and what they stand in.
void keep_selections(std::vector<Item> &items)
{
  std::erase_if(items, [](Item &item) {
    if (item.kind == ItemKind::select || item.kind == ItemKind::walk_ended) return false;
    keep_selections(item.children);
    return item.children.empty();
  });
}

std::vector<std::string> lines_of(const Sections &sections)
{
  Table table;
  for (const Section *section : sections) table.add({section->name, section->attributes});
  return table.lines();
}

void write_text(Answer answer, const FileNames &names, std::ostream &out)
{
  keep_selections(answer.outline.items);
  Node tree = outline_tree(answer.outline, names, [&](const Item &item, Facts &facts, Node &node) {
    if (item.kind != ItemKind::select) return;
    const Sections &taken = answer.taken[item.selection];
    facts.add("takes " + (taken.empty() ? "nothing" : counted(taken.size(), "section")));
    node.details = lines_of(taken);
  });
  if (answer.outline.complete) {
    const std::string rest =
        answer.rest.empty() ? "nothing" : counted(answer.rest.size(), "section");
    tree.children.push_back({"not selected: " + rest, lines_of(answer.rest), {}});
  }
  print_tree(out, tree);
}

// ---- JSON

Json json_sections(const Sections &sections)
{
  Json list = Json::array();
  for (const Section *section : sections)
    list.push_back(
        {{"name", section->name}, {"attributes", section->attributes}, {"line", section->line}});
  return list;
}

/// `within` is what the items stand in, from the outside in. A block says nothing.
void add_selections(Json &list, const std::vector<Item> &items, const Json &within,
                    const Answer &answer, const FileNames &names)
{
  for (const Item &item : items) {
    if (item.kind == ItemKind::select) {
      Json json = json_item(item, names);
      json["within"] = within;
      json["sections"] = json_sections(answer.taken[item.selection]);
      list.push_back(std::move(json));
    } else if (!item.children.empty()) {
      Json inner = within;
      if (item.kind != ItemKind::block) inner.push_back(json_item(item, names));
      add_selections(list, item.children, inner, answer, names);
    }
  }
}

void write_answer(const Answer &answer, const FileNames &names, std::ostream &out)
{
  Json selections = Json::array();
  add_selections(selections, answer.outline.items, Json::array(), answer, names);
  Json document{
      {"schema_version", json_schema_version},
      {"space", json_space(answer.outline)},
      {"selections", selections},
      {"unselected", answer.outline.complete ? json_sections(answer.rest) : Json(nullptr)}};
  add_outcome(document, answer.outline, names);
  write_json(out, document);
}

} // namespace

int select(const Options &options, const Session &session, Diagnostics &diagnostics,
           std::ostream &out)
{
  tdm_space *space = find_space(session.spec(), options.space);
  SectionList list = read_section_list(options.sections);
  for (const Failure &failure : list.failures) diagnostics.report(failure);
  if (!list.failures.empty()) return exit_usage;
  Answer answer = answer_of(options, space, list.sections);
  const int result = report_failures(answer.outline, diagnostics);
  if (options.json)
    write_answer(answer, session.names(), out);
  else
    write_text(std::move(answer), session.names(), out);
  return result;
}

} // namespace tool
