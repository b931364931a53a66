// The names that the layouts and tables of a core's spaces mention, in order of arrival, for
// whoever links: what is assigned, what has to be there, and what may be. They stay where they are
// mentioned, in objects that live as long as the core.
#pragma once

#include <cstdint>
#include <vector>

#include "common/block_pool.h"
#include "common/name_table.h"
#include "common/text.h"

namespace tdm {

/// One symbol, or a run of numbered ones: a vector table may ask for millions of them, which are
/// never written out.
struct RequiredSymbol {
  Text name;         ///< the symbol, or what stands before the numbers
  int64_t count = 0; ///< 0: one symbol without a number; else the numbers go from 0 to count - 1
};

/// The names of all groups of a core, which has each once.
class GroupNames {
public:
  /// False if the name is there already.
  [[nodiscard]] bool add(Text name)
  {
    names_.push_back(name);
    return places_.append([this](uint32_t place) { return names_[place]; }) + 1 == names_.size();
  }
  [[nodiscard]] const PooledVector<Text> &in_order_of_arrival() const { return names_; }

private:
  PooledVector<Text> names_;
  NameTable places_;
};

struct SectionNames {
  PooledVector<Text> assigned_symbols;
  PooledVector<Text> optional_symbols;
  std::vector<RequiredSymbol, PoolAllocator<RequiredSymbol>> required_symbols;
  PooledVector<Text> referenced_names;
  GroupNames group_names;
};

} // namespace tdm
