// Compiles the text of a regular expression to its graph of nodes.
//
// Each rule of the grammar gives a fragment: the node where it is entered and the node where it is
// left. Open parentheses wait on a stack of the compiler's own, so that any depth of them compiles.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "layout/regular_expression.h"

namespace tdm {

class ExpressionCompiler {
public:
  explicit ExpressionCompiler(RegularExpression &expression)
      : expression_(expression), text_(expression.text_), position_(expression.position_)
  {
  }

  /// Throws SyntaxError *.
  void run();

private:
  struct Fragment {
    RENode *entry = nullptr;
    RENode *exit = nullptr;
  };

  /// Alternatives that are being read, and the sequence at their end; empty without an entry.
  struct Group {
    Fragment alternatives;
    Fragment sequence;
  };

  void read_piece();
  void open_group();
  void end_sequence();
  void close_group();
  void append(const Fragment &fragment);
  void append_item(Fragment atom);
  Fragment repeated(const Fragment &atom, char repetition);

  Fragment plain_atom();
  RENode *escaped_atom();
  RENode *set_atom();
  char set_character();
  char escaped_character();
  char hexadecimal_character();

  template <typename Node, typename... Arguments> RENode *make(Arguments &&...arguments);
  RENode *make_class(const char *ranges, bool negated);

  [[nodiscard]] bool at_end() const { return position_ == text_.size(); }
  [[nodiscard]] char current() const;
  char take();
  [[noreturn]] void refuse() const { refuse_at(position_); }
  [[noreturn]] static void refuse_at(std::size_t position);

  RegularExpression &expression_;
  const std::string &text_;
  std::size_t &position_; ///< the expression's: an index into the text while it is compiled
  std::vector<Group> groups_;
};

} // namespace tdm
