// What the tool shows people as a tree: lines below lines, and the facts of a line in a row.
//
//   processor chip  derivative chip, chip.tdm:40
//   ├─ core cpu  architecture arm, little-endian
//   │  └─ space linear  id 1, 8-bit MAUs, 0x0..0x20010000
//   │        0x08000000..0x08100000    1 MiB  flash
//   └─ memories
#pragma once

#include <ostream>
#include <string>
#include <vector>

namespace tool {

struct Node {
  std::string text;
  std::vector<std::string> details; ///< lines below the text, above the children
  std::vector<Node> children;
};

void print_tree(std::ostream &out, const Node &root);

/// Joins what there is to say.
class Facts {
public:
  void add(const std::string &fact);
  void add_if(bool holds, const char *fact) { add(holds ? fact : ""); }

  [[nodiscard]] const std::string &text() const { return text_; }

private:
  std::string text_;
};

} // namespace tool
