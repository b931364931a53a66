// Mappings as they are built, and walks over graphs of them.
#include <pthread.h>

#include <algorithm>
#include <sstream>

#include "mapping/visited_set.h"
#include "support.h"

namespace {

using Mau = AddressValue::MauException;
using Overflow = Interval::PatternOverflowException;
using tdm::MapEntry;
using tdm::NodeKind;

MapEntry entry_of(int64_t src_offset, int64_t dest_offset, int64_t size, bool reserved = false)
{
  MapEntry entry;
  entry.src_offset = src_offset;
  entry.dest_offset = dest_offset;
  entry.size = size;
  entry.reserved = reserved;
  return entry;
}

Interval span(int64_t low, int64_t high)
{
  return {{low, 0, 8}, {high, 0, 8}};
}

TEST(Mapping, ForwardAndReversedFormsOfOneEntry)
{
  TestNode bus(8, 32);
  TestMemory memory(16);
  MapEntry entry = entry_of(4, 8, 0x10, true);
  entry.dest_dbits = tdm::DataLines{8, 15};
  entry.bank = 1;
  entry.dest_bank = 2;
  entry.priority = 3;
  entry.exec_priority = 4;

  TestGraph graph;
  const TDMMapping &forward = graph.link(bus, memory, entry);
  EXPECT_EQ(text_of(forward.source_interval()), "[4.0/8@1, 20.0/8@1) 8:ff");
  EXPECT_EQ(text_of(forward.destination_interval()), "[8.0/16@2, 16.0/16@2) 16:ff00");
  EXPECT_EQ(forward.priority, 0x30000);
  EXPECT_EQ(forward.exec_priority, 0x40000);
  EXPECT_EQ(forward.source_kind(), NodeKind::bus);
  EXPECT_EQ(forward.source_as_destination(), static_cast<TDMMapDestination *>(&bus));
  EXPECT_EQ(forward.destination_as_source(), nullptr);
  EXPECT_EQ(memory.incoming.size(), 1u);

  entry.exec_priority = -1;
  const auto reversed = TDMMapping::reversed(entry, memory, memory.end());
  EXPECT_FALSE(reversed->is_complete());
  reversed->set_source(bus, bus.end());
  EXPECT_EQ(text_of(reversed->source_interval()), "[8.0/8@1, 40.0/8@1) 32:ff00");
  EXPECT_EQ(text_of(reversed->destination_interval()), "[4.0/16@2, 20.0/16@2) 16:ffff");
  EXPECT_EQ(reversed->size, 0x20);
  EXPECT_EQ(reversed->priority, -0x30000);
  EXPECT_EQ(reversed->exec_priority, -0x30000);
  ASSERT_EQ(bus.outgoing.size(), 2U);
  EXPECT_EQ(bus.outgoing[1], reversed.get());
}

std::string shown(const TDMMapping &mapping)
{
  std::ostringstream text;
  text << text_of(mapping.source_interval()) << " -> " << text_of(mapping.destination_interval())
       << " of " << mapping.size << " at " << mapping.priority << ' ' << mapping.exec_priority
       << (mapping.reserved ? " reserved" : "") << " line "
       << (mapping.location("map") != nullptr ? mapping.location("map")->line : 0);
  return text.str();
}

// Whichever form is made first, its opposite is what the entry gives in the other form.
TEST(Mapping, OppositeOfOneEntry)
{
  MapEntry plain = entry_of(0x100, 0x20, 0x40);
  plain.exec_priority = 5;
  MapEntry banked = entry_of(3, 8, 6, true);
  banked.src_dbits = tdm::DataLines{16, 31};
  banked.dest_dbits = tdm::DataLines{0, 15};
  banked.bank = 2;
  banked.dest_bank = 7;
  banked.priority = INT32_MIN;
  for (const MapEntry &entry : {plain, banked}) {
    TestNode own(8, 32);
    TestNode other(16, 32);
    const auto forward = TDMMapping::forward(entry, own, own.end());
    const auto reversed = TDMMapping::reversed(entry, own, own.end());
    forward->sourceLocations.store("map", {"", 12, 1});
    reversed->sourceLocations.store("map", {"", 12, 1});
    const auto back = forward->opposite();
    const auto forth = reversed->opposite();
    EXPECT_EQ(back->destination(), static_cast<TDMMapDestination *>(&own));
    for (const auto &mapping : {forward.get(), forth.get()})
      mapping->set_destination(other, other.end());
    for (const auto &mapping : {reversed.get(), back.get()})
      mapping->set_source(other, other.end());
    EXPECT_EQ(shown(*forth), shown(*forward));
    EXPECT_EQ(shown(*back), shown(*reversed));
    EXPECT_EQ(forth->source_as_destination(), forward->source_as_destination());
    EXPECT_EQ(back->destination_as_source(), reversed->destination_as_source());
  }
}

TEST(Mapping, SizesAreRescaledToTheSource)
{
  struct Row {
    int destination_mau, source_mau;
    int64_t size, expected;
  };
  const Row rows[] = {
      {8, 16, 0x1000, 0x800}, {8, 16, 3, 1}, {16, 8, 3, 6},
      {24, 16, 3, 4},         {8, 8, 7, 7},  {8, 16, INT64_MAX, INT64_MAX / 2},
  };
  for (const Row &row : rows) {
    TestNode bus(row.source_mau);
    TestMemory memory(row.destination_mau);
    const auto mapping = TDMMapping::reversed(entry_of(0, 0, row.size), memory, memory.end());
    mapping->set_source(bus, bus.end());
    EXPECT_EQ(mapping->size, row.expected);
  }
}

TEST(Mapping, AnEndIsSetOnce)
{
  const auto failure_of = [](auto call) {
    try {
      call();
    } catch (TDMUnexpectedErrorException *failure) {
      const std::string text = failure->text();
      delete failure;
      return text;
    }
    return std::string();
  };
  TestNode bus(8);
  TestMemory memory(8);
  const auto forward = TDMMapping::forward(entry_of(0, 0, 1), bus, bus.end());
  forward->sourceLocations.store("map", {"a.tdm", 3, 5});
  forward->set_destination(memory, memory.end());
  EXPECT_EQ(
      failure_of([&] { forward->set_destination(memory, memory.end()); }),
      "[\"a.tdm\" 3/5] TDM unexpected error: trying to set the destination of a mapping twice");
  EXPECT_EQ(failure_of([&] { forward->set_source(bus, bus.end()); }),
            "[\"a.tdm\" 3/5] TDM unexpected error: trying to set the source of a mapping twice");
}

TEST(Mapping, EndsThatFitNoTranslationAreRefused)
{
  TestMemory memory(8);
  const auto complete = [&](TestNode &source, TestMemory &destination, const MapEntry &entry) {
    TDMMapping::forward(entry, source, source.end())
        ->set_destination(destination, destination.end());
  };
  TestNode wide(8, 128);
  EXPECT_TRUE(throws<Overflow>([&] { complete(wide, memory, entry_of(0, 0, 1)); }));
  MapEntry many_lines = entry_of(0, 0, 1);
  many_lines.src_dbits = tdm::DataLines{INT32_MIN, INT32_MAX};
  TestNode bus(8);
  EXPECT_TRUE(throws<Overflow>([&] { complete(bus, memory, many_lines); }));
  TestMemory wide_memory(65536 + 8);
  EXPECT_TRUE(throws<Overflow>([&] { complete(bus, wide_memory, entry_of(0, 0, 1)); }));
  for (const int mau : {0, -8}) {
    TestNode odd(mau, 8);
    EXPECT_TRUE(throws<Mau>([&] { complete(odd, memory, entry_of(0, 0, 1)); }));
    const auto reversed = TDMMapping::reversed(entry_of(0, 0, INT64_MIN), memory, memory.end());
    EXPECT_TRUE(throws<Mau>([&] { reversed->set_source(odd, odd.end()); }));
  }
}

/// space -> bus A -> bus B -> two memories; the space also reaches the first one over bus C.
struct Board {
  Board()
  {
    graph.link(space, a, entry_of(0, 0, 0x1000));
    graph.link(space, c, entry_of(0x800, 0, 0x100, true));
    graph.link(a, b, entry_of(0, 0x100, 0x1000));
    graph.link(b, a, entry_of(0x100, 0, 0x1000));
    MapEntry weighty = entry_of(0x100, 0, 0x400);
    weighty.priority = 2;
    graph.link(b, ram, weighty);
    graph.link(b, rom, entry_of(0x500, 0, 0xA00, true));
    graph.link(c, ram, entry_of(0, 0x10, 0x100));
  }

