// Finds the objects of a finished list by name.
#pragma once

#include <memory>
#include <string_view>
#include <vector>

#include "common/name_table.h"

namespace tdm {

/// The first object of each name. Built once the list is complete.
template <typename Object> class NameIndex {
public:
  template <typename NameOf>
  void build(const std::vector<std::unique_ptr<Object>> &objects, NameOf name_of)
  {
    objects_ = &objects;
    places_.reserve(objects.size());
    uint32_t place = 0;
    for (const auto &object : objects) places_.add(name_of(*object), place++);
  }

  [[nodiscard]] Object *find(std::string_view name) const
  {
    const uint32_t place = places_.find(name);
    return place != NameTable::none ? (*objects_)[place].get() : nullptr;
  }

private:
  const std::vector<std::unique_ptr<Object>> *objects_ = nullptr;
  NameTable places_;
};

} // namespace tdm
