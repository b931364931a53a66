// Shared by the tests of this floor: nodes for small graphs, intervals as sets of bits, printing,
// random numbers that can be repeated, and failures that are thrown by pointer.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <iostream>
#include <list>
#include <memory>
#include <ostream>
#include <random>
#include <string>
#include <vector>

#include "mapping/mapping.h"
#include "mapping/walk.h"

inline std::ostream &operator<<(std::ostream &out, const AddressValue &a)
{
  out << a.value << '.' << a.bits << '/' << a.mau;
  return a.bank == -1 ? out : out << '@' << a.bank;
}

inline std::ostream &operator<<(std::ostream &out, const Interval &i)
{
  out << '[' << i.low << ", " << i.high << ") " << i.pattern.width << ':' << std::hex
      << i.pattern.bits;
  if (i.priority != Interval::priority_one || i.exec_priority != Interval::priority_one)
    out << " p" << i.priority << " e" << i.exec_priority;
  return out << std::dec;
}

template <class T> std::string text_of(const T &value)
{
  std::ostringstream out;
  out << value;
  return out.str();
}

/// Whether the call throws a pointer to exactly this class.
template <class Failure, class Call> bool throws(Call call)
{
  try {
    call();
  } catch (Failure *failure) {
    delete failure;
    return true;
  }
  return false;
}

/// TDM_TEST_SEED repeats a run.
inline std::mt19937_64 seeded_random()
{
  const char *given = std::getenv("TDM_TEST_SEED");
  const uint64_t seed =
      given != nullptr ? std::strtoull(given, nullptr, 0) : std::random_device{}();
  std::cout << "TDM_TEST_SEED=" << seed << '\n';
  return std::mt19937_64(seed);
}

struct TestMemory final : TDMMapDestination {
  explicit TestMemory(int mau_) : mau(mau_) {}

  int get_mau_size() const override { return mau; }
  void get_full_name(std::string &out) const override { out = "memory"; }
  void add_incoming_mapping(TDMMapping *mapping) override { incoming.push_back(mapping); }
  const tdm::MappingList &incoming_mappings() const override { return incoming; }
  tdm::MapEnd end() { return {tdm::NodeKind::memory, mau, nullptr, this}; }

  int mau;
  tdm::MappingList incoming;
};

/// A bus, or a space.
struct TestNode final : TDMMapSource, TDMMapDestination {
  explicit TestNode(int mau_, int width_ = 0, tdm::NodeKind kind_ = tdm::NodeKind::bus)
      : mau(mau_), width(width_ != 0 ? width_ : mau_), kind(kind_)
  {
  }

  int get_mau_size() const override { return mau; }
  void get_full_name(std::string &out) const override { out = "node"; }
  void add_outgoing_mapping(TDMMapping *mapping) override { outgoing.push_back(mapping); }
  const tdm::MappingList &outgoing_mappings() const override { return outgoing; }
  void add_incoming_mapping(TDMMapping *mapping) override { incoming.push_back(mapping); }
  const tdm::MappingList &incoming_mappings() const override { return incoming; }
  tdm::MapEnd end() { return {kind, width, this, this}; }

  int mau;
  int width;
  tdm::NodeKind kind;
  tdm::MappingList outgoing;
  tdm::MappingList incoming;
};

/// Owns the mappings of one graph.
struct TestGraph {
  template <class Destination>
  TDMMapping &link(TestNode &source, Destination &destination, const tdm::MapEntry &entry)
  {
    mappings.push_back(TDMMapping::forward(entry, source, source.end()));
    source.outgoing.push_back(mappings.back().get());
    mappings.back()->set_destination(destination, destination.end());
    return *mappings.back();
  }

  std::vector<std::unique_ptr<TDMMapping>> mappings;
};

inline int64_t bit_address(const AddressValue &a)
{
  return a.value * a.mau + a.bits;
}

/// The position of a bit, in the unit.
inline AddressValue at_bit(int64_t bit, int mau, int bank = -1)
{
  return {bit / mau, bit % mau, mau, bank};
}

/// The bits of the line, up to 64 of them, that the interval holds.
inline uint64_t bits_of(const Interval &i)
{
  uint64_t result = 0;
  for (int64_t b = bit_address(i.low); b < bit_address(i.high); ++b)
    if ((i.pattern.bits >> (b % i.pattern.width) & 1) != 0) result |= uint64_t{1} << b;
  return result;
}
