// Finds the objects of a finished list by name.
#pragma once

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace tdm {

/// The first object of each name. Built once the list is complete.
template <typename Object> class NameIndex {
public:
  template <typename NameOf>
  void build(const std::vector<std::unique_ptr<Object>> &objects, NameOf name_of)
  {
    by_name_.reserve(objects.size());
    for (const auto &object : objects) by_name_.emplace(name_of(*object), object.get());
  }

  [[nodiscard]] Object *find(const std::string &name) const
  {
    const auto found = by_name_.find(name);
    return found != by_name_.end() ? found->second : nullptr;
  }

private:
  std::unordered_map<std::string, Object *> by_name_;
};

} // namespace tdm
