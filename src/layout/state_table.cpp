// Looks states up and adds them; the steps between them come from the expression.
#include "layout/state_table.h"

#include <algorithm>
#include <climits>

namespace tdm {

namespace {

/// Of the cells of one table. A layout may have many thousands of patterns.
constexpr std::size_t max_cells = 8192;
constexpr std::size_t nodes_of_a_state = 8;

std::size_t in_order(signed char character)
{
  return static_cast<std::size_t>(character - SCHAR_MIN);
}

} // namespace

void CharacterClasses::separate(signed char low, signed char high)
{
  begins_[in_order(low)] = true;
  if (high != SCHAR_MAX) begins_[in_order(high) + 1] = true;
}

void CharacterClasses::separate_all()
{
  begins_.fill(true);
}

std::size_t CharacterClasses::count() const
{
  return static_cast<std::size_t>(std::count(begins_.begin(), begins_.end(), true));
}

std::array<std::uint8_t, 256> CharacterClasses::numbers() const
{
  std::array<std::uint8_t, 256> result{};
  unsigned number = 0;
  for (int character = SCHAR_MIN; character <= SCHAR_MAX; ++character) {
    if (character != SCHAR_MIN && begins_[in_order(static_cast<signed char>(character))]) ++number;
    result[static_cast<unsigned char>(character)] = static_cast<std::uint8_t>(number);
  }
  return result;
}

StateTable::StateTable(const CharacterClasses &classes, std::size_t max_states)
    : columns_(classes.count() + 1),
      max_states_(std::clamp<std::size_t>(max_states, 1, max_cells / columns_))
{
  const std::array<std::uint8_t, 256> numbers = classes.numbers();
  std::transform(numbers.begin(), numbers.end(), columns_of_.begin(),
                 [](std::uint8_t number) { return static_cast<std::uint16_t>(number + 1); });
  cells_.reserve(max_states_ * columns_);
  nodes_.reserve(max_states_ * nodes_of_a_state);
  ends_.reserve(max_states_);
  cells_.resize(columns_, unknown);
  ends_.push_back(0);
}

std::span<const std::uint32_t> StateTable::nodes(Cell state) const
{
  const std::size_t number = state / columns_;
  const std::size_t begin = number == 0 ? 0 : ends_[number - 1];
  return std::span(nodes_).subspan(begin, ends_[number] - begin);
}

StateTable::Cell StateTable::state_of(std::span<const std::uint32_t> nodes)
{
  for (std::size_t row = columns_; row < cells_.size(); row += columns_) {
    const std::span<const std::uint32_t> others = this->nodes(static_cast<Cell>(row));
    if (std::equal(nodes.begin(), nodes.end(), others.begin(), others.end()))
      return static_cast<Cell>(row);
  }
  if (ends_.size() == max_states_ || nodes.size() > nodes_.capacity() - nodes_.size())
    return unknown;
  const auto row = static_cast<Cell>(cells_.size());
  cells_.resize(cells_.size() + columns_, unknown);
  nodes_.insert(nodes_.end(), nodes.begin(), nodes.end());
  ends_.push_back(static_cast<std::uint32_t>(nodes_.size()));
  return row;
}

} // namespace tdm
