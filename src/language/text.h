// The texts of records: views of the string pool, which outlives all records. So a record costs no
// copy of a name, and the model makes its own when it is built.
#pragma once

#include <string>
#include <string_view>

#include "preprocessor/string_pool.h"

namespace tdm {

class Text : public std::string_view {
public:
  Text() = default;
  /// Of a literal, or a text of the pool.
  Text(const char *text) : std::string_view(text) {}
  /// A part of a text of the pool.
  explicit Text(std::string_view pooled) : std::string_view(pooled) {}
  Text(const std::string &) = delete;
  Text(std::string &&) = delete;

  /// A text that was put together, which goes into the pool for that.
  [[nodiscard]] static Text of(std::string_view composed)
  {
    return Text(std::string_view(intern(composed), composed.size()));
  }

  [[nodiscard]] static Text joined(Text left, char between, Text right)
  {
    return of((left.str() += between).append(right));
  }

  [[nodiscard]] std::string str() const { return std::string(begin(), end()); }
  explicit operator std::string() const { return str(); }

  friend std::string operator+(std::string left, Text right)
  {
    return std::move(left.append(right));
  }
  friend std::string operator+(const char *left, Text right) { return left + right.str(); }
  friend std::string operator+(Text left, std::string_view right)
  {
    return std::move(left.str().append(right));
  }
};

} // namespace tdm
