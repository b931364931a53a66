// The kernel is asked for one page more, and the ends are given back: it aligns to small pages
// only.
#include "common/huge_pages.h"

#include <cstdint>
#include <sys/mman.h>

namespace tdm {

void *map_huge_pages(std::size_t size) noexcept
{
  if (size > SIZE_MAX - huge_page) return nullptr;
  void *const mapped =
      mmap(nullptr, size + huge_page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (mapped == MAP_FAILED) return nullptr;
  auto *const begin = static_cast<char *>(mapped);
  const std::size_t lead = -reinterpret_cast<std::uintptr_t>(begin) % huge_page;
  if (lead != 0) munmap(begin, lead);
  if (lead != huge_page) munmap(begin + lead + size, huge_page - lead);
    // Neither has to succeed: pages are then small, or come one by one.
#ifdef MADV_HUGEPAGE
  static_cast<void>(madvise(begin + lead, size, MADV_HUGEPAGE));
#endif
#ifdef MADV_POPULATE_WRITE
  static_cast<void>(madvise(begin + lead, size, MADV_POPULATE_WRITE));
#endif
  return begin + lead;
}

void unmap_huge_pages(void *pages, std::size_t size) noexcept
{
  munmap(pages, size);
}

} // namespace tdm
