// The names that the layouts and tables of a core's spaces mention, in order of arrival, for
// whoever links: what is assigned, what has to be there, and what may be. They stay where they are
// mentioned, in objects that live as long as the core.
#pragma once

#include <cstdint>
#include <vector>

#include "common/block_pool.h"
#include "common/name_set.h"
#include "common/text.h"

namespace tdm {

/// One symbol, or a run of numbered ones: a vector table may ask for millions of them, which are
/// never written out.
struct RequiredSymbol {
  Text name;         ///< the symbol, or what stands before the numbers
  int64_t count = 0; ///< 0: one symbol without a number; else the numbers go from 0 to count - 1
};

struct SectionNames {
  PooledVector<Text> assigned_symbols;
  PooledVector<Text> optional_symbols;
  std::vector<RequiredSymbol, PoolAllocator<RequiredSymbol>> required_symbols;
  PooledVector<Text> referenced_names;
  NameSet group_names;
};

} // namespace tdm
