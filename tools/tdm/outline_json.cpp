#include "outline_json.h"

#include <utility>

#include "diagnostics.h"

namespace tool {

namespace {

struct FactJson {
  Json operator()(const Unknown &) const { return nullptr; }
  Json operator()(const Phrase &) const { return nullptr; }
  Json operator()(bool flag) const { return flag; }
  Json operator()(const std::string &text) const { return text; }
  Json operator()(Size size) const { return size.units; }
  Json operator()(Alignment alignment) const { return alignment.units; }
  Json operator()(Address address) const { return address.value; }
  Json operator()(const Range &range) const { return {{"low", range.low}, {"high", range.high}}; }
  Json operator()(Bank bank) const { return bank.number >= 0 ? Json(bank.number) : Json(nullptr); }
  Json operator()(Vectors vectors) const { return vectors.number; }
  Json operator()(Count count) const { return count.number; }
  Json operator()(const std::vector<BankedRange> &ranges) const
  {
    Json list = Json::array();
    for (const BankedRange &range : ranges)
      list.push_back(
          {{"low", range.low}, {"high", range.high}, {"bank", (*this)(Bank{range.bank})}});
    return list;
  }
  Json operator()(const std::vector<Question> &questions) const
  {
    Json list = Json::array();
    for (const Question &question : questions)
      list.push_back(
          {{"about", question.about}, {"name", question.name}, {"answer", question.answer}});
    return list;
  }
};

bool holds_others(ItemKind kind)
{
  return kind == ItemKind::layout || kind == ItemKind::block || kind == ItemKind::if_statement ||
         kind == ItemKind::section || kind == ItemKind::group;
}

} // namespace

Json json_value(const Value &value)
{
  return std::visit(FactJson(), value);
}

Json json_item(const Item &item, const FileNames &names)
{
  Json json{{"kind", kind_name(item.kind)}};
  if (item.name.has_value()) json["name"] = *item.name;
  json["location"] = item.place ? Json{{"file", names.shown(item.place->file)},
                                       {"line", item.place->line},
                                       {"column", item.place->column}}
                                : Json(nullptr);
  for (const Fact &fact : item.facts)
    if (!std::holds_alternative<Phrase>(fact.value)) json[fact.key] = json_value(fact.value);
  if (!item.written.is_null()) json["written"] = item.written;
  if (!item.rules.is_null()) json["rules"] = item.rules;
  return json;
}

Json json_items(const std::vector<Item> &items, const FileNames &names)
{
  Json list = Json::array();
  for (const Item &item : items) {
    Json json = json_item(item, names);
    if (holds_others(item.kind)) json["items"] = json_items(item.children, names);
    list.push_back(std::move(json));
  }
  return list;
}

Json json_space(const Outline &outline)
{
  return {{"full_name", outline.space}, {"mau_bits", outline.mau}};
}

void add_outcome(Json &document, const Outline &outline, const FileNames &names)
{
  Json failures = Json::array();
  for (const std::string &text : outline.failures) {
    const Failure failure = parse_failure(text);
    const bool placed = !failure.file.empty();
    failures.push_back({{"file", placed ? Json(names.shown(failure.file)) : Json(nullptr)},
                        {"line", failure.line},
                        {"column", failure.column},
                        {"text", failure.text}});
  }
  document["complete"] = outline.complete;
  document["failures"] = std::move(failures);
}

} // namespace tool
