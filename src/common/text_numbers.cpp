#include "common/text_numbers.h"

#include "common/block_pool.h"

namespace tdm {

std::uint32_t TextNumbers::add(const char *text)
{
  if (const std::uint32_t known = find(text); known != none) return known;
  const PoolScope beyond_specs(process_pool);
  const auto number = static_cast<std::uint32_t>(texts_.size());
  texts_.push_back(text);
  try {
    numbers_.append(TextAt{texts_});
  } catch (...) {
    texts_.pop_back();
    throw;
  }
  return number;
}

} // namespace tdm
