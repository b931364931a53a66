// Names that have been met, each once unless somebody adds it again.
#pragma once

#include "common/block_pool.h"
#include "common/name_table.h"
#include "common/text.h"

namespace tdm {

/// The names belong to somebody else.
class NameSet {
public:
  /// False if the name has been met before.
  bool add(Text name)
  {
    append(names_, name);
    const auto name_at = [this](uint32_t place) { return names_[place]; };
    return places_.append(name_at) + 1 == names_.size();
  }
  /// In the order of arrival.
  [[nodiscard]] const PooledVector<Text> &names() const { return names_; }

private:
  PooledVector<Text> names_;
  NameTable places_;
};

} // namespace tdm
