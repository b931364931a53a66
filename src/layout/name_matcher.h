// Compares names with a pattern that has wildcards.
//
// Most names differ from the pattern in the text before its first wildcard or behind its last one,
// and most patterns have nothing between these but `*`. Only what is left goes to the regular
// expression, which is compiled when it is first needed.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "layout/regular_expression.h"

namespace tdm {

class NameMatcher {
public:
  /// The expression of the pattern, or null: then the pattern has to be right.
  NameMatcher(std::string_view pattern, std::unique_ptr<RegularExpression> expression);

  [[nodiscard]] bool matches(std::string_view name)
  {
    return has_ends(name) && (free_between_ || expression().match(name, 0));
  }

  /// What all names that match begin with.
  [[nodiscard]] const std::string &prefix() const { return prefix_; }
  /// Whether all names that begin so match.
  [[nodiscard]] bool prefix_decides() const { return free_between_ && suffix_.empty(); }

private:
  [[nodiscard]] bool has_ends(std::string_view name) const
  {
    return name.size() >= prefix_.size() + suffix_.size() && name.starts_with(prefix_) &&
           name.ends_with(suffix_);
  }
  void find_ends();
  [[nodiscard]] std::size_t read_prefix();
  [[nodiscard]] RegularExpression &expression();

  std::string pattern_;
  std::string prefix_;
  std::string suffix_;
  bool free_between_ = false; ///< whether anything matches between prefix and suffix
  std::unique_ptr<RegularExpression> expression_;
};

} // namespace tdm
