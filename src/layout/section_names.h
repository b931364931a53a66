// The names that the layouts and tables of a core's spaces mention, in order of arrival, for
// whoever links: what is assigned, what has to be there, and what may be.
#pragma once

#include <cstdint>
#include <string>
#include <unordered_set>
#include <vector>

#include "common/block_pool.h"

namespace tdm {

/// One symbol, or a run of numbered ones: a vector table may ask for millions of them, which are
/// never written out.
struct RequiredSymbol {
  std::string name;  ///< the symbol, or what stands before the numbers
  int64_t count = 0; ///< 0: one symbol without a number; else the numbers go from 0 to count - 1
};

using PooledNames = std::vector<std::string, PoolAllocator<std::string>>;

struct SectionNames {
  PooledNames assigned_symbols;
  PooledNames optional_symbols;
  std::vector<RequiredSymbol, PoolAllocator<RequiredSymbol>> required_symbols;
  PooledNames referenced_names;
  std::unordered_set<std::string> group_names;
};

} // namespace tdm
