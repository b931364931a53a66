#include "chart_frames.h"

#include <algorithm>
#include <limits>
#include <map>
#include <tuple>

namespace tool::picture {

namespace {

int64_t add(int64_t a, int64_t b)
{
  int64_t sum = 0;
  if (!__builtin_add_overflow(a, b, &sum) && sum != std::numeric_limits<int64_t>::min()) return sum;
  return a < 0 ? -std::numeric_limits<int64_t>::max() : std::numeric_limits<int64_t>::max();
}

uint64_t length(const tdm_interval &at)
{
  return span_on_line(at, 0).length();
}

/// The columns that mappings join, each with its shift, from the one that was met first.
class Joins {
public:
  explicit Joins(const MemoryChart &chart);

  [[nodiscard]] std::vector<Frame> frames() const;

private:
  struct Edge {
    size_t to;
    int64_t shift; ///< what the shift of `to` is more than that of the column that the edge leaves
  };

  void visit(size_t root);
  void join_by_memories();
  void move(size_t from_root, size_t to_root);

  const MemoryChart &chart_;
  std::vector<std::vector<Edge>> edges_;
  std::vector<size_t> roots_; ///< of each column; npos before it is met
  std::vector<int64_t> shifts_;
  static constexpr size_t npos = std::numeric_limits<size_t>::max();
};

Joins::Joins(const MemoryChart &chart)
    : chart_(chart), edges_(chart.columns.size()), roots_(chart.columns.size(), npos),
      shifts_(chart.columns.size(), 0)
{
  for (const Window &window : chart.windows) {
    // Where data lines are left out, addresses spread: the columns have no line in common.
    if (length(window.source) != length(window.destination)) continue;
    const int64_t shift =
        add(bit_position(window.source.low), -bit_position(window.destination.low));
    edges_[window.from].push_back({window.to, shift});
    edges_[window.to].push_back({window.from, -shift});
  }
  for (size_t column = 0; column < roots_.size(); ++column)
    if (roots_[column] == npos) visit(column);
  join_by_memories();
}

/// Breadth first: the shortest way to a column says where it stands.
void Joins::visit(size_t root)
{
  std::vector<size_t> queue{root};
  roots_[root] = root;
  for (size_t next = 0; next < queue.size(); ++next)
    for (const Edge &edge : edges_[queue[next]])
      if (roots_[edge.to] == npos) {
        roots_[edge.to] = root;
        shifts_[edge.to] = add(shifts_[queue[next]], edge.shift);
        queue.push_back(edge.to);
      }
}

/// Two buses without a way from one to the other may still reach the same memory at the same
/// address; then they share a line, too.
void Joins::join_by_memories()
{
  std::map<std::tuple<size_t, int64_t, int64_t, int>, size_t> seen;
  for (const Appearance &one : chart_.appearances) {
    const Span span = span_on_line(one.at, shifts_[one.column]);
    const auto [known, is_new] =
        seen.try_emplace({one.memory, span.low, span.high, one.at.low.bank}, one.column);
    if (is_new) continue;
    const size_t a = roots_[known->second];
    const size_t b = roots_[one.column];
    if (a != b && chart_.columns[a].mau == chart_.columns[b].mau)
      move(std::max(a, b), std::min(a, b));
  }
}

void Joins::move(size_t from_root, size_t to_root)
{
  for (size_t &root : roots_)
    if (root == from_root) root = to_root;
}

std::vector<Frame> Joins::frames() const
{
  std::vector<Frame> frames;
  std::map<size_t, size_t> index;
  for (size_t column = 0; column < roots_.size(); ++column) {
    const auto [at, is_new] = index.try_emplace(roots_[column], frames.size());
    if (is_new) frames.emplace_back();
    frames[at->second].columns.push_back(column);
    frames[at->second].shifts.push_back(shifts_[column]);
  }
  return frames;
}

} // namespace

std::vector<Frame> make_frames(const MemoryChart &chart)
{
  return Joins(chart).frames();
}

Span span_on_line(const tdm_interval &at, int64_t shift)
{
  tdm_addressvalue low = at.low;
  tdm_addressvalue high = at.high;
  low.bits = 0;
  high.bits = high.bits > 0 ? high.mau : 0;
  return {add(bit_position(low), shift), add(bit_position(high), shift)};
}

} // namespace tool::picture