  std::string name(const void *object) const
  {
    const std::pair<const void *, const char *> names[] = {
        {static_cast<const TDMMapDestination *>(&ram), "ram"},
        {static_cast<const TDMMapDestination *>(&rom), "rom"},
        {static_cast<const TDMMapSource *>(&space), "space"},
        {static_cast<const TDMMapSource *>(&a), "a"},
        {static_cast<const TDMMapSource *>(&b), "b"},
        {static_cast<const TDMMapSource *>(&c), "c"},
        {static_cast<const TDMMapDestination *>(&a), "a"},
        {static_cast<const TDMMapDestination *>(&c), "c"},
    };
    for (const auto &[known, text] : names)
      if (known == object) return text;
    return "?";
  }

  template <class Route> std::string text(const std::vector<Route> &routes) const
  {
    std::ostringstream out;
    for (const Route &route : routes)
      out << name(route.object) << ' ' << route.value << (route.reserved ? " reserved; " : "; ");
    return out.str();
  }

  TestNode space{8, 8, NodeKind::space};
  TestNode a{8}, b{8}, c{8};
  TestMemory ram{8}, rom{8};
  TestGraph graph;
};

TEST(Walk, RoutesComeDepthFirstInTheOrderOfTheMappings)
{
  const Board board;
  const TDMMapSource &from = board.space;
  EXPECT_EQ(board.text(tdm::map_forward(from, AddressValue(0x810, 0, 8))),
            "a 2064.0/8; c 16.0/8 reserved; ");
  EXPECT_EQ(board.text(tdm::map_to_memory(from, AddressValue(0x810, 0, 8))),
            "rom 1040.0/8 reserved; ram 32.0/8 reserved; ");
  EXPECT_EQ(board.text(tdm::map_to_memory(from, span(0, 0x2000))),
            "ram [0.0/8, 1024.0/8) 8:ff p30000 e30000; "
            "rom [0.0/8, 2560.0/8) 8:ff reserved; "
            "ram [16.0/8, 272.0/8) 8:ff reserved; ");
  EXPECT_EQ(board.text(tdm::map_to_memory(from, AddressValue(0x3FFF, 0, 8))), "");
}

TEST(Walk, BackwardReportsWhatIsOnTheWay)
{
  const Board board;
  const AddressValue at(0x20, 0, 8);
  EXPECT_EQ(board.text(tdm::map_backward(board.ram, at)), "b 288.0/8; c 16.0/8; ");
  // The link from b back to a is a way into a as well: it ends at b, entered with the same value.
  EXPECT_EQ(board.text(tdm::map_back_to(NodeKind::bus, board.ram, at)),
            "b 288.0/8; a 32.0/8; c 16.0/8; ");
  EXPECT_EQ(board.text(tdm::map_back_to(NodeKind::space, board.ram, at)),
            "space 32.0/8; space 2064.0/8 reserved; ");
  EXPECT_EQ(board.text(tdm::map_back_to(NodeKind::space, board.rom, span(0, 8))),
            "space [1024.0/8, 1032.0/8) 8:ff reserved; ");
  // The mapping that arrives at the target is left out of `reserved`.
  EXPECT_EQ(board.text(tdm::map_back_to_object(board.space, board.ram, at)),
            "space 32.0/8; space 2064.0/8; ");
  EXPECT_EQ(board.text(tdm::map_back_to_object(board.a, board.rom, at)), "a 1056.0/8 reserved; ");
}

TEST(Walk, AnAddressInAnotherUnitIsRefusedEvenWhereNoMappingIsNear)
{
  const Board board;
  const TestNode lonely(8);
  const AddressValue far_away(1 << 20, 0, 16);
  EXPECT_TRUE(throws<Mau>([&] { (void)tdm::map_to_memory(board.space, far_away); }));
  EXPECT_TRUE(throws<Mau>([&] { (void)tdm::map_backward(board.ram, far_away); }));
  EXPECT_TRUE(
      throws<Mau>([&] { (void)tdm::map_forward(board.space, Interval(far_away, far_away)); }));
  EXPECT_TRUE(tdm::map_forward(lonely, far_away).empty());
}

TEST(Walk, AMappingThatIsNotCompleteCarriesNothing)
{
  TestNode bus(8);
  const auto open = TDMMapping::forward(entry_of(0, 0, 8), bus, bus.end());
  bus.outgoing.push_back(open.get());
  EXPECT_TRUE(tdm::map_to_memory(bus, AddressValue(0, 0, 8)).empty());
  EXPECT_TRUE(tdm::map_to_memory(bus, span(0, 8)).empty());
}

TEST(Walk, CirclesEnd)
{
  TestNode a(8), b(8);
  TestMemory memory(8);
  TestGraph graph;
  graph.link(a, b, entry_of(0, 0, 0x100));
  graph.link(b, a, entry_of(0, 0, 0x100));
  graph.link(b, memory, entry_of(0, 0, 0x100));
  EXPECT_EQ(tdm::map_to_memory(a, span(0, 0x200)).size(), 1u);
  EXPECT_EQ(tdm::map_to_memory(a, AddressValue(5, 0, 8)).size(), 1u);
}

TEST(Walk, ADiamondIsWalkedOnce)
{
  TestNode space(8, 8, NodeKind::space), left(8), right(8), joint(8);
  TestMemory memory(8);
  TestGraph graph;
  for (TestNode *side : {&left, &right}) {
    graph.link(space, *side, entry_of(0, 0, 0x10));
    graph.link(*side, joint, entry_of(0, 0, 0x10));
  }
  graph.link(joint, memory, entry_of(0, 0, 0x10));
  EXPECT_EQ(tdm::map_to_memory(space, span(2, 4)).size(), 1u);
  EXPECT_EQ(tdm::map_back_to(NodeKind::bus, memory, span(2, 4)).size(), 3u);
  // Each space on the way back is reported; only what is also a destination can be visited.
  EXPECT_EQ(tdm::map_back_to(NodeKind::space, memory, span(2, 4)).size(), 2u);
}

/// The walks as one would tell them: each node enters the next by a call. A route is told as the
/// number of its last mapping, the value there, and whether anything on it is reserved.
template <class Value> class ToldWalk {
public:
  explicit ToldWalk(const TestGraph &graph) : graph_(graph) {}

  void forward(const TDMMapSource &node, const Value &value, bool reserved)
  {
    go(node.outgoing_mappings(), static_cast<const void *>(&node), value, reserved, true);
  }
  void backward(const TDMMapDestination &node, const Value &value, bool reserved)
  {
    go(node.incoming_mappings(), static_cast<const void *>(&node), value, reserved, false);
  }
  void tell(const TDMMapping *last, const Value &value, bool reserved)
  {
    size_t number = 0;
    while (graph_.mappings[number].get() != last) ++number;
    text << number << ' ' << value << (reserved ? " reserved\n" : "\n");
  }

  std::ostringstream text;

private:
  void go(const tdm::MappingList &list, const void *node, const Value &value, bool reserved,
          bool onward)
  {
    std::vector<std::pair<const TDMMapping *, Value>> hops;
    for (const TDMMapping *mapping : list) {
      Value out;
      if (onward ? tdm::map(*mapping, value, out) : tdm::map_back(*mapping, value, out))
        hops.push_back({mapping, out});
    }
    if (hops.empty()) return;
    entered_.push_back({node, value});
    for (const auto &[mapping, at] : hops) {
      const bool so_far = reserved || mapping->reserved;
      const void *next = onward ? static_cast<const void *>(mapping->destination_as_source())
                                : static_cast<const void *>(mapping->source_as_destination());
      if (next != nullptr && was_entered(next, at)) continue;
      if (onward ? next == nullptr : mapping->source_kind() == NodeKind::bus)
        tell(mapping, at, so_far);
      if (next == nullptr) continue;
      if (onward)
        forward(*mapping->destination_as_source(), at, so_far);
      else
        backward(*mapping->source_as_destination(), at, so_far);
    }
  }
  bool was_entered(const void *node, const Value &value) const
  {
    return std::any_of(entered_.begin(), entered_.end(), [&](const auto &entry) {
      return entry.first == node && tdm::same_value(entry.second, value);
    });
  }

  const TestGraph &graph_;
  std::vector<std::pair<const void *, Value>> entered_;
};

template <class Value> std::string ends_of_routes(const TestGraph &graph, const auto &hops)
{
  ToldWalk<Value> told(graph);
  for (size_t i = 0; i < hops.size(); ++i)
    if (i + 1 == hops.size() || hops[i + 1].route != hops[i].route)
      told.tell(hops[i].mapping, hops[i].value, hops[i].reserved);
  return told.text.str();
}

/// Random buses that reach each other and some memories, in circles too, some of them by shifts
/// and some over half of the lines.
TEST(Walk, RandomGraphsAreWalkedAsTold)
{
  std::mt19937_64 random = seeded_random();
  for (int round = 0; round < 300; ++round) {
    std::list<TestNode> nodes;
    std::list<TestMemory> memories;
    for (int i = 0; i < 5; ++i) nodes.emplace_back(8, 16);
    for (int i = 0; i < 3; ++i) memories.emplace_back(8);
    const auto any = [&](auto &list) -> auto &
    {
      return *std::next(list.begin(), std::ptrdiff_t(random() % list.size()));
    };
    TestGraph graph;
    for (uint64_t i = 0, count = 8 + random() % 24; i < count; ++i) {
      const int64_t offset = int64_t(random() % 4) * 4;
      MapEntry entry = entry_of(offset, random() % 4 != 0 ? offset : 0, 16 + int64_t(random() % 32),
                                random() % 8 == 0);
      if (random() % 8 == 0) entry.src_dbits = entry.dest_dbits = tdm::DataLines{0, 7};
      if (random() % 3 == 0)
        graph.link(any(nodes), any(memories), entry);
      else
        graph.link(any(nodes), any(nodes), entry);
    }
    const int64_t low = int64_t(random() % 32);
    const auto check = [&](const auto &value) {
      using Value = std::decay_t<decltype(value)>;
      ToldWalk<Value> forward(graph), backward(graph);
      forward.forward(nodes.front(), value, false);
      EXPECT_EQ(ends_of_routes<Value>(graph, tdm::routes_to_memory(nodes.front(), value)),
                forward.text.str());
      backward.backward(memories.front(), value, false);
      EXPECT_EQ(
          ends_of_routes<Value>(graph, tdm::routes_back_to(NodeKind::bus, memories.front(), value)),
          backward.text.str());
      EXPECT_EQ(tdm::map_to_memory(nodes.front(), value).size() +
                    tdm::map_back_to(NodeKind::bus, memories.front(), value).size(),
                size_t(std::count(forward.text.view().begin(), forward.text.view().end(), '\n') +
                       std::count(backward.text.view().begin(), backward.text.view().end(), '\n')));
    };
    check(AddressValue(low, 0, 8));
    check(span(low, low + 1 + int64_t(random() % 16)));
  }
}

/// A list of mappings of one node in the order of their number.
using Listed = MapEntry (*)(int number, std::mt19937_64 &random);

MapEntry scattered(int number, std::mt19937_64 &random)
{
  MapEntry entry = entry_of(int64_t(random() % 1000), int64_t(random() % 1000),
                            int64_t(random() % (number % 50 == 0 ? 900 : 8)));
  entry.bank = number % 7 == 0 ? 0 : -1;
  return entry;
}

/// Each lies in the one before: most that begin in front of a value have ended in front of it too.
MapEntry nested(int number, std::mt19937_64 &random)
{
  MapEntry entry = entry_of(number, number, 2 * (500 - number) + int64_t(random() % 3));
  entry.bank = number % 3 == 0 ? 0 : -1;
  return entry;
}

void check_long_list(Listed listed, std::mt19937_64 &random)
{
  TestNode bus(8);
  TestMemory memory(8);
  TestGraph graph;
  for (int i = 0; i < 500; ++i) graph.link(bus, memory, listed(i, random));
  const auto check = [&](const Interval &value) {
    std::string expected_forward, expected_backward;
    Interval out;
    for (const auto &mapping : graph.mappings) {
      if (tdm::map(*mapping, value, out)) expected_forward += text_of(out) + "\n";
      if (tdm::map_back(*mapping, value, out)) expected_backward += text_of(out) + "\n";
    }
    std::string forward, backward;
    for (const auto &route : tdm::map_forward(bus, value)) forward += text_of(route.value) + "\n";
    for (const auto &route : tdm::map_backward(memory, value))
      backward += text_of(route.value) + "\n";
    ASSERT_EQ(forward, expected_forward) << value;
    ASSERT_EQ(backward, expected_backward) << value;
  };
  for (int i = 0; i < 300; ++i) {
    const int64_t low = int64_t(random() % 1100);
    const int bank = int(random() % 3) - 1;
    check(Interval({low, int64_t(random() % 8), 8, bank},
                   {low + int64_t(random() % 5), 7, 8, random() % 9 == 0 ? 1 : bank}));
    check(Interval({low, 3, 8, bank}, {low, 3, 8, bank}));
    // A list that has grown is indexed anew.
    if (i == 100) graph.link(bus, memory, entry_of(0, 0, 1000));
  }
}

TEST(Walk, LongListsAnswerLikeShortOnes)
{
  std::mt19937_64 random = seeded_random();
  check_long_list(scattered, random);
  check_long_list(nested, random);
}

/// A chain of 100,000 buses, each linked both ways.
void *walk_a_long_chain(void *)
{
  constexpr int64_t length = 100000;
  TestNode space(8, 8, NodeKind::space);
  TestMemory memory(8);
  TestGraph graph;
  std::list<TestNode> buses;
  TestNode *last = &space;
  for (int64_t i = 0; i < length; ++i) {
    TestNode &next = buses.emplace_back(8);
    graph.link(*last, next, entry_of(0, 1, length * 2));
    if (last != &space) graph.link(next, *last, entry_of(1, 0, length * 2));
    last = &next;
  }
  graph.link(*last, memory, entry_of(0, 0, length * 2));

  const auto forward = tdm::map_to_memory(space, span(0, 8));
  EXPECT_EQ(forward.size(), 1u);
  EXPECT_EQ(text_of(forward.at(0).value), "[100000.0/8, 100008.0/8) 8:ff");
  EXPECT_EQ(tdm::map_back_to(NodeKind::bus, memory, forward[0].value).size(), size_t{length});
  EXPECT_EQ(tdm::map_back_to_object(space, memory, AddressValue(length, 0, 8)).size(), 1u);
  return nullptr;
}

TEST(Walk, LongChainsNeedNoStack)
{
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  pthread_attr_setstacksize(&attributes, 256 * 1024);
  pthread_t thread;
  ASSERT_EQ(pthread_create(&thread, &attributes, walk_a_long_chain, nullptr), 0);
  pthread_join(thread, nullptr);
  pthread_attr_destroy(&attributes);
}

} // namespace
