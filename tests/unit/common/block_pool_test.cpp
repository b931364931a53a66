// Which memory blocks come from and go back to. Under a sanitizer there are no pools.
#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <vector>

#include "common/block_pool.h"
#include "common/source_location.h"

namespace {

#ifndef TDM_PLAIN_BLOCKS

using tdm::BlockPool;
using tdm::PoolScope;
using tdm::Region;

bool is_in_use(const void *block, const void *of, std::size_t size)
{
  const auto *byte = static_cast<const char *>(block);
  const auto *begin = static_cast<const char *>(of);
  return byte >= begin && byte < begin + size;
}

TEST(BlockPool, ABlockGoesBackWhereItCameFrom)
{
  Region first;
  Region second;
  for (const std::size_t size : {std::size_t{1}, std::size_t{40}, BlockPool::largest}) {
    void *block = nullptr;
    {
      const PoolScope scope(first.pool());
      block = tdm::pool_allocate(size);
      std::memset(block, 1, size);
    }
    const PoolScope scope(second.pool());
    tdm::pool_free(block, size);
    void *const other = tdm::pool_allocate(size);
    EXPECT_NE(other, block) << size;
    const PoolScope back(first.pool());
    EXPECT_EQ(tdm::pool_allocate(size), block) << size;
  }
}

TEST(BlockPool, ObjectsGrowIntoTheRoomOfRecordsThatAreUsedUp)
{
  constexpr std::size_t size = 200;
  constexpr std::size_t count = 10 * BlockPool::chunk_size / size;
  Region region;
  const PoolScope scope(region.pool());
  std::vector<void *> records;
  {
    const tdm::RecordScope reading;
    for (std::size_t i = 0; i < count; ++i) {
      records.push_back(tdm::record_allocate(size));
      std::memset(records.back(), 2, size);
    }
  }
  void *const kept = records.back();
  records.pop_back();
  for (void *record : records) tdm::record_free(record, size);
  std::size_t reused = 0;
  for (std::size_t i = 0; i < count; ++i) {
    void *const object = tdm::pool_allocate(size + 8);
    std::memset(object, 3, size + 8);
    EXPECT_FALSE(is_in_use(object, kept, size));
    for (const void *record : records) reused += is_in_use(object, record, size) ? 1 : 0;
  }
  EXPECT_GT(reused, count * 8 / 10);
  EXPECT_EQ(*static_cast<char *>(kept), 2);
  // When nothing is read any more, a record is freed and handed out as an object is.
  void *const late = tdm::record_allocate(size);
  tdm::record_free(late, size);
  EXPECT_EQ(tdm::record_allocate(size), late);
}

std::size_t held_by(const BlockPool &pool)
{
  std::size_t held = 0;
  for (const BlockPool::Slab *slab = pool.slabs; slab != nullptr; slab = slab->next)
    held += slab->size;
  return held;
}

TEST(BlockPool, WhatRecordsHadAndObjectsDontNeedIsGivenBack)
{
  constexpr std::size_t size = 200;
  constexpr std::size_t count = (std::size_t{20} << 20) / size;
  Region region;
  const PoolScope scope(region.pool());
  std::vector<void *> records;
  std::vector<void *> objects;
  {
    const tdm::RecordScope reading;
    for (std::size_t i = 0; i < count; ++i) {
      records.push_back(tdm::record_allocate(size));
      if (i % 8 != 0) continue;
      objects.push_back(tdm::pool_allocate(size));
      std::memset(objects.back(), 1, size);
    }
  }
  void *const last = records.back();
  std::memset(last, 2, size);
  records.pop_back();
  for (void *record : records) {
    tdm::record_free(record, size);
    if (objects.size() >= count / 3) continue;
    objects.push_back(tdm::pool_allocate(size));
    std::memset(objects.back(), 1, size);
  }
  const std::size_t before = held_by(region.pool());
  region.give_back();
  // A slab in which something is left stays.
  EXPECT_LT(held_by(region.pool()), before - (std::size_t{12} << 20));
  EXPECT_GT(held_by(region.pool()), count / 3 * size);
  for (const void *object : objects) EXPECT_EQ(*static_cast<const char *>(object), 1);
  EXPECT_EQ(*static_cast<char *>(last), 2);
  for (std::size_t i = 0; i < count / 8; ++i) {
    const tdm::RecordScope reading;
    std::memset(tdm::pool_allocate(size), 3, size);
    std::memset(tdm::record_allocate(size), 3, size);
  }
  for (const void *object : objects) EXPECT_EQ(*static_cast<const char *>(object), 1);
  const std::size_t later = held_by(region.pool());
  region.give_back();
  EXPECT_EQ(held_by(region.pool()), later); // nothing is free
}

TEST(BlockPool, LargeBlocksEndWithTheirRegionOrBefore)
{
  auto region = std::make_unique<Region>();
  void *large[3];
  const std::size_t size = BlockPool::largest + 1;
  {
    const PoolScope scope(region->pool());
    for (void *&block : large) std::memset(block = tdm::pool_allocate(size), 4, size);
  }
  tdm::pool_free(large[1], size);
  tdm::pool_free(large[2], size);
  region.reset();
}

TEST(BlockPool, GuestsEndWithTheirOwnerOrWithTheRegion)
{
  struct Guest final : tdm::RegionGuest {
    explicit Guest(int &count) : ended(count) {}
    ~Guest() override { ++ended; }
    int &ended;
  };
  int ended = 0;
  auto region = std::make_unique<Region>();
  Region other;
  void *owner = nullptr;
  {
    const PoolScope scope(region->pool());
    owner = tdm::pool_allocate(16);
  }
  auto first = std::make_unique<Guest>(ended);
  auto second = std::make_unique<Guest>(ended);
  auto third = std::make_unique<Guest>(ended);
  auto stranger = std::make_unique<Guest>(ended);
  for (const auto &guest : {first.get(), second.get(), third.get()}) guest->stay_with(owner);
  stranger->stay_with(&ended);
  second.reset();
  EXPECT_EQ(ended, 1);
  // Their owner is left to the region, which deletes them.
  static_cast<void>(first.release());
  static_cast<void>(third.release());
  region.reset();
  EXPECT_EQ(ended, 3);
  stranger.reset();
  EXPECT_EQ(ended, 4);
}

TEST(BlockPool, ARegionTakesTheRoomOfTheLastOne)
{
  tdm::pool_start();
  const auto first_block = [] {
    Region region;
    const PoolScope scope(region.pool());
    void *const block = tdm::pool_allocate(64);
    for (int i = 0; i < 1000; ++i) std::memset(tdm::pool_allocate(1000), 5, 1000);
    return block;
  };
  void *const block = first_block();
  EXPECT_EQ(first_block(), block);
  tdm::pool_trim();
}

TEST(BlockPool, PlacesThatAreCopiedOutlastTheirRegion)
{
  SourceLocations copy;
  {
    Region region;
    SourceLocations *places = nullptr;
    {
      const PoolScope scope(region.pool());
      places = new (tdm::pool_allocate(sizeof *places)) SourceLocations;
      for (const LocationKey key : {LocationKey("name"), LocationKey("size"), LocationKey("map")})
        places->store(key, {"file", static_cast<int>(key.number()), 1});
    }
    copy = *places; // left to the region
  }
  ASSERT_EQ(copy.entries().size(), 3U);
  EXPECT_EQ(copy.find("map")->line, static_cast<int>(LocationKey("map").number()));
}

#endif

} // namespace
