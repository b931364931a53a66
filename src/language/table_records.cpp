// The set of vector ids, and the one setter of a vector's value that refuses a second call.
#include "language/table_records.h"

#include <algorithm>
#include <limits>

#include "common/failures.h"

namespace tdm {

void VectorIds::add(std::int32_t low, std::int32_t high)
{
  constexpr std::int32_t least = std::numeric_limits<std::int32_t>::min();
  constexpr std::int32_t greatest = std::numeric_limits<std::int32_t>::max();
  // From the first range that overlaps the new one or touches it, to the last.
  auto at = ranges_.upper_bound(low);
  if (at != ranges_.begin()) {
    const auto before = std::prev(at);
    if (low == least || before->second >= low - 1) at = before;
  }
  while (at != ranges_.end() && (high == greatest || at->first <= high + 1)) {
    low = std::min(low, at->first);
    high = std::max(high, at->second);
    at = ranges_.erase(at);
  }
  ranges_.emplace_hint(at, low, high);
}

} // namespace tdm

void TDMFileVectorValue::set_loop_offset(tdm::ExpressionPtr offset)
{
  if (loopOffset) throw new TDMFileSyntaxException("trying to set vector value loop offset twice");
  loopOffset = std::move(offset);
}
