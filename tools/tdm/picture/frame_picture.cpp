// How much room a frame needs, and where everything in it goes.
#include "frame_picture.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <set>

#include "../format.h"
#include "frame_texts.h"

namespace tool::picture {

namespace {

constexpr double header_height = 68;
constexpr double column_gap = 12;
constexpr double lane_width = 9;
constexpr double bottom_margin = 20;
constexpr double collision_height = 44; ///< room for names and the label
constexpr size_t most_letters = 16;     ///< of a name, where there is little room

constexpr double one_line = 19; ///< of text in a block
constexpr double two_lines = 31;

constexpr double name_size = 12;
constexpr double small_size = 11;
constexpr double tiny_size = 10;

std::string elided(const std::string &text, double width, double size)
{
  constexpr double rounding = 0.01; // columns are often exactly as wide as their texts
  if (text_width(text, size) <= width + rounding) return text;
  const auto letters = static_cast<size_t>(std::max(width / (letter_width * size) - 1, 0.0));
  return letters == 0 ? "" : text.substr(0, letters) + "…";
}

double name_width(const std::string &name)
{
  return letter_width * name_size * static_cast<double>(std::min(columns_of(name), most_letters));
}

bool covers(const Block &block, int64_t position)
{
  return block.span.low <= position && position < block.span.high;
}

/// The lowest line of text from there up to the top that isn't taken; the first one may reach above
/// the top.
std::optional<double> free_line(double top, double bottom, const std::vector<double> &taken)
{
  constexpr double line_height = 13;
  for (int lines = 0; lines == 0 || bottom - line_height * (lines + 1) >= top; ++lines) {
    const double y = bottom - line_height * lines;
    if (std::none_of(taken.begin(), taken.end(),
                     [y](double other) { return std::abs(other - y) < line_height; }))
      return y;
  }
  return std::nullopt;
}

/// Whether both memories of the collision stand there.
bool collide(const MemoryChart &chart, const std::vector<Block> &blocks,
             const std::pair<size_t, size_t> &memories, const Span &span)
{
  bool first = false;
  bool second = false;
  for (const Block &block : blocks) {
    if (block.span.high <= span.low || span.high <= block.span.low) continue;
    const size_t memory = chart.appearances[block.appearances.front()].memory;
    if (memory == memories.second && (first || memory != memories.first)) second = true;
    if (memory == memories.first) first = true;
  }
  return first && second;
}

} // namespace

// ---- what is needed

FramePicture::FramePicture(const MemoryChart &chart, Frame frame)
    : chart_(chart), frame_(std::move(frame)), scale_({}, {})
{
  std::vector<Need> needs;
  std::vector<int64_t> ends;
  for (size_t i = 0; i < frame_.columns.size(); ++i) {
    Column column;
    column.index = frame_.columns[i];
    column.shift = frame_.shifts[i];
    const ChartColumn &facts = chart_.columns[column.index];
    const ChartColumn &leading = chart_.columns[frame_.columns.front()];
    column.own_addresses = column.shift != 0 || facts.mau != leading.mau;
    column.blocks = blocks_of(chart_, column.index, column.shift);
    column.labelled = facts.is_space;
    for (const Block &block : column.blocks)
      if (chart_.appearances[block.appearances.front()].attached()) column.labelled = true;
    for (const Block &block : column.blocks)
      needs.push_back({block.span, height_needed(block, column.labelled)});
    for (const Span &span : column_spans(chart_, column.index, column.shift)) {
      ends.push_back(span.low);
      ends.push_back(span.high);
    }
    for (const Collision &collision : chart_.collisions)
      if (collision.column == column.index)
        collisions_.push_back({&collision, span_on_line(collision.at, column.shift)});
    columns_.push_back(std::move(column));
  }
  for (const PlacedCollision &one : collisions_) {
    needs.push_back({one.span, collision_height});
    // What lies outside of it on either side is to be seen, too.
    for (const Column &column : columns_)
      for (const Block &block : column.blocks) {
        if (covers(block, one.span.low) && block.span.low < one.span.low)
          needs.push_back({{block.span.low, one.span.low}, one_line});
        if (covers(block, one.span.high))
          needs.push_back({{one.span.high, block.span.high}, one_line});
      }
  }
  scale_ = Scale(std::move(needs), ends);
  const int mau = std::max(chart_.columns[frame_.columns.front()].mau, 1);
  for (const Row &row : scale_.rows())
    digits_ = std::max(digits_, static_cast<int>(hex((row.span.high - 1) / mau).size()) - 2);
  for (Column &column : columns_) measure(column);
  std::vector<std::vector<Block>> blocks;
  for (const Column &column : columns_) blocks.push_back(column.blocks);
  ties_ = make_ties(chart_, scale_, blocks);
}

void FramePicture::measure(Column &column) const
{
  const ChartColumn &facts = chart_.columns[column.index];
  column.least = std::max({text_width("8-bit", tiny_size), text_width(facts.owner, small_size),
                           name_width(facts.name), 30.0});
  column.best = std::max(column.least, text_width(facts.name, name_size));
  for (const Block &block : column.blocks) {
    if (!column.labelled || block.stripe) continue;
    const auto width = static_cast<double>(block.right - block.left);
    const std::string name = block_name(chart_, block);
    const double bank =
        block.slots > 1 ? text_width(block_remarks(chart_, block).back(), small_size) + 6 : 0;
    column.least = std::max(column.least, (name_width(name) + bank + 8) / width);
    const double remark = text_width(block_remarks(chart_, block).front(), small_size);
    column.best = std::max(column.best, (text_width(name, name_size) + remark + 18) / width);
  }
  if (column.own_addresses)
    for (const Span &span : column_spans(chart_, column.index, column.shift))
      column.least =
          std::max(column.least,
                   text_width(column_address(facts, span.high, column.shift, 1), tiny_size) + 2);
  column.best = std::max(column.best, column.least) + (facts.is_space ? 24 : 0);
}

double FramePicture::axis_width() const
{
  double width = 0;
  for (const Row &row : scale_.rows()) {
    width = std::max({width, text_width(address_on_line(row.span.low), small_size),
                      text_width(address_on_line(row.span.high), small_size)});
    if (row.gap) width = std::max(width, text_width("⋮ " + gap_text(row), tiny_size));
  }
  return width + 10;
}

double FramePicture::ties_width() const
{
  size_t lanes = 0;
  for (const Tie &tie : ties_) lanes = std::max(lanes, tie.lane + 1);
  return lanes == 0 ? 0 : 8 + lane_width * static_cast<double>(lanes);
}

double FramePicture::least_width() const
{
  double width = axis_width() + ties_width() - column_gap;
  for (const Column &column : columns_) width += column.least + column_gap;
  return width;
}

double FramePicture::best_width() const
{
  double width = axis_width() + ties_width() - column_gap;
  for (const Column &column : columns_) width += column.best + column_gap;
  return width;
}

double FramePicture::height() const
{
  return header_height + scale_.height() + bottom_margin;
}

// ---- painting

void FramePicture::paint(double left, double top, double width, std::vector<Item> &out) const
{
  const double least = least_width();
  const double range = best_width() - least;
  const double share = range <= 0 ? 0 : std::clamp((width - least) / range, 0.0, 1.0);
  std::vector<Place> places;
  double x = left + axis_width();
  for (const Column &column : columns_) {
    const double right = x + column.least + share * (column.best - column.least);
    places.push_back({x, top + header_height, right});
    x = right + column_gap;
  }
  const Place all{left + axis_width(), top + header_height, x - column_gap};
  for (size_t i = 0; i < columns_.size(); ++i) paint_windows(columns_[i], places[i], out);
  paint_folds(all, out);
  paint_addresses(all, out);
  paint_ties(places, all, out);
  for (size_t i = 0; i < columns_.size(); ++i) {
    paint_header(columns_[i], places[i], out);
    paint_blocks(columns_[i], places[i], out);
    if (columns_[i].own_addresses) paint_own_addresses(columns_[i], places[i], out);
    paint_collisions(columns_[i], places[i], out);
  }
}

void FramePicture::paint_header(const Column &column, const Place &place,
                                std::vector<Item> &out) const
{
  const ChartColumn &facts = chart_.columns[column.index];
  const double width = place.right - place.left;
  const double y = place.top - header_height;
  Item item;
  item.tooltip = column_tooltip(chart_, column.index);
  const auto line = [&](double below, double size, const char *style, const std::string &text) {
    if (!text.empty())
      item.labels.push_back({place.left, y + below, size, Label::Anchor::start, style,
                             elided(text, width + column_gap / 2, size)});
  };
  const std::string units = std::to_string(facts.mau) + "-bit";
  line(10, tiny_size, "kind", facts.is_space ? "space" : "bus");
  line(22, small_size, "owner", facts.owner);
  line(35, name_size, "head", facts.name);
  line(47, tiny_size, "kind",
       text_width(units + " units", tiny_size) <= width ? units + " units" : units);
  out.push_back(std::move(item));
}

void FramePicture::paint_windows(const Column &column, const Place &place,
                                 std::vector<Item> &out) const
{
  for (const WindowText &window : window_texts(chart_, column.index, column.shift)) {
    const double top = place.top + scale_.at(window.span.low);
    const double bottom = place.top + scale_.at(window.span.high);
    if (bottom - top < 1) continue;
    Item item;
    item.tooltip = window.text;
    item.boxes.push_back({place.left, top, place.right - place.left, bottom - top, "window"});
    out.push_back(std::move(item));
  }
}

void FramePicture::paint_blocks(const Column &column, const Place &place,
                                std::vector<Item> &out) const
{
  for (const Block &block : column.blocks) {
    const Appearance &seen = chart_.appearances[block.appearances.front()];
    const ChartMemory &memory = chart_.memories[seen.memory];
    const double width = place.right - place.left;
    Box box{place.left + width * block.left, place.top + block.top(scale_),
            width * (block.right - block.left), block.bottom(scale_) - block.top(scale_), ""};
    box.style = "memory " + memory.type;
    if (!column.labelled) box.style += " passing";
    if (seen.reserved) box.style += " alias";
    Item item;
    item.tooltip = block_tooltip(chart_, block);
    item.memory = seen.memory;
    item.boxes.push_back(box);
    if (memory.reserved) {
      box.style = "hatch";
      item.boxes.push_back(box);
    }
    if (column.labelled && !block.stripe) paint_labels(block, box, item);
    out.push_back(std::move(item));
  }
}

/// The name, and of the remarks the longest one that still fits beside it, or below.
void FramePicture::paint_labels(const Block &block, const Box &box, Item &item) const
{
  // The stripes behind a first view belong to its label.
  const double y = box.y + std::min(box.height, one_line) / 2 + 4;
  const double room = box.width - 8;
  const std::vector<std::string> remarks = block_remarks(chart_, block);
  const double kept = block.slots > 1 ? text_width(remarks.back(), small_size) + 6 : 0;
  const std::string name = elided(block_name(chart_, block), room - kept, name_size);
  item.labels.push_back({box.x + 4, y, name_size, Label::Anchor::start, "name", name});
  const bool has_second_line = block.views == 1 && box.height >= two_lines;
  for (const std::string &remark : remarks) {
    const double width = text_width(remark, small_size);
    const bool beside = text_width(name, name_size) + 6 + width <= room;
    if (!beside && !(has_second_line && width <= room)) continue;
    item.labels.push_back({box.x + box.width - 4, beside ? y : y + 13, small_size,
                           Label::Anchor::end, "remark", remark});
    break;
  }
}

void FramePicture::paint_collisions(const Column &column, const Place &place,
                                    std::vector<Item> &out) const
{
  std::vector<double> lines; // of text
  for (const auto &[told, span] : collisions_) {
    const Collision &collision = *told;
    const bool stands_here = collision.memories.has_value()
                                 ? collide(chart_, column.blocks, *collision.memories, span)
                                 : collision.column == column.index;
    if (!stands_here) continue;
    const double top = place.top + scale_.at(span.low);
    const double bottom = place.top + scale_.at(span.high);
    Item item;
    item.tooltip = collision.text;
    item.boxes.push_back({place.left - 2, top, place.right - place.left + 4,
                          std::max(bottom - top, 2.0), "overlap"});
    if (const auto y = free_line(top, std::max(bottom, top + 2) - 3, lines)) {
      lines.push_back(*y);
      item.labels.push_back({place.left + 2, *y, small_size, Label::Anchor::start, "overlap",
                             elided(collision.label, place.right - place.left - 4, small_size)});
    }
    out.push_back(std::move(item));
  }
}

/// At the ends of what is seen of the column, above and below.
void FramePicture::paint_own_addresses(const Column &column, const Place &place,
                                       std::vector<Item> &out) const
{
  const ChartColumn &facts = chart_.columns[column.index];
  std::vector<double> taken;
  Item item;
  const auto add = [&](int64_t position, int64_t probe, double offset) {
    for (const Block &block : column.blocks)
      if (covers(block, probe)) return;
    const double y = place.top + scale_.at(position) + offset;
    for (const double other : taken)
      if (std::abs(other - y) < 11) return;
    taken.push_back(y);
    item.labels.push_back({place.left, y, tiny_size, Label::Anchor::start, "own",
                           column_address(facts, position, column.shift, 1)});
  };
  for (const Span &span : column_spans(chart_, column.index, column.shift)) {
    add(span.low, span.low - 1, -3);
    add(span.high, span.high, 10);
  }
  out.push_back(std::move(item));
}

std::string FramePicture::gap_text(const Row &gap) const
{
  const int mau = std::max(chart_.columns[frame_.columns.front()].mau, 1);
  return human_size(static_cast<int64_t>(gap.span.length() / static_cast<uint64_t>(mau)), mau);
}

std::string FramePicture::address_on_line(int64_t position) const
{
  return column_address(chart_.columns[frame_.columns.front()], position, 0, digits_);
}

/// Of all rows at which something begins; where they would touch, what has a label goes first.
void FramePicture::paint_addresses(const Place &place, std::vector<Item> &out) const
{
  std::map<int64_t, int> ranks;
  std::set<int64_t> stripes;
  const auto add = [&](int64_t position, int rank) {
    const auto [known, is_new] = ranks.try_emplace(position, rank);
    if (!is_new) known->second = std::min(known->second, rank);
  };
  for (const Row &row : scale_.rows()) {
    add(row.span.low, row.gap ? 1 : 2);
    add(row.span.high, &row == &scale_.rows().back() ? 1 : 2);
  }
  for (const Column &column : columns_)
    for (const Block &block : column.blocks) {
      if (column.labelled && !block.stripe) add(block.span.low, 0);
      if (block.stripe) stripes.insert(block.span.low);
    }
  std::vector<double> taken;
  Item item;
  for (int rank = 0; rank < 3; ++rank)
    for (const auto &[position, own_rank] : ranks) {
      if (own_rank != rank || (rank == 2 && stripes.contains(position))) continue;
      const double y = place.top + scale_.at(position);
      if (std::any_of(taken.begin(), taken.end(),
                      [y](double other) { return std::abs(other - y) < 11.5; }))
        continue;
      taken.push_back(y);
      item.paths.push_back({{{place.left - 6, y}, {place.left - 1, y}}, "tick"});
      item.labels.push_back({place.left - 8, y + 10, small_size, Label::Anchor::end, "address",
                             address_on_line(position)});
    }
  out.push_back(std::move(item));
}

void FramePicture::paint_folds(const Place &place, std::vector<Item> &out) const
{
  for (const Row &row : scale_.rows()) {
    if (!row.gap) continue;
    const double middle = place.top + row.top + row.height / 2;
    Path path;
    path.style = "fold";
    bool up = true;
    // NOLINTNEXTLINE(clang-analyzer-security.FloatLoopCounter): whole numbers of pixels
    for (double x = place.left; x <= place.right; x += 8, up = !up)
      path.points.emplace_back(x, middle + (up ? -2.0 : 2.0));
    Item item;
    item.tooltip = "nothing from " + address_on_line(row.span.low) + " to " +
                   address_on_line(row.span.high) + ": " + gap_text(row);
    item.paths.push_back(std::move(path));
    item.labels.push_back(
        {place.left - 8, middle + 9, tiny_size, Label::Anchor::end, "gap", "⋮ " + gap_text(row)});
    out.push_back(std::move(item));
  }
}

void FramePicture::paint_ties(const std::vector<Place> &places, const Place &all,
                              std::vector<Item> &out) const
{
  for (const Tie &tie : ties_) {
    const ChartMemory &memory = chart_.memories[tie.memory];
    const double x = all.right + 8 + lane_width * static_cast<double>(tie.lane);
    Item item;
    item.memory = tie.memory;
    item.tooltip =
        memory.full_name + ": the same cells at " + std::to_string(tie.ends.size()) + " places";
    const std::string style = "tie " + memory.type;
    for (const TieEnd &end : tie.ends) {
      const double y = all.top + end.height;
      item.paths.push_back({{{places[end.column].right, y}, {x, y}}, style});
      item.boxes.push_back({places[end.column].right - 2, y - 2, 4, 4, "knot " + memory.type});
    }
    item.paths.push_back(
        {{{x, all.top + tie.ends.front().height}, {x, all.top + tie.ends.back().height}}, style});
    out.push_back(std::move(item));
  }
}

} // namespace tool::picture
