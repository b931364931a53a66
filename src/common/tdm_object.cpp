// Where objects live.
#include "common/tdm_object.h"

#include "common/block_pool.h"

void *TDMObject::operator new(std::size_t size)
{
  return tdm::pool_allocate(size);
}

void TDMObject::operator delete(void *object, std::size_t size) noexcept
{
  tdm::pool_free(object, size);
}
