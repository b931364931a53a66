// One frame of the picture: how wide it has to be and may be, and its items once it has a place.
#pragma once

#include <string>
#include <vector>

#include "blocks.h"
#include "chart_frames.h"
#include "frame_texts.h"
#include "picture.h"
#include "scale.h"
#include "ties.h"

namespace tool::picture {

class FramePicture {
public:
  FramePicture(const MemoryChart &chart, Frame frame);

  [[nodiscard]] double least_width() const;
  [[nodiscard]] double best_width() const;
  [[nodiscard]] double height() const;

  void paint(double left, double top, double width, std::vector<Item> &out) const;

private:
  struct Column {
    size_t index = 0; ///< in the chart
    int64_t shift = 0;
    std::vector<Block> blocks;
    bool labelled = false;      ///< its blocks have names
    bool own_addresses = false; ///< other ones than the frame shows at its left
    double least = 0;
    double best = 0;
  };
  struct PlacedCollision {
    const Collision *told;
    Span span;
  };
  struct Place {
    double left;
    double top; ///< of the rows
    double right;
  };

  void measure(Column &column) const;

  void paint_header(const Column &column, const Place &place, std::vector<Item> &out) const;
  void paint_windows(const Column &column, const Place &place, std::vector<Item> &out) const;
  void paint_blocks(const Column &column, const Place &place, std::vector<Item> &out) const;
  void paint_labels(const Block &block, const Box &box, Item &item) const;
  void paint_collisions(const Column &column, const Place &place, std::vector<Item> &out) const;
  void paint_own_addresses(const Column &column, const Place &place, std::vector<Item> &out) const;
  void paint_addresses(const Place &place, std::vector<Item> &out) const;
  void paint_folds(const Place &place, std::vector<Item> &out) const;
  void paint_ties(const std::vector<Place> &places, const Place &all, std::vector<Item> &out) const;

  [[nodiscard]] std::string address_on_line(int64_t position) const;
  [[nodiscard]] std::string gap_text(const Row &gap) const;
  [[nodiscard]] double axis_width() const;
  [[nodiscard]] double ties_width() const;

  const MemoryChart &chart_;
  Frame frame_;
  std::vector<Column> columns_;
  std::vector<PlacedCollision> collisions_;
  Scale scale_;
  std::vector<Tie> ties_;
  int digits_ = 1; ///< of addresses at the left
};

} // namespace tool::picture
