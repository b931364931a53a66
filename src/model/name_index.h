// Finds the objects of a list by their member `name`.
#pragma once

#include <memory>
#include <string_view>

#include "common/name_table.h"

namespace tdm {

/// Follows a list that only grows; names don't change once they have been taken in.
template <typename Object> class NameIndex {
public:
  using List = PooledVector<std::unique_ptr<Object>>;

  explicit NameIndex(const List &objects) : objects_(objects) {}

  /// Takes in what has been added to the list.
  void update()
  {
    places_.reserve(objects_.size(), NameAt{objects_});
    for (uint32_t place = places_.size(); place < objects_.size(); ++place)
      if (places_.append(NameAt{objects_}) != place && first_repeated_ == nullptr)
        first_repeated_ = objects_[place].get();
  }

  /// The first object of the name, or null.
  [[nodiscard]] Object *find(std::string_view name) const
  {
    const uint32_t place = place_of(name);
    return place != NameTable::none ? objects_[place].get() : nullptr;
  }
  /// Its place, or NameTable::none.
  [[nodiscard]] uint32_t place_of(std::string_view name) const
  {
    return places_.find(name, NameAt{objects_});
  }

  /// The first object whose name an earlier one has, or null.
  [[nodiscard]] const Object *first_repeated() const { return first_repeated_; }

private:
  struct NameAt {
    const List &objects;

    Text operator()(uint32_t place) const { return objects[place]->name; }
  };

  const List &objects_;
  NameTable places_;
  const Object *first_repeated_ = nullptr;
};

/// The first object of a list whose member `name` an earlier one has, or null.
template <typename Object>
[[nodiscard]] const Object *first_repeated(const PooledVector<std::unique_ptr<Object>> &objects)
{
  if (objects.size() < 2) return nullptr;
  NameIndex<Object> index(objects);
  index.update();
  return index.first_repeated();
}

} // namespace tdm
