// select: which selection of a space takes which section of a list, as a linker would ask it.
// Selections come in the order of the walk; what one has taken isn't there for those behind it.
#include <algorithm>
#include <iterator>
#include <memory>
#include <set>
#include <unordered_map>
#include <utility>
#include <vector>

#include <tdm_c/tdm.h>

#include "find.h"
#include "format.h"
#include "object_text.h"
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

/// What one selection does with the sections.
struct Selected {
  Sections taken;  ///< in the order in which it takes them
  Sections before; ///< it would take them, too, if no earlier one had; where that was asked for
};

/// The sections, and who has them.
class SectionPool {
public:
  /// Asked for anyway is what a selection that takes nothing would have taken; of others it is
  /// asked with `looks_back`.
  SectionPool(std::vector<Section> &sections, bool looks_back) : looks_back_(looks_back)
  {
    for (Section &section : sections) {
      Handle handle(tdm_section_create(&section, &section_functions), tdm_section_delete);
      if (handle == nullptr) throw std::bad_alloc();
      free_.push_back({&section, std::move(handle)});
    }
  }

  Selected take(tdm_selection_statement *statement, tdm_statement_env *env)
  {
    Selected selected{ask(statement, env, free_), {}};
    if (selected.taken.empty() || looks_back_) selected.before = ask(statement, env, gone_);
    move_away(selected.taken);
    for (const Section *section : selected.taken) owners_[section] = selections_;
    ++selections_;
    return selected;
  }

  /// The number of the selection that has it.
  [[nodiscard]] size_t owner(const Section *section) const { return owners_.at(section); }

  [[nodiscard]] Sections rest() const
  {
    Sections rest;
    for (const One &one : free_) rest.push_back(one.section);
    return rest;
  }

private:
  using Handle = std::unique_ptr<tdm_section, void (*)(tdm_section *)>;
  struct One {
    const Section *section;
    Handle handle;
  };

  /// What the selection takes of some sections.
  static Sections ask(tdm_selection_statement *statement, tdm_statement_env *env,
                      const std::vector<One> &sections)
  {
    std::vector<tdm_section *> items;
    items.reserve(sections.size());
    for (const One &one : sections) items.push_back(one.handle.get());
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
    return taken;
  }

  void move_away(const Sections &taken)
  {
    Sections sorted = taken;
    std::sort(sorted.begin(), sorted.end(), std::less<>());
    const auto first = std::stable_partition(free_.begin(), free_.end(), [&](const One &one) {
      return !std::binary_search(sorted.begin(), sorted.end(), one.section, std::less<>());
    });
    std::move(first, free_.end(), std::back_inserter(gone_));
    free_.erase(first, free_.end());
  }

  bool looks_back_;
  std::vector<One> free_;
  std::vector<One> gone_;
  std::unordered_map<const Section *, size_t> owners_;
  size_t selections_ = 0;
};

struct Answer {
  Outline outline;
  std::vector<Selected> selected; ///< by the number of the selection
  /// Of each section in Selected::before, in its order: the number of the selection that has it.
  std::vector<std::vector<size_t>> owners;
  Sections rest;
};

/// The sections of the list exist, whatever else the user says of conditions.
Answer answer_of(const Options &options, tdm_space *space, const ModelContext &context,
                 std::vector<Section> &sections)
{
  Answers answers = answers_of(options);
  for (const Section &section : sections) answers.sections.insert(section.name);
  SectionPool pool(sections, options.json);
  Answer answer;
  answer.outline = read_outline(space, answers, context,
                                [&](tdm_selection_statement *statement, tdm_statement_env *env) {
                                  answer.selected.push_back(pool.take(statement, env));
                                });
  for (const Selected &selected : answer.selected) {
    std::vector<size_t> &owners = answer.owners.emplace_back();
    for (const Section *section : selected.before) owners.push_back(pool.owner(section));
  }
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

std::string place_text(const FileNames &names, const std::optional<tdm_srcpos> &place)
{
  return place ? line_text(names, *place) : "";
}

void add_selections(const std::vector<Item> &items, std::vector<const Item *> &selections)
{
  for (const Item &item : items) {
    if (item.kind == ItemKind::select) selections.push_back(&item);
    add_selections(item.children, selections);
  }
}

class SelectionText {
public:
  SelectionText(const Answer &answer, const FileNames &names) : answer_(answer), names_(names)
  {
    add_selections(answer.outline.items, selections_);
  }

  void print(std::ostream &out) const
  {
    Node tree =
        outline_tree(answer_.outline, names_, [&](const Item &item, Facts &facts, Node &node) {
          annotate(item, facts, node);
        });
    add_idle(tree);
    if (answer_.outline.complete) {
      const std::string rest =
          answer_.rest.empty() ? "nothing" : counted(answer_.rest.size(), "section");
      tree.children.push_back({"not selected: " + rest, lines_of(answer_.rest), {}});
    }
    print_tree(out, tree);
  }

private:
  void annotate(const Item &item, Facts &facts, Node &node) const
  {
    if (item.kind != ItemKind::select) return;
    const Sections &taken = answer_.selected[item.selection].taken;
    facts.add("takes " + (taken.empty() ? "nothing" : counted(taken.size(), "section")));
    if (taken.empty()) facts.add(lost_text(item.selection));
    node.details = lines_of(taken);
  }

  /// "2 sections that match went to chip.tdm:10, chip.tdm:12"
  [[nodiscard]] std::string lost_text(size_t selection) const
  {
    const std::vector<size_t> &owners = answer_.owners[selection];
    if (owners.empty()) return "";
    std::string text = counted(owners.size(), "section") +
                       (owners.size() == 1 ? " that matches went to" : " that match went to");
    const char *before = " ";
    for (const size_t owner : std::set<size_t>(owners.begin(), owners.end())) {
      text += before + place_text(names_, selections_[owner]->place);
      before = " and ";
    }
    return text;
  }

  void add_idle(Node &tree) const
  {
    Table table;
    size_t idle = 0;
    for (const Item *item : selections_) {
      if (!answer_.selected[item->selection].taken.empty()) continue;
      ++idle;
      table.add({"select" + (item->name ? " \"" + *item->name + "\"" : item->head),
                 std::get<Phrase>(item->facts.front().value).text,
                 place_text(names_, item->place)});
    }
    if (idle > 0)
      tree.children.push_back({"taking nothing: " + counted(idle, "selection"), table.lines(), {}});
  }

  const Answer &answer_;
  const FileNames &names_;
  std::vector<const Item *> selections_; ///< by their numbers
};

void write_text(Answer answer, const FileNames &names, std::ostream &out)
{
  keep_selections(answer.outline.items);
  SelectionText(answer, names).print(out);
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

/// What it would have taken, too, with the index of the selection that did.
Json json_taken_before(const Answer &answer, size_t selection)
{
  Json list = json_sections(answer.selected[selection].before);
  for (size_t i = 0; i < list.size(); ++i) list[i]["selection"] = answer.owners[selection][i];
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
      json["sections"] = json_sections(answer.selected[item.selection].taken);
      json["taken_before"] = json_taken_before(answer, item.selection);
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
  const MappingNumbers mappings(session.spec());
  Answer answer = answer_of(options, space, {session.names(), mappings, false}, list.sections);
  const int result = report_failures(answer.outline, diagnostics);
  if (options.json)
    write_answer(answer, session.names(), out);
  else
    write_text(std::move(answer), session.names(), out);
  return result;
}

} // namespace tool
