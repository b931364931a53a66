/// @file
/// The texts of records and of the model: views of the string pool, which outlives both. So a name
/// costs no copy, from the token that it was read in to the object that bears it.
#pragma once

#include <string>
#include <string_view>

namespace tdm {

/// A view of a text of the string pool, of a part of one, or of a literal. Whoever makes one of any
/// other text sees to it that this lives as long.
class Text : public std::string_view {
public:
  /// The empty text.
  Text() = default;
  /// Of a literal, or a text of the pool. Implicit on purpose: a literal is a text.
  Text(const char *text) : std::string_view(text) {}
  /// A part of a text of the pool.
  explicit Text(std::string_view pooled) : std::string_view(pooled) {}
  /// What is put together goes into the pool first.
  Text(const std::string &) = delete;

  /// A copy.
  [[nodiscard]] std::string str() const { return std::string(begin(), end()); }
  /// A copy.
  explicit operator std::string() const { return str(); }

  /// For messages.
  friend std::string operator+(std::string left, Text right)
  {
    return std::move(left.append(right));
  }
  /// For messages.
  friend std::string operator+(const char *left, Text right) { return left + right.str(); }
  /// For messages.
  friend std::string operator+(Text left, std::string_view right)
  {
    return std::move(left.str().append(right));
  }
};

} // namespace tdm
