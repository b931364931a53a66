#include "tree.h"

namespace tool {

namespace {

/// `here` stands before the text, `below` before all that hangs on it.
void print(std::ostream &out, const Node &node, const std::string &here, const std::string &below)
{
  out << here << node.text << '\n';
  const std::string gap = node.children.empty() ? "   " : "│  ";
  for (const std::string &line : node.details) out << below << gap << line << '\n';
  for (size_t i = 0; i < node.children.size(); ++i) {
    const bool last = i + 1 == node.children.size();
    print(out, node.children[i], below + (last ? "└─ " : "├─ "), below + (last ? "   " : "│  "));
  }
}

} // namespace

void print_tree(std::ostream &out, const Node &root)
{
  print(out, root, "", "");
}

void Facts::add(const std::string &fact)
{
  if (fact.empty()) return;
  if (!text_.empty()) text_ += ", ";
  text_ += fact;
}

} // namespace tool
