#include "frame_texts.h"

#include <algorithm>

#include "../address.h"
#include "../format.h"
#include "../memory_map.h"

namespace tool::picture {

namespace {

std::string sized(const tdm_interval &at)
{
  return human_size_of(at) + " (" + hex(size_of(at)) + " units of " + std::to_string(at.low.mau) +
         " bits)";
}

std::string sized_span(const tdm_interval &at)
{
  return span_text(at) + ", " + sized(at);
}

std::string route_text(const std::vector<Step> &route)
{
  std::string text;
  for (const Step &step : route) {
    text += "\n→ " + step.to + "  " + span_text(step.at);
    if (!step.name.empty()) text += ", map " + step.name;
    if (!step.place.empty()) text += ", " + step.place;
  }
  return text;
}

std::string tooltip_of(const MemoryChart &chart, const Appearance &seen)
{
  const ChartColumn &column = chart.columns[seen.column];
  std::string text =
      (column.is_space ? "space " : "bus ") + column.full_name + "  " + sized_span(seen.at);
  if (const std::string mask = mask_text(seen.at); !mask.empty()) text += ", " + mask;
  if (seen.reserved) text += ", reserved";
  return text + route_text(seen.route);
}

} // namespace

std::string block_name(const MemoryChart &chart, const Block &block)
{
  if (block.folded_banks > 0) return "… " + counted(block.folded_banks, "bank");
  return chart.memories[chart.appearances[block.appearances.front()].memory].name;
}

std::vector<std::string> block_remarks(const MemoryChart &chart, const Block &block)
{
  const Appearance &seen = chart.appearances[block.appearances.front()];
  const std::string size = human_size_of(seen.at);
  const int32_t bank = seen.at.low.bank;
  if (block.folded_banks > 0) {
    const int32_t last = chart.appearances[block.appearances.back()].at.low.bank;
    return {std::to_string(bank) + "–" + std::to_string(last)};
  }
  const std::string views = "×" + std::to_string(block.views);
  if (bank < 0 && block.views > 1) return {views + ", " + size, views};
  if (bank < 0) return {size};
  const std::string text = "bank " + std::to_string(bank);
  return {text + ", " + size, text};
}

std::string block_tooltip(const MemoryChart &chart, const Block &block)
{
  const Appearance &first = chart.appearances[block.appearances.front()];
  const ChartMemory &memory = chart.memories[first.memory];
  std::string text = memory.full_name + ": " + (memory.reserved ? "reserved " : "") + memory.type +
                     ", " + human_size(memory.size, memory.mau) + " (" + hex(memory.size) +
                     " units of " + std::to_string(memory.mau) + " bits)";
  if (!memory.place.empty()) text += ", " + memory.place;
  if (block.folded_banks == 0) return text + "\n" + tooltip_of(chart, first);
  for (const size_t one : block.appearances) {
    const Appearance &seen = chart.appearances[one];
    text += "\n" + chart.memories[seen.memory].name + "  " + sized_span(seen.at);
  }
  return text;
}

std::string column_tooltip(const MemoryChart &chart, size_t column)
{
  const ChartColumn &facts = chart.columns[column];
  std::string text = (facts.is_space ? "space " : "bus ") + facts.full_name + ", units of " +
                     std::to_string(facts.mau) + " bits";
  if (!facts.place.empty()) text += ", " + facts.place;
  for (const Window &window : chart.windows)
    if (window.from == column)
      text += "\n" + span_text(window.source) + " to " + chart.columns[window.to].full_name;
  return text;
}

std::string column_address(const ChartColumn &column, int64_t position, int64_t shift, int digits)
{
  tdm_addressvalue address{0, 0, column.mau, -1};
  int64_t own = 0;
  if (__builtin_sub_overflow(position, shift, &own)) own = position;
  const int64_t mau = std::max(column.mau, 1);
  address.value = own / mau - (own % mau < 0 ? 1 : 0);
  address.bits = static_cast<int32_t>(own - address.value * mau);
  return address_text(address, digits);
}

std::vector<WindowText> window_texts(const MemoryChart &chart, size_t column, int64_t shift)
{
  std::vector<WindowText> texts;
  for (const Window &window : chart.windows) {
    if (window.from != column && window.to != column) continue;
    const bool leaves = window.from == column;
    std::string text = chart.columns[window.from].full_name + "  " + sized_span(window.source) +
                       "\nmaps to " + chart.columns[window.to].full_name + "  " +
                       span_text(window.destination);
    if (!window.place.empty()) text += ", " + window.place;
    texts.push_back(
        {span_on_line(leaves ? window.source : window.destination, shift), std::move(text)});
  }
  // Large ones lie below, so that small ones can be pointed at.
  std::stable_sort(texts.begin(), texts.end(), [](const WindowText &a, const WindowText &b) {
    return a.span.length() > b.span.length();
  });
  return texts;
}

std::vector<Span> column_spans(const MemoryChart &chart, size_t column, int64_t shift)
{
  std::vector<Span> spans;
  for (const WindowText &window : window_texts(chart, column, shift)) spans.push_back(window.span);
  const auto [first, last] = appearances_in(chart, column);
  for (auto one = first; one != last; ++one) spans.push_back(span_on_line(one->at, shift));
  std::sort(spans.begin(), spans.end());
  std::vector<Span> joined;
  for (const Span &span : spans) {
    if (!joined.empty() && span.low <= joined.back().high)
      joined.back().high = std::max(joined.back().high, span.high);
    else
      joined.push_back(span);
  }
  return joined;
}

} // namespace tool::picture
