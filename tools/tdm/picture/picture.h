// A picture of a memory map: shapes and texts, each at its place. Which colours they have is a
// matter of their classes; how they are written is left to others.
//
// Frames stand beside or below each other. A frame has its addresses at the left, then its columns,
// and at the right the ties of memories that show the same cells at several places.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "memory_chart.h"

namespace tool::picture {

/// Letters of one width are what texts are measured by.
constexpr double letter_width = 0.602; ///< of the font's size

[[nodiscard]] double text_width(const std::string &text, double size);

struct Label {
  enum class Anchor { start, middle, end };
  double x = 0;
  double y = 0; ///< of the baseline
  double size = 10;
  Anchor anchor = Anchor::start;
  std::string style;
  std::string text;
};

struct Box {
  double x = 0;
  double y = 0;
  double width = 0;
  double height = 0;
  std::string style;
};

struct Path {
  std::vector<std::pair<double, double>> points;
  std::string style;
};

/// What belongs together, with one tooltip. Shapes are painted in the order paths, boxes, labels.
struct Item {
  std::string tooltip;
  std::optional<size_t> memory; ///< what lights up with others of the same memory
  std::vector<Path> paths;
  std::vector<Box> boxes;
  std::vector<Label> labels;
};

struct Picture {
  double width = 0;
  double height = 0;
  std::string title;
  std::vector<Item> items; ///< in the order in which they are painted
};

[[nodiscard]] Picture make_picture(const MemoryChart &chart);

} // namespace tool::picture
