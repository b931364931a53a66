#include "scale.h"

#include <algorithm>
#include <tuple>

namespace tool::picture {

namespace {

constexpr double least_row = 5;

/// Rows between all positions at which a need begins or ends.
std::vector<Row> rows_between(const std::vector<Need> &needs, const std::vector<int64_t> &ends)
{
  std::vector<int64_t> cuts;
  for (const Need &need : needs) {
    cuts.push_back(need.span.low);
    cuts.push_back(need.span.high);
  }
  if (!ends.empty()) {
    const auto [low, high] = std::minmax_element(ends.begin(), ends.end());
    const int64_t first = *low;
    const int64_t last = *high;
    cuts.push_back(first);
    cuts.push_back(last);
  }
  std::sort(cuts.begin(), cuts.end());
  cuts.erase(std::unique(cuts.begin(), cuts.end()), cuts.end());
  std::vector<Row> rows;
  for (size_t i = 1; i < cuts.size(); ++i) rows.push_back({{cuts[i - 1], cuts[i]}, 0, 0, true});
  return rows;
}

} // namespace

Scale::Scale(std::vector<Need> needs, const std::vector<int64_t> &ends)
    : rows_(rows_between(needs, ends))
{
  // Small ones first: what lies within a large one counts for the large one, too.
  std::sort(needs.begin(), needs.end(), [](const Need &a, const Need &b) {
    return std::tuple(a.span.length(), a.span.low, a.height) <
           std::tuple(b.span.length(), b.span.low, b.height);
  });
  for (const Need &need : needs) {
    const auto first =
        std::lower_bound(rows_.begin(), rows_.end(), need.span.low,
                         [](const Row &row, int64_t position) { return row.span.low < position; });
    auto last = first;
    double sum = 0;
    for (; last != rows_.end() && last->span.high <= need.span.high; ++last) {
      if (last->gap) last->height = least_row;
      last->gap = false;
      sum += last->height;
    }
    const auto count = static_cast<double>(last - first);
    if (sum < need.height)
      for (auto row = first; row != last; ++row) row->height += (need.height - sum) / count;
  }
  double top = 0;
  for (Row &row : rows_) {
    if (row.gap) row.height = gap_height;
    row.top = top;
    top += row.height;
  }
}

double Scale::height() const
{
  return rows_.empty() ? 0 : rows_.back().top + rows_.back().height;
}

double Scale::at(int64_t position) const
{
  const auto next =
      std::upper_bound(rows_.begin(), rows_.end(), position,
                       [](int64_t value, const Row &row) { return value < row.span.high; });
  if (next == rows_.end()) return height();
  if (position <= next->span.low) return next->top;
  if (next->gap) return next->top + next->height / 2;
  const double part = (static_cast<double>(position) - static_cast<double>(next->span.low)) /
                      (static_cast<double>(next->span.high) - static_cast<double>(next->span.low));
  return next->top + part * next->height;
}

} // namespace tool::picture
