// Routes and tables as text:
//
//   space chip:cpu:linear  0x40003010  (8-bit MAUs)
//   └─ memory chip:uart  0x10  (8-bit MAUs)
//         →  bus     chip:cpu:ahb      0x40003010  (8-bit MAUs)  chip.tdm:4
//         →  bus     chip:apb          0x3010      (8-bit MAUs)  chip.tdm:9
//         →  memory  chip:uart         0x10        (8-bit MAUs)  chip.tdm:15
//         =  space   chip:cpu:private  0x10        (8-bit MAUs)
//
// Of a span, the part that gets there is told first (⊆), and what none of the routes carries last
// (<unused>).
#include "map_output.h"

#include <algorithm>

#include <fmt/format.h>

#include "format.h"
#include "tree.h"

namespace tool {

namespace {

std::string place_text(const tdm_interval &at, bool is_span)
{
  return is_span ? span_text(at) : address_text(at.low);
}

class RouteText {
public:
  RouteText(const Answer &answer, const Session &session, const Units &units)
      : answer_(answer), session_(session), units_(units)
  {
  }

  [[nodiscard]] Node node() const
  {
    const tdm_interval at = units_.of(answer_.at);
    Node root{line_of(answer_.from, at), {}, {}};
    for (const Route &route : answer_.routes) root.children.push_back(of(route));
    if (!answer_.routes.empty()) add_unused(root);
    return root;
  }

private:
  /// A place in the units in which it is shown.
  [[nodiscard]] std::string words_of(const tdm_interval &at) const
  {
    const std::string unit = units_.name(at.low.mau);
    return answer_.is_span ? fmt::format("{}  {}  {}", span_text(at), human_size_of(at), unit)
                           : fmt::format("{}  {}", address_text(at.low), unit);
  }

  [[nodiscard]] std::string line_of(const End &end, const tdm_interval &at) const
  {
    return fmt::format("{} {}  {}", end.kind, end.name, words_of(at));
  }

  [[nodiscard]] Node of(const Route &route) const
  {
    const tdm_interval at = units_.of(route.end.at);
    Facts facts;
    facts.add_if(route.end.reserved, "reserved");
    facts.add(priority_text(route.end.at.priority, route.end.at.exec_priority));
    if (answer_.is_span) facts.add(mask_text(route.end.at));
    if (route.hops.size() == 1) {
      facts.add(lines_text(route.hops.front().mapping, answer_.forward));
      facts.add(place_of(route.hops.front()));
    }
    std::string text = line_of(route.end.end, at);
    if (!facts.text().empty()) text += "  " + facts.text();
    return {std::move(text), details_of(route), {}};
  }

  /// Like the rows of a space that show no memory.
  void add_unused(Node &root) const
  {
    if (!answer_.is_span) return;
    if (!answer_.unused.has_value())
      root.children.push_back(
          {"<unused>  not told: the patterns of the parts repeat too late", {}, {}});
    else
      for (const tdm_interval &unused : *answer_.unused) {
        const tdm_interval at = units_.of(unused);
        std::string text = fmt::format("<unused>  {}", words_of(at));
        if (!is_plain(unused)) text += "  " + mask_text(unused);
        root.children.push_back({std::move(text), {}, {}});
      }
  }

  /// What of the span that was asked for gets there.
  void add_part(Table &table, const Route &route) const
  {
    if (!answer_.is_span) return;
    if (route.part.has_value()) {
      Facts facts;
      facts.add(mask_text(*route.part));
      add(table, "⊆", answer_.from, *route.part, facts);
    } else {
      table.add({"⊆", answer_.from.kind, answer_.from.name, "<nothing>"});
    }
  }

  [[nodiscard]] std::vector<std::string> details_of(const Route &route) const
  {
    Table table;
    add_part(table, route);
    for (const Hop &hop : route.hops) {
      if (route.hops.size() == 1) break; // told with the end
      Facts facts;
      facts.add(lines_text(hop.mapping, answer_.forward));
      facts.add_if(hop.mapping.reserved != 0, "reserved");
      const int32_t priority = hop.mapping.priority;
      const int32_t exec_priority = hop.mapping.exec_priority;
      facts.add(answer_.forward ? priority_text(priority, exec_priority)
                                : priority_text(negated(priority), negated(exec_priority)));
      facts.add(place_of(hop));
      add(table, answer_.forward ? "→" : "←", hop.end, hop.at, facts);
    }
    for (const Appearance &other : route.also) {
      Facts facts;
      facts.add_if(other.reserved, "reserved");
      add(table, "=", other.end, other.at, facts);
    }
    return table.lines();
  }

  [[nodiscard]] std::string place_of(const Hop &hop) const
  {
    return origin_text(session_.names(), TDM_OBJECT_MAPPING, hop.handle);
  }

  void add(Table &table, const char *sign, const End &end, const tdm_interval &at,
           const Facts &facts) const
  {
    const tdm_interval shown = units_.of(at);
    table.add({sign, end.kind, end.name, place_text(shown, answer_.is_span),
               units_.name(shown.low.mau), facts.text()});
  }

  const Answer &answer_;
  const Session &session_;
  const Units &units_;
};

/// The hex digits of the longest address.
int digits_of(const SpaceTable &table, const Units &units)
{
  int digits = 1;
  for (const SpaceRow &row : table.rows)
    digits = std::max(digits, static_cast<int>(hex(units.of(row.span.high).value).size()) - 2);
  return digits;
}

std::vector<std::string> row_of(const SpaceRow &row, const Units &units, int digits)
{
  const tdm_interval span = units.of(row.span);
  std::vector<std::string> cells{span_text(span, digits), human_size_of(span)};
  if (row.memory == nullptr) {
    cells.emplace_back("<unused>");
    return cells;
  }
  Facts facts;
  facts.add_if(row.reserved, "reserved");
  facts.add(priority_text(row.span.priority, row.span.exec_priority));
  facts.add(mask_text(row.span));
  std::string part;
  std::string unit;
  if (row.part.has_value()) {
    const tdm_interval shown = units.of(*row.part);
    part = span_text(shown);
    unit = units.name(shown.low.mau);
  }
  cells.insert(cells.end(),
               {text_of(tdm_memory_get_full_name(row.memory)), part, unit, facts.text()});
  return cells;
}

} // namespace

void write_text(const Answer &answer, const Session &session, const Units &units, std::ostream &out)
{
  print_tree(out, RouteText(answer, session, units).node());
  if (answer.routes.empty()) out << "  no route\n";
}

void write_text(const std::vector<SpaceTable> &tables, const Units &units, std::ostream &out)
{
  for (const SpaceTable &table : tables) {
    tdm_interval valid;
    tdm_space_get_valid_interval(table.space, &valid);
    const tdm_interval shown = units.of(valid);
    out << "space " << tdm_space_get_full_name(table.space) << "  " << span_text(shown) << "  "
        << units.name(shown.low.mau) << '\n';
    Table lines;
    lines.align_right(1);
    const int digits = digits_of(table, units);
    for (const SpaceRow &row : table.rows) lines.add(row_of(row, units, digits));
    for (const std::string &line : lines.lines()) out << "  " << line << '\n';
  }
}

} // namespace tool
