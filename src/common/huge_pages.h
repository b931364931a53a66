// Memory in huge pages, for the few large areas that a long description needs: a fault for each
// small page costs more than what is put into it, and a table that is searched all over the place
// misses the translation of its addresses besides.
#pragma once

#include <cstddef>

namespace tdm {

constexpr std::size_t huge_page = std::size_t{2} << 20;

/// Zero-filled memory at a multiple of the page size. The size must be a multiple of it, too. Null
/// if there is none. What the system has no huge pages for is made of small ones.
[[nodiscard]] void *map_huge_pages(std::size_t size) noexcept;

void unmap_huge_pages(void *pages, std::size_t size) noexcept;

} // namespace tdm
