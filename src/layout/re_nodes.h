// The nodes of a compiled expression: each is one test at one position of the subject.
//
// A node knows nothing of the others' tests; it lists the nodes that may come behind it. The
// expression owns all nodes, so links are plain pointers and the graph may have cycles.
#pragma once

#include <cstdint>
#include <utility>
#include <vector>

class RegularExpression;

namespace tdm {
class CharacterClasses;
} // namespace tdm

/// An empty step: true everywhere, moves nothing. Opens and closes alternatives and loops.
class RENode {
public:
  explicit RENode(RegularExpression &expression) : owner_(&expression) {}
  RENode(const RENode &) = delete;
  RENode &operator=(const RENode &) = delete;
  virtual ~RENode() = default;

  /// Tests the owner's position; on success moves it behind what the node takes.
  [[nodiscard]] virtual bool match();
  /// Tells the characters that the node takes from the others. Not asked if case is ignored.
  virtual void separate(tdm::CharacterClasses &) const {}

  /// What may follow, in the order of trial. A node without any is the end of the expression.
  std::vector<RENode *> next;
  /// The place in the owner's list of nodes.
  std::uint32_t number = 0;

protected:
  [[nodiscard]] RegularExpression &owner() const { return *owner_; }

private:
  RegularExpression *owner_;
};

/// True where the search began. Takes nothing.
class REBeginOfStringNode final : public RENode {
public:
  using RENode::RENode;
  [[nodiscard]] bool match() override;
};

/// True behind the last character. Takes nothing.
class REEndOfStringNode final : public RENode {
public:
  using RENode::RENode;
  [[nodiscard]] bool match() override;
};

/// Takes one given character; false at the end of the subject.
class RELiteralNode final : public RENode {
public:
  RELiteralNode(RegularExpression &expression, char character)
      : RENode(expression), character_(character)
  {
  }
  [[nodiscard]] bool match() override;
  void separate(tdm::CharacterClasses &classes) const override;
  [[nodiscard]] char character() const { return character_; }

private:
  char character_;
};

/// Takes any one character; false at the end of the subject.
class REWildcardNode final : public RENode {
public:
  using RENode::RENode;
  [[nodiscard]] bool match() override;
};

/// Takes one character inside one of the ranges or, negated, outside all of them; false at the end
/// of the subject. Characters compare as signed ones.
class RESetNode final : public RENode {
public:
  using Range = std::pair<signed char, signed char>; ///< low and high, both inside

  RESetNode(RegularExpression &expression, std::vector<Range> ranges, bool negated)
      : RENode(expression), ranges_(std::move(ranges)), negated_(negated)
  {
  }
  [[nodiscard]] bool match() override;
  void separate(tdm::CharacterClasses &classes) const override;
  [[nodiscard]] const std::vector<Range> &ranges() const { return ranges_; }
  [[nodiscard]] bool negated() const { return negated_; }

private:
  [[nodiscard]] bool contains(char character) const;

  std::vector<Range> ranges_;
  bool negated_;
};
