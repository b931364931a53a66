// Selection patterns with names: one pattern a line, against the names on the lines behind it.
#include "common/failures.h"
#include "layout/regular_expression.h"
#include "layout/selection_pattern.h"
#include "preprocessor/string_pool.h"
#include "target.h"

namespace {

/// For patterns of `*`, `?` and letters: whether the name matches, by the plainest of means. Row by
/// row: whether the pattern's first i characters match the name's first k.
bool glob(std::string_view pattern, std::string_view name)
{
  std::vector<bool> row(name.size() + 1, false);
  row[0] = true;
  for (const char c : pattern) {
    std::vector<bool> next(name.size() + 1, false);
    for (std::size_t k = 0; k <= name.size(); ++k)
      next[k] = c == '*' ? row[k] || (k > 0 && next[k - 1])
                         : k > 0 && row[k - 1] && (c == '?' || c == name[k - 1]);
    row.swap(next);
  }
  return row[name.size()];
}

bool is_plain(std::string_view pattern)
{
  return pattern.find_first_of("[]\\()|+^$") == pattern.npos;
}

void expression(const std::string &text, std::string_view name)
{
  try {
    RegularExpression compiled(text, name.size() % 2 == 0);
    (void)compiled.match(name, 0);
    fuzz::require(compiled.steps() <= compiled.nodes().size() * (name.size() + 1),
                  "nodes times length is the most", text);
  } catch (SyntaxError *failure) {
    delete failure;
  }
}

/// While a pattern is in use.
struct Pool {
  Pool() { tdm::string_pool_start(); }
  ~Pool() { tdm::string_pool_end(); }
  Pool(const Pool &) = delete;
  Pool &operator=(const Pool &) = delete;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
  std::string_view rest = fuzz::text_of(data, size);
  const auto line = [&rest] {
    const std::size_t end = std::min(rest.find('\n'), rest.size());
    const std::string_view result = rest.substr(0, end);
    rest.remove_prefix(std::min(end + 1, rest.size()));
    return result;
  };
  const std::string_view pattern = line();
  const Pool pool;
  try {
    const TDMSelectionPattern compiled(tdm::Text(pattern), {});
    const tdm::Text *literal = compiled.literal_name();
    do {
      const std::string_view name = line();
      const bool matches = compiled.matches(name);
      if (literal != nullptr) fuzz::require(matches == (name == *literal), "a literal is itself");
      if (is_plain(pattern))
        fuzz::require(matches == glob(pattern, name), "a glob", std::string(name));
    } while (!rest.empty());
  } catch (TDMSyntaxException *failure) {
    fuzz::require(!is_plain(pattern), "a plain pattern is right");
    delete failure;
  }
  expression(std::string(pattern), fuzz::text_of(data, size));
  return 0;
}
