// A regular expression, compiled to a graph of nodes (re_nodes.h) and matched by following it.
//
// Whether a node, tried at a position, leads to the end of the expression depends on the two alone.
// So a match follows the set of pairs (node, position), position by position, and each pair once:
// at the most nodes times length + 1 steps, and a loop that takes nothing ends by itself. What a
// set leads to is kept in a table of states (state_table.h), as far as that has room; a step that
// is known tries no node. Sets, pending work and table have their size before the first match and
// keep it: matching allocates nothing, and recurses nowhere.
//
// Only yes or no is asked for; where in the subject a match lies isn't kept.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "layout/re_nodes.h"
#include "layout/state_table.h"

/// What is wrong with the text of an expression. Thrown by pointer.
class SyntaxError {
public:
  explicit SyntaxError(std::string text) : text_(std::move(text)) {}

  [[nodiscard]] const std::string &text() const { return text_; }

private:
  std::string text_;
};

namespace tdm {
class ExpressionCompiler;
} // namespace tdm

/*
 * The text of an expression:
 *
 *   alternatives   sequence, then any number of `|` and sequence
 *   sequence       one or more pieces; ends before `)` or `|`, or with the text
 *   piece          `^`, `$` or item; can't begin with `)`, `*`, `+`, `?`, `]` or `|`
 *   item           atom, then optionally one of `*`, `+`, `?`
 *   atom           `(` alternatives `)`, a set `[...]`, `.`, `\` and an escape, or the character
 *
 * Escapes: \d \D digits, \s \S white space, \w \W letters, digits and `_`, the capital for all
 * other characters; \b \f \n \r \t and their capitals the characters 8, 12, 10, 13, 9; \u or \U
 * and four hexadecimal digits a character value, of which the low 8 bits count; \ and any other
 * character the character itself. In a set \d, \s and \w are the letters themselves.
 */
class RegularExpression {
public:
  /// Throws SyntaxError *. Matches remember at the most so many states, or fewer.
  RegularExpression(std::string text, bool case_sensitive,
                    std::size_t max_states = tdm::StateTable::default_states);
  RegularExpression(const RegularExpression &) = delete;
  RegularExpression &operator=(const RegularExpression &) = delete;

  /// Whether the subject, searched from `start` on, holds a match.
  [[nodiscard]] bool match(std::string_view subject, std::size_t start);

  [[nodiscard]] const std::string &text() const { return text_; }
  /// True if the text has no `.`, no set and no class of characters: plain texts can stand in.
  [[nodiscard]] bool literal() const { return literal_; }
  [[nodiscard]] const RENode &start() const { return *start_; }
  [[nodiscard]] const std::vector<std::unique_ptr<RENode>> &nodes() const { return nodes_; }
  /// How often a node was tried in the latest match.
  [[nodiscard]] std::uint64_t steps() const { return steps_; }

  // For the nodes, while a match runs.
  [[nodiscard]] bool ignores_case() const { return ignore_case_; }
  [[nodiscard]] std::size_t first() const { return first_; }
  [[nodiscard]] std::size_t position() const { return position_; }
  [[nodiscard]] bool at_end() const { return position_ >= subject_.size(); }
  [[nodiscard]] char current() const { return subject_[position_]; }
  void advance() { ++position_; }

private:
  friend class tdm::ExpressionCompiler;

  /// Nodes that wait at one position; each node at the most once.
  struct NodeSet {
    std::vector<RENode *> pending;     ///< not yet tried
    std::vector<std::uint64_t> joined; ///< by node: the round in which it last joined
    std::uint64_t round = 0;
  };

  void prepare();
  [[nodiscard]] bool begins_only_at_first();
  [[nodiscard]] tdm::StateTable::Cell learn(const tdm::StateTable::Place &place);
  [[nodiscard]] tdm::StateTable::Cell state_ahead();
  [[nodiscard]] bool match_without_table(std::size_t position);
  static void begin_round(NodeSet &set);
  static void add(NodeSet &set, RENode &node);
  [[nodiscard]] bool try_pending(std::size_t position);

  std::string text_;
  bool ignore_case_;
  RENode *start_ = nullptr;
  std::string_view subject_;
  std::size_t first_ = 0;
  std::size_t position_ = 0;
  std::vector<std::unique_ptr<RENode>> nodes_;
  bool literal_ = true;
  std::size_t max_states_;
  std::unique_ptr<tdm::StateTable> table_; ///< null before the first match
  bool only_at_first_ = false;             ///< an attempt behind the first position is in vain
  NodeSet here_;
  NodeSet ahead_;
  std::vector<std::uint32_t> numbers_; ///< of the nodes ahead
  std::uint64_t steps_ = 0;
};
