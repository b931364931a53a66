// The mappings at one side of a node, in the order in which a translation tries them.
//
// Most lists have a single one, which stands in the node itself. More lie in a block, at whose head
// there is room for the index that finds among many (mapping_index.h). Those in front may belong to
// the list.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

struct TDMMapping;

namespace tdm {

class MappingIndex;

class MappingList {
public:
  MappingList() = default;
  ~MappingList()
  {
    if (count_ > 1 || own_count_ > 0) clear();
  }
  MappingList(const MappingList &) = delete;
  MappingList &operator=(const MappingList &) = delete;

  [[nodiscard]] bool empty() const { return count_ == 0; }
  [[nodiscard]] std::size_t size() const { return count_; }
  [[nodiscard]] std::span<TDMMapping *const> all() const
  {
    return {count_ > 1 ? block_->first() : &only_, count_};
  }
  [[nodiscard]] TDMMapping *const *begin() const { return all().data(); }
  [[nodiscard]] TDMMapping *const *end() const { return begin() + count_; }
  [[nodiscard]] TDMMapping *operator[](std::size_t place) const { return begin()[place]; }

  /// Those that belong to the list.
  [[nodiscard]] std::span<TDMMapping *const> own() const { return all().first(own_count_); }

  /// Nothing that doesn't belong to the list may be in it yet.
  void push_back_own(std::unique_ptr<TDMMapping> mapping);
  void push_back(TDMMapping *mapping)
  {
    if (count_ == 0) {
      only_ = mapping;
    } else {
      if (count_ == capacity_for(count_)) grow();
      block_->first()[count_] = mapping;
    }
    ++count_;
  }

private:
  friend class MappingIndex;

  /// The head of a block, which goes on with the mappings.
  struct Block {
    const MappingIndex *index; ///< owned; null until somebody asks for it

    [[nodiscard]] TDMMapping **first() { return reinterpret_cast<TDMMapping **>(this + 1); }
  };

  /// How many a list of so many has room for. With its head a block is a power of two.
  [[nodiscard]] static std::uint32_t capacity_for(std::uint32_t count)
  {
    return count <= 1 ? 1 : std::max(std::bit_ceil(count + 1) - 1, 3U);
  }

  void grow();
  void free_block();
  void clear();

  union {
    TDMMapping *only_ = nullptr;
    Block *block_; ///< of more than one
  };
  std::uint32_t count_ = 0;
  std::uint32_t own_count_ = 0;
};

} // namespace tdm
