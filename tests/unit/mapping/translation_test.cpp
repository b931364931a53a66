// One step over one mapping: against the literal transcription, and worked examples.
#include "literal_translation.h"
#include "support.h"

namespace {

using Overflow = Interval::PatternOverflowException;

/// The numbers of one mapping, as the graph and as the transcription take them.
struct Case {
  int src_mau, src_width, dest_mau, dest_width;
  tdm::MapEntry entry;
};

std::string text_of_case(const Case &c)
{
  const tdm::DataLines src = c.entry.src_dbits.value_or(tdm::DataLines{});
  const tdm::DataLines dest = c.entry.dest_dbits.value_or(tdm::DataLines{});
  std::ostringstream out;
  out << "source " << c.src_mau << '/' << c.src_width << " at " << c.entry.src_offset << " lines "
      << src.low << ".." << src.high << ", size " << c.entry.size << ", destination " << c.dest_mau
      << '/' << c.dest_width << " at " << c.entry.dest_offset << " lines " << dest.low << ".."
      << dest.high << ", banks " << c.entry.bank << ' ' << c.entry.dest_bank;
  return out.str();
}

struct Built {
  explicit Built(const Case &c)
      : source(c.src_mau, c.src_width), destination(c.dest_mau, c.dest_width),
        mapping(graph.link(source, destination, c.entry))
  {
  }

