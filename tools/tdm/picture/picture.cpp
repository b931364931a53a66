// The page: title, legend, frames in rows, and what couldn't be drawn.
#include "picture.h"

#include <algorithm>

#include "../format.h"
#include "frame_picture.h"

namespace tool::picture {

namespace {

constexpr double page_width = 980;
constexpr double margin = 16;
constexpr double frame_gap = 28;
constexpr double head_height = 72;

void add_text(Picture &picture, const Label &label, const std::string &tooltip = "")
{
  Item item;
  item.tooltip = tooltip;
  item.labels.push_back(label);
  picture.items.push_back(std::move(item));
}

// ---- the legend

struct Sign {
  std::string style; ///< of a box; "" for a tie, "fold" for a gap
  std::string text;
  bool hatched = false;
};

std::vector<Sign> signs_of(const MemoryChart &chart)
{
  std::vector<Sign> signs;
  for (const char *type : {"rom", "ram", "nvram", "blockram", "unknown"})
    if (std::any_of(chart.memories.begin(), chart.memories.end(),
                    [type](const ChartMemory &memory) { return memory.type == type; }))
      signs.push_back({std::string("memory ") + type, type});
  if (std::any_of(chart.memories.begin(), chart.memories.end(),
                  [](const ChartMemory &memory) { return memory.reserved; }))
    signs.push_back({"memory plain", "reserved memory", true});
  if (std::any_of(chart.appearances.begin(), chart.appearances.end(),
                  [](const Appearance &seen) { return seen.reserved; }))
    signs.push_back({"memory plain alias", "reserved view"});
  signs.push_back({"", "same cells"});
  signs.push_back({"fold", "folded gap"});
  if (!chart.collisions.empty()) signs.push_back({"overlap", "overlap"});
  return signs;
}

void add_legend(const MemoryChart &chart, Picture &picture)
{
  double x = margin;
  const double y = 52;
  for (const Sign &sign : signs_of(chart)) {
    Item item;
    if (sign.style.empty())
      item.paths.push_back({{{x, y}, {x + 6, y}, {x + 6, y + 10}, {x, y + 10}}, "tie plain"});
    else if (sign.style == "fold")
      item.paths.push_back({{{x, y + 7}, {x + 4, y + 3}, {x + 8, y + 7}, {x + 12, y + 3}}, "fold"});
    else
      item.boxes.push_back({x, y, 12, 10, sign.style});
    if (sign.hatched) item.boxes.push_back({x, y, 12, 10, "hatch"});
    item.labels.push_back({x + 17, y + 9, 11, Label::Anchor::start, "note", sign.text});
    picture.items.push_back(std::move(item));
    x += 17 + text_width(sign.text, 11) + 18;
  }
}

// ---- frames

/// Frames from first to last stand beside each other.
struct Band {
  size_t first;
  size_t last;
  double least = 0; ///< width, without the gaps
};

std::vector<Band> bands_of(const std::vector<FramePicture> &frames)
{
  std::vector<Band> bands;
  for (size_t i = 0; i < frames.size(); ++i) {
    const double least = frames[i].least_width();
    const bool fits =
        !bands.empty() &&
        bands.back().least + least + frame_gap * static_cast<double>(i - bands.back().first) <=
            page_width - 2 * margin;
    if (fits) {
      bands.back().last = i + 1;
      bands.back().least += least;
    } else {
      bands.push_back({i, i + 1, least});
    }
  }
  return bands;
}

/// Room that is left goes to the frames as far as they can use it.
double paint_band(const std::vector<FramePicture> &frames, const Band &band, double top,
                  Picture &picture)
{
  const auto count = static_cast<double>(band.last - band.first);
  const double spare = picture.width - 2 * margin - frame_gap * (count - 1) - band.least;
  double wanted = 0;
  for (size_t i = band.first; i < band.last; ++i)
    wanted += frames[i].best_width() - frames[i].least_width();
  const double share = wanted <= 0 ? 0 : std::clamp(spare / wanted, 0.0, 1.0);
  double x = margin;
  double height = 0;
  for (size_t i = band.first; i < band.last; ++i) {
    const double least = frames[i].least_width();
    const double width = least + share * (frames[i].best_width() - least);
    frames[i].paint(x, top, width, picture.items);
    x += width + frame_gap;
    height = std::max(height, frames[i].height());
  }
  return height;
}

/// Memories that no column shows, and what failed.
void add_notes(const MemoryChart &chart, Picture &picture)
{
  std::vector<bool> shown(chart.memories.size());
  for (const Appearance &seen : chart.appearances) shown[seen.memory] = true;
  for (size_t i = 0; i < shown.size(); ++i) {
    if (shown[i]) continue;
    const ChartMemory &memory = chart.memories[i];
    picture.height += 16;
    add_text(picture, {margin, picture.height - 8, 11, Label::Anchor::start, "note",
                       "not seen from any space or bus: " + memory.full_name + ", " + memory.type +
                           ", " + human_size(memory.size, memory.mau)});
  }
  for (const std::string &failure : chart.failures) {
    picture.height += 16;
    add_text(picture, {margin, picture.height - 8, 11, Label::Anchor::start, "error", failure});
  }
}

} // namespace

double text_width(const std::string &text, double size)
{
  return static_cast<double>(columns_of(text)) * letter_width * size;
}

Picture make_picture(const MemoryChart &chart)
{
  Picture picture;
  picture.title = "Memory map of " + chart.title;
  std::vector<FramePicture> frames;
  for (Frame &frame : make_frames(chart)) frames.emplace_back(chart, std::move(frame));
  const std::vector<Band> bands = bands_of(frames);
  picture.width = page_width;
  for (const Band &band : bands) picture.width = std::max(picture.width, band.least + 2 * margin);
  add_text(picture, {margin, 25, 17, Label::Anchor::start, "title", picture.title});
  add_text(
      picture,
      {margin, 42, 11, Label::Anchor::start, "note",
       "Addresses in units (MAUs) of the first column beside them. Heights are not to scale."});
  add_legend(chart, picture);
  picture.height = head_height;
  for (const Band &band : bands) {
    picture.height += 10;
    picture.height += paint_band(frames, band, picture.height, picture);
  }
  add_notes(chart, picture);
  picture.height += 6;
  return picture;
}

} // namespace tool::picture
