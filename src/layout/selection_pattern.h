/// @file
/// The name in a `select` statement: a pattern in the style of a file name.
///
/// `*` is any text, `?` any character, `[...]` a set, `\` takes the next character as it is. The
/// pattern is translated to a regular expression that is anchored at both ends. A pattern without
/// wildcards is a plain name, which is compared as text and can be looked up in an index.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "common/block_pool.h"
#include "common/source_location.h"
#include "common/text.h"

namespace tdm {
class NameMatcher;
} // namespace tdm

namespace tdm {

/// What shows of a pattern at first sight. Most patterns need neither translation nor graph to be
/// read.
enum class PatternKind : std::uint8_t {
  plain,  ///< a name without any operator of a pattern or of an expression
  right,  ///< has wildcards, and nothing can be wrong with it
  unclear ///< only compiling tells whether it has wildcards or is wrong
};

/// One look at each character of the pattern.
[[nodiscard]] PatternKind kind_of_pattern(std::string_view pattern);

} // namespace tdm

/// A pattern, ready to compare names with.
class TDMSelectionPattern : public tdm::RegionGuest {
public:
  /// A wrong pattern is refused at the location.
  TDMSelectionPattern(tdm::Text pattern_text, const TDMSourceLocation &location);
  ~TDMSelectionPattern() override;

  /// The name that alone matches, or null if the pattern has wildcards. Lives as the pattern does.
  [[nodiscard]] const tdm::Text *literal_name() const { return literal_ ? &text_ : nullptr; }

  /// Whether the pattern takes the whole name.
  [[nodiscard]] bool matches(std::string_view name) const;

  /// What compares names; only for a pattern with wildcards.
  [[nodiscard]] tdm::NameMatcher &matcher() const;

private:
  tdm::Text text_; ///< of a plain name without its escapes, else as it was written
  bool literal_ = true;
  mutable std::unique_ptr<tdm::NameMatcher> matcher_; ///< null until it is needed
};

namespace tdm {

/// A pattern in the two forms that it is compared in.
struct TranslatedPattern {
  std::string expression; ///< a regular expression with both anchors
  std::string plain;      ///< the pattern without its escapes
};

/// Every pattern has a translation; what is wrong with it shows when the expression is compiled.
[[nodiscard]] TranslatedPattern translate_pattern(std::string_view pattern);

} // namespace tdm