  TestGraph graph;
  TestNode source;
  TestNode destination;
  TDMMapping &mapping;
};

literal::Edge literal_edge(const Case &c, const TDMMapping &m)
{
  return {c.src_mau,  c.src_width,  m.src_dbits.low,  m.src_dbits.high,  m.src_offset,
          c.dest_mau, c.dest_width, m.dest_dbits.low, m.dest_dbits.high, m.dest_offset,
          m.size,     m.bank,       m.dest_bank,      m.priority,        m.exec_priority};
}

literal::Address literal_address(const AddressValue &a)
{
  return {a.value, a.bits, a.mau, a.bank};
}

AddressValue from_literal(const literal::Address &a)
{
  return {a.value, a.bits, int(a.mau), int(a.bank)};
}

std::string literal_text(const literal::Edge &edge, const Interval &i, bool forward)
{
  literal::Mask mask;
  for (int b = 0; b < i.pattern.width; ++b) mask.push_back((i.pattern.bits >> b & 1) != 0);
  try {
    const auto result = literal::cross(
        edge, {literal_address(i.low), literal_address(i.high), mask, i.priority, i.exec_priority},
        forward);
    if (!result) return "no route";
    Interval out;
    out.low = from_literal(result->low);
    out.high = from_literal(result->high);
    uint64_t bits = 0;
    for (size_t b = 0; b < result->mask.size(); ++b) bits |= uint64_t{result->mask[b]} << b;
    out.pattern = Interval::Pattern(int64_t(result->mask.size()), bits);
    out.priority = int32_t(result->priority);
    out.exec_priority = int32_t(result->exec_priority);
    return text_of(out);
  } catch (literal::Overflow) {
    return "overflow";
  }
}

template <class Value> std::string library_text(const TDMMapping &m, const Value &v, bool forward)
{
  Value out = v;
  try {
    if (!(forward ? tdm::map(m, v, out) : tdm::map_back(m, v, out))) return "no route";
  } catch (Overflow *failure) {
    delete failure;
    return "overflow";
  }
  return text_of(out);
}

int64_t pick_from(std::mt19937_64 &random, int64_t low, int64_t high)
{
  return std::uniform_int_distribution<int64_t>(low, high)(random);
}

TEST(Translation, AgreesWithTheLiteralSteps)
{
  std::mt19937_64 random = seeded_random();
  const auto pick = [&](int64_t low, int64_t high) { return pick_from(random, low, high); };
  const int maus[] = {1, 2, 4, 8, 8, 16, 24, 32};
  int routes = 0;
  for (int number = 0; number < 10000; ++number) {
    Case c{};
    c.src_mau = maus[pick(0, 7)];
    c.dest_mau = maus[pick(0, 7)];
    c.src_width = c.src_mau * int(pick(1, std::min(4, 64 / c.src_mau)));
    c.dest_width = c.dest_mau * int(pick(1, std::min(4, 64 / c.dest_mau)));
    const auto some_lines = [&](int width) -> std::optional<tdm::DataLines> {
      if (pick(0, 2) == 0) return std::nullopt;
      // Whole quarters of a width are what descriptions connect; any run must do.
      const int step = pick(0, 1) == 0 || width % 4 != 0 ? 1 : width / 4;
      const int low = int(pick(0, width / step - 1)) * step;
      return tdm::DataLines{low, low + int(pick(1, (width - low) / step)) * step - 1};
    };
    c.entry.src_dbits = some_lines(c.src_width);
    c.entry.dest_dbits = some_lines(c.dest_width);
    if (pick(0, 9) == 0) c.entry.src_dbits = tdm::DataLines{c.src_width - 1, c.src_width + 3};
    c.entry.src_offset = pick(0, 8);
    c.entry.dest_offset = pick(0, 8);
    c.entry.size = pick(0, 20);
    c.entry.bank = int(pick(0, 3) == 0 ? pick(0, 2) : -1);
    c.entry.dest_bank = int(pick(0, 3) == 0 ? pick(0, 2) : -1);
    c.entry.priority = int(pick(0, 3));
    c.entry.exec_priority = int(pick(-1, 3));
    const Built built(c);
    const literal::Edge edge = literal_edge(c, built.mapping);
    for (const bool forward : {true, false})
      for (int try_number = 0; try_number < 4; ++try_number) {
        const int mau = forward ? c.src_mau : c.dest_mau;
        const int width = forward ? c.src_width : c.dest_width;
        const int bank = pick(0, 1) == 0 ? int(pick(-1, 2))
                         : forward       ? c.entry.bank
                                         : c.entry.dest_bank;
        const AddressValue low = at_bit(pick(0, 20 * mau), mau, bank);
        const AddressValue high(low.value + pick(0, 12), low.bits, mau, bank);
        Interval span(low, high);
        if (pick(0, 1) == 0) {
          span.pattern = Interval::Pattern(pick(0, 1) == 0 ? width : pick(1, 32), random());
          span = Interval(low, high, span.pattern, int(pick(-9, 9)), int(pick(-9, 9)));
        }
        const std::string expected = literal_text(edge, span, forward);
        routes += expected != "no route" && expected != "overflow";
        ASSERT_EQ(library_text(built.mapping, span, forward), expected)
            << text_of_case(c) << (forward ? " forward from " : " backward from ") << text_of(span);
        const auto address = forward ? literal::forward(edge, literal_address(low), false)
                                     : literal::backward(edge, literal_address(low), false);
        ASSERT_EQ(library_text(built.mapping, low, forward),
                  address ? text_of(from_literal(*address)) : "no route")
            << text_of_case(c) << (forward ? " forward from " : " backward from ") << text_of(low);
      }
  }
  EXPECT_GT(routes, 10000);
}

TEST(Translation, WorkedExamples)
{
  struct Row {
    Case mapping;
    bool forward;
    Interval in;
    const char *expected;
  };
  tdm::MapEntry entry;
  entry.size = 0x100;
  const Case bytes_to_words{8, 8, 16, 16, entry};
  const Case words_to_bytes{16, 16, 8, 8, entry};
  Case two_to_one = words_to_bytes;
  two_to_one.entry.src_dbits = tdm::DataLines{0, 15};
  two_to_one.entry.dest_dbits = tdm::DataLines{0, 7};
  Case upper_lane = two_to_one;
  upper_lane.entry.src_dbits = tdm::DataLines{8, 15};
  Case bank3{8, 8, 8, 8, entry};
  Case weighty = bank3;
  weighty.entry.priority = 2;
  bank3.entry.bank = 3;
  Case to_bank5 = bank3;
  to_bank5.entry.dest_bank = 5;
  const auto at = [](int64_t value, int mau, int bank = -1) {
    const AddressValue a(value, 0, mau, bank);
    return Interval(a, a);
  };
  const auto span = [](int64_t low, int64_t high, int mau, const Interval::Pattern &pattern,
                       int bank = -1) {
    return Interval({low, 0, mau, bank}, {high, 0, mau, bank}, pattern);
  };
  const Row rows[] = {
      {bytes_to_words, true, at(0x11, 8), "[8.8/16, 8.8/16) 1:1"},
      {bytes_to_words, false, Interval({8, 8, 16}, {8, 8, 16}), "[17.0/8, 17.0/8) 1:1"},
      {bytes_to_words, true, span(0x10, 0x12, 8, {8, 0xFF}), "[8.0/16, 9.0/16) 16:ffff"},
      {words_to_bytes, true, at(3, 16), "[6.0/8, 6.0/8) 1:1"},
      {words_to_bytes, true, span(0, 2, 16, {16, 0xFFFF}), "[0.0/8, 4.0/8) 8:ff"},
      {two_to_one, true, span(0, 4, 16, {1, 1}), "[0.0/8, 8.0/8) 8:ff"},
      // Clipped to the mapping; a position at its end is outside, a span's end there isn't.
      {bytes_to_words, true, span(0xFE, 0x200, 8, {1, 1}), "[127.0/16, 128.0/16) 16:ffff"},
      {bytes_to_words, true, at(0x100, 8), "no route"},
      {bytes_to_words, false, at(0x80, 16), "no route"},
      // The upper byte lane of a 16-bit bus.
      {upper_lane, true, span(0, 4, 16, {16, 0xFF00}), "[0.0/8, 8.0/8) 8:ff"},
      {upper_lane, true, span(0, 4, 16, {16, 0x00FF}), "no route"},
      // Banks.
      {bank3, true, at(1, 8, 2), "no route"},
      {bank3, true, at(1, 8), "no route"},
      {bank3, true, at(1, 8, 3), "[1.0/8, 1.0/8) 1:1"},
      {to_bank5, true, span(1, 9, 8, {1, 1}, 3), "[1.0/8@5, 9.0/8@5) 8:ff"},
      {to_bank5, false, span(1, 9, 8, {1, 1}, 5), "[1.0/8@3, 9.0/8@3) 8:ff"},
      {bytes_to_words, true, span(0, 4, 8, {1, 1}, 7), "[0.0/16@7, 2.0/16@7) 16:ffff"},
      {bytes_to_words, false, span(0, 4, 16, {1, 1}, 7), "[0.0/8@7, 8.0/8@7) 8:ff"},
      // Priorities.
      {weighty, true, at(1, 8), "[1.0/8, 1.0/8) 1:1 p30000 e30000"},
      {weighty, false, span(1, 2, 8, {1, 1}), "[1.0/8, 2.0/8) 8:ff pffff0000 effff0000"},
  };
  for (const Row &row : rows) {
    const Built built(row.mapping);
    const std::string spans =
        text_of(built.mapping.source_interval()) + text_of(built.mapping.destination_interval());
    EXPECT_EQ(library_text(built.mapping, row.in, row.forward), row.expected)
        << text_of_case(row.mapping) << " from " << text_of(row.in);
    // A bank that was taken over doesn't stay.
    EXPECT_EQ(text_of(built.mapping.source_interval()) +
                  text_of(built.mapping.destination_interval()),
              spans);
    if (row.in.is_empty() && std::string(row.expected) != "no route") {
      const std::string address = library_text(built.mapping, row.in.low, row.forward);
      EXPECT_EQ(std::string(row.expected).substr(1, address.size()), address);
    }
  }
}

TEST(Translation, EndsOfTheNumberRange)
{
  tdm::MapEntry top;
  top.src_offset = INT64_MAX - 15;
  top.dest_offset = INT64_MIN;
  top.size = 15;
  const Built built({8, 8, 8, 8, top});
  EXPECT_EQ(library_text(built.mapping, AddressValue(INT64_MAX - 1, 0, 8), true),
            text_of(AddressValue(INT64_MIN + 14, 0, 8)));
  EXPECT_EQ(library_text(built.mapping, AddressValue(INT64_MIN, 7, 8), false),
            text_of(AddressValue(INT64_MAX - 15, 7, 8)));
  EXPECT_EQ(library_text(built.mapping, AddressValue(INT64_MAX, 0, 8), true), "no route");

  // A size that wraps, or is below 0, leaves an empty span.
  for (const int64_t size : {int64_t{16}, INT64_MAX, int64_t{-1}, INT64_MIN}) {
    top.size = size;
    const Built empty({8, 8, 8, 8, top});
    EXPECT_TRUE(empty.mapping.source_interval().is_empty() || size < 0);
    EXPECT_EQ(library_text(empty.mapping, AddressValue(INT64_MAX - 15, 0, 8), true), "no route");
  }

  // Lines that don't exist carry nothing, and no run of lines is a crash.
  using Lines = tdm::DataLines;
  for (const Lines lines : {Lines{8, 15}, Lines{7, 3}, Lines{-9, -2}, Lines{2000, 2010},
                            Lines{INT32_MAX, INT32_MAX}, Lines{INT32_MIN, INT32_MIN}})
    for (const bool at_source : {true, false}) {
      tdm::MapEntry odd;
      odd.size = 8;
      (at_source ? odd.src_dbits : odd.dest_dbits) = lines;
      const Built missing({8, 8, 8, 8, odd});
      const Interval span({0, 0, 8}, {8, 0, 8});
      for (const bool forward : {true, false}) {
        const std::string text = library_text(missing.mapping, span, forward);
        EXPECT_TRUE(text == "no route" || text == "overflow") << text;
      }
      (void)library_text(missing.mapping, span.low, true);
      (void)library_text(missing.mapping, span.low, false);
    }
}

} // namespace
