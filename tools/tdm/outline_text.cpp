#include "outline_text.h"

#include <algorithm>
#include <utility>

#include <fmt/format.h>

#include "format.h"
#include "location_banks.h"
#include "object_text.h"
#include "session.h"

namespace tool {

namespace {

std::string words_of(std::string key)
{
  std::replace(key.begin(), key.end(), '_', ' ');
  return key;
}

std::string text_of(const Range &range)
{
  return hex(range.low) + ".." + hex(range.high);
}

/// What a value adds to its key; "" for a value that isn't worth a word.
class FactText {
public:
  FactText(const char *key, int mau) : key_(words_of(key)), mau_(mau) {}

  std::string operator()(const Unknown &unknown) const
  {
    return key_ + " ?" + (unknown.expression.empty() ? "" : " (" + unknown.expression + ")");
  }
  std::string operator()(bool flag) const { return flag ? key_ : ""; }
  std::string operator()(const std::string &text) const
  {
    return text.empty() ? "" : key_ + " " + text;
  }
  std::string operator()(Size size) const
  {
    if (size.units == 0) return "";
    return fmt::format("{} {} ({})", key_, hex(size.units), human_size(size.units, mau_));
  }
  std::string operator()(Alignment align) const
  {
    return align.units == 0 || align.units == 1 ? "" : fmt::format("{} {}", key_, align.units);
  }
  std::string operator()(Address address) const { return key_ + " " + hex(address.value); }
  std::string operator()(const Range &range) const { return text_of(range); }
  std::string operator()(Vectors vectors) const { return quantity(vectors.number, "vector"); }
  std::string operator()(Count count) const { return fmt::format("{} {}", key_, count.number); }
  std::string operator()(Bank bank) const
  {
    return bank.number >= 0 ? fmt::format("{} {}", key_, bank.number) : "";
  }
  std::string operator()(const std::vector<BankedRange> &ranges) const
  {
    std::string text = key_;
    for (const BankedRange &range : ranges)
      text += (&range == &ranges.front() ? " " : " | ") + range_text(range);
    return text;
  }
  std::string operator()(const Phrase &phrase) const { return phrase.text; }
  std::string operator()(const std::vector<Question> &questions) const
  {
    std::string text;
    for (const Question &question : questions)
      text += fmt::format("{}{} \"{}\": {}", text.empty() ? "" : ", ", question.about,
                          question.name, question.answer ? "yes" : "no");
    return text;
  }

private:
  static std::string quantity(int64_t number, const char *noun)
  {
    return number < 0 ? fmt::format("{} {}s", number, noun)
                      : counted(static_cast<size_t>(number), noun);
  }

  std::string key_;
  int mau_;
};

class OutlineText {
public:
  OutlineText(int mau, const FileNames &names, const Annotate &annotate)
      : mau_(mau), names_(names), annotate_(annotate)
  {
  }

  /// Recursion follows the nesting of the description, which its parser limits.
  [[nodiscard]] std::vector<Node> of(const std::vector<Item> &items) const
  {
    std::vector<Node> nodes;
    nodes.reserve(items.size());
    for (const Item &item : items) nodes.push_back(of(item));
    return nodes;
  }

private:
  [[nodiscard]] Node of(const Item &item) const
  {
    Node node;
    Facts facts;
    for (const Fact &fact : item.facts)
      if (fact.in_text) facts.add(std::visit(FactText(fact.key, mau_), fact.value));
    node.details = item.lines;
    if (annotate_) annotate_(item, facts, node);
    if (item.place) facts.add(line_text(names_, *item.place));
    node.text = words_of(kind_name(item.kind));
    if (item.name.has_value()) {
      // Groups have names, all others texts.
      const char *quote = item.kind == ItemKind::group ? "" : "\"";
      node.text += std::string(" ") + quote + *item.name + quote;
    }
    node.text += item.head;
    if (!facts.text().empty()) node.text += "  " + facts.text();
    node.children = of(children_of(item));
    return node;
  }

  static const std::vector<Item> &children_of(const Item &item)
  {
    const bool holds_block =
        item.children.size() == 1 && item.children.front().kind == ItemKind::block;
    return holds_block ? item.children.front().children : item.children;
  }

  int mau_;
  const FileNames &names_;
  const Annotate &annotate_;
};

} // namespace

Node outline_tree(const Outline &outline, const FileNames &names, const Annotate &annotate)
{
  return {fmt::format("space {}  {}-bit MAUs", outline.space, outline.mau),
          {},
          OutlineText(outline.mau, names, annotate).of(outline.items)};
}

} // namespace tool
