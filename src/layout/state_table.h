// What the matches of an expression have learnt about it: to which set of nodes each set leads.
//
// A state is a set of nodes that wait at one position. What becomes of it depends on nothing but
// the next character, or that there is none, except at the first position, which is a state of its
// own. So each step has to be tried once; later matches look it up in a row of cells, one for the
// end of the subject and one for each class of characters that no node tells apart.
//
// All memory is taken at the start and bounded: some expressions have more states than anything
// could hold. A state for which there is no room stays unknown, and whoever meets it goes on
// without the table.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace tdm {

/// Numbers for characters, equal ones for those that never had to be told apart.
class CharacterClasses {
public:
  /// Tells the characters from low to high, compared as signed ones, from all others.
  void separate(signed char low, signed char high);
  void separate_all();

  [[nodiscard]] std::size_t count() const;
  /// The number of each character, from 0 on.
  [[nodiscard]] std::array<std::uint8_t, 256> numbers() const;

private:
  /// Whether a class begins at the character, in their order as signed ones.
  std::array<bool, 256> begins_{true};
};

class StateTable {
public:
  /// A state, which is the place of its row, or one of the three values below.
  using Cell = std::uint16_t;
  static constexpr Cell accepted = 0xFFFD; ///< the subject matches, whatever follows
  static constexpr Cell refused = 0xFFFE;  ///< nor does it match, whatever follows
  static constexpr Cell unknown = 0xFFFF;
  /// No node waits, and the position is the first.
  static constexpr Cell initial = 0;

  static constexpr std::size_t default_states = 128;

  /// Has room for at least one state, and for no more than a few kilobytes of them.
  StateTable(const CharacterClasses &classes, std::size_t max_states);

  [[nodiscard]] static bool is_state(Cell cell) { return cell < accepted; }
  [[nodiscard]] Cell at_end(Cell state) const { return cells_[state]; }
  [[nodiscard]] Cell behind(Cell state, char character) const
  {
    return cells_[state + columns_of_[static_cast<unsigned char>(character)]];
  }

  struct Place {
    Cell state;
    std::size_t position;
  };
  /// Goes on from state to state, up to the end of the subject or a character that leads to none.
  [[nodiscard]] Place follow(Place place, std::string_view subject) const
  {
    for (; place.position < subject.size(); ++place.position) {
      const Cell next = behind(place.state, subject[place.position]);
      if (!is_state(next)) break;
      place.state = next;
    }
    return place;
  }

  void learn_end(Cell state, Cell next) { cells_[state] = next; }
  void learn(Cell state, char character, Cell next)
  {
    cells_[state + columns_of_[static_cast<unsigned char>(character)]] = next;
  }

  /// The numbers of the nodes that wait in a state.
  [[nodiscard]] std::span<const std::uint32_t> nodes(Cell state) const;
  /// The state, behind the first position, in which nodes of these numbers wait, in ascending
  /// order; unknown if it is a new one and there is no room.
  [[nodiscard]] Cell state_of(std::span<const std::uint32_t> nodes);

private:
  std::size_t columns_;
  std::array<std::uint16_t, 256> columns_of_; ///< by character; column 0 is the end
  std::size_t max_states_;
  std::vector<Cell> cells_;
  std::vector<std::uint32_t> nodes_; ///< of one state behind the other
  std::vector<std::uint32_t> ends_;  ///< by state: where its nodes end
};

} // namespace tdm
