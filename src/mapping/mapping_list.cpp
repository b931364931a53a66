// The blocks of lists of more than one mapping.
#include "mapping/mapping_list.h"

#include <algorithm>
#include <new>

#include "common/block_pool.h"
#include "mapping/mapping_index.h"

namespace tdm {

namespace {

std::size_t block_size(std::uint32_t capacity)
{
  return (std::size_t{capacity} + 1) * sizeof(TDMMapping *);
}

} // namespace

void MappingList::push_back_own(std::unique_ptr<TDMMapping> mapping)
{
  push_back(mapping.get());
  static_cast<void>(mapping.release());
  ++own_count_;
}

/// Makes room for one more. What the list may have for an index doesn't know it.
void MappingList::grow()
{
  Block *const next =
      ::new (pool_allocate(block_size(capacity_for(count_ + 1)))) Block{.index = nullptr};
  std::copy(begin(), end(), next->first());
  if (count_ > 1) free_block();
  block_ = next;
}

void MappingList::clear()
{
  for (const TDMMapping *mapping : own()) delete mapping;
  if (count_ > 1) free_block();
}

void MappingList::free_block()
{
  delete block_->index;
  pool_free(block_, block_size(capacity_for(count_)));
}

} // namespace tdm
