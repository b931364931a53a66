// Address values, masks, intervals and interval sets: by enumeration against single bits, and the
// ends of the number ranges by hand.
#include <algorithm>
#include <array>

#include "mapping/interval_set.h"
#include "support.h"

namespace {

using Pattern = Interval::Pattern;
using Mau = AddressValue::MauException;
using Overflow = Interval::PatternOverflowException;

bool bit(const Pattern &p, int64_t b)
{
  return (p.bits >> ((b % p.width + p.width) % p.width) & 1) != 0;
}

std::vector<Pattern> all_masks(int max_width)
{
  std::vector<Pattern> masks;
  for (int width = 1; width <= max_width; ++width)
    for (uint64_t bits = 0; bits < uint64_t{1} << width; ++bits) masks.emplace_back(width, bits);
  return masks;
}

TEST(AddressValue, AddsSubtractsAndConverts)
{
  struct Row {
    AddressValue result, expected;
  };
  const auto minus = [](AddressValue a, const AddressValue &b) { return a -= b; };
  const int64_t max = INT64_MAX;
  const int64_t min = INT64_MIN;
  const Row rows[] = {
      {AddressValue(5, 7, 8) + AddressValue(0, 1, 8), {6, 0, 8}},
      {AddressValue(5, 7, 8, 2) + AddressValue(1, 23, 8, 3), {9, 6, 8, 2}},
      {minus({5, 0, 8}, {0, 1, 8}), {4, 7, 8}},
      {minus({5, 3, 8, 4}, {2, 1, 8}), {3, 2, 8, 4}},
      {AddressValue(3, 0, 16).in_mau(8), {6, 0, 8}},
      {AddressValue(3, 0, 8, 7).in_mau(16), {1, 8, 16, 7}},
      {AddressValue(3, 99, 8).in_mau(8), {3, 99, 8}},
      // Below 0 towards 0, with the rest in the bits.
      {AddressValue(-1, 0, 8).in_mau(16), {0, -8, 16}},
      // The bit address has no room in 64 bits, the result has.
      {AddressValue(max, 0, 8).in_mau(16), {max / 2, 8, 16}},
      {AddressValue(min, 0, 24).in_mau(32), {min / 4 * 3, 0, 32}},
      {AddressValue(max, 0, 3).in_mau(2), {int64_t(uint64_t(max / 2) * 3 + 1), 1, 2}},
      // Beyond the range numbers wrap.
      {AddressValue(max, 7, 8) + AddressValue(0, 1, 8), {min, 0, 8}},
      {minus({min, 0, 8}, {0, 1, 8}), {max, 7, 8}},
      {AddressValue(max, 0, 16).in_mau(8), {-2, 0, 8}},
  };
  for (const Row &row : rows) EXPECT_EQ(row.result, row.expected);
}

TEST(AddressValue, OrderLooksAtBankThenValueThenBits)
{
  const AddressValue ascending[] = {{9, 0, 8, -1}, {9, 1, 8, -1}, {10, 0, 8, -1},
                                    {-4, 7, 8, 0}, {2, 3, 8, 0},  {1, 0, 8, 1}};
  for (size_t i = 0; i < std::size(ascending); ++i)
    for (size_t k = 0; k < std::size(ascending); ++k) {
      EXPECT_EQ(ascending[i] < ascending[k], i < k);
      EXPECT_EQ(ascending[i] >= ascending[k], i >= k);
      EXPECT_EQ(ascending[i] == ascending[k], i == k);
    }
}

TEST(AddressValue, UnitsThatDontFitAreRefused)
{
  const AddressValue bytes(1, 0, 8);
  const AddressValue words(1, 0, 16);
  AddressValue changed = bytes;
  EXPECT_FALSE(bytes == words);
  EXPECT_TRUE(throws<Mau>([&] { (void)(bytes < words); }));
  EXPECT_TRUE(throws<Mau>([&] { (void)(bytes + words); }));
  EXPECT_TRUE(throws<Mau>([&] { changed -= words; }));
  EXPECT_TRUE(throws<Mau>([&] { (void)Interval(bytes, words); }));
  EXPECT_TRUE(throws<Mau>([&] { (void)Interval(bytes, words, Pattern(1, 1)); }));
  // No unit has 0 bits, or fewer.
  for (const int mau : {0, -1, -8, 65536}) {
    EXPECT_TRUE(throws<Mau>([&] { (void)AddressValue(INT64_MIN, 1, 8).in_mau(int16_t(mau)); }));
    EXPECT_TRUE(throws<Mau>([&] { (void)(AddressValue(1, 1, mau) + AddressValue(1, 1, mau)); }));
  }
}

TEST(AddressValue, BoundaryFormWidensWithSignAndIsCutTo16Bits)
{
  const tdm_addressvalue out = AddressValue(-5, -3, 8, 2).to_record();
  EXPECT_EQ(out.value, -5);
  EXPECT_EQ(out.bits, -3);
  EXPECT_EQ(out.mau, 8);
  EXPECT_EQ(out.bank, 2);
  EXPECT_EQ(AddressValue(tdm_addressvalue{7, 0x10001, 0x10008, -1}), AddressValue(7, 1, 8));
}

TEST(Pattern, EveryOperationOnEveryMaskOfUpToSixBits)
{
  const std::vector<Pattern> masks = all_masks(6);
  for (const Pattern &p : masks) {
    for (int from = -8; from <= 8; ++from)
      for (int to = from; to <= from + 14; ++to) {
        const Pattern s = p.slice(from, to);
        ASSERT_EQ(s.width, to - from + 1);
        for (int i = 0; i < s.width; ++i) ASSERT_EQ(bit(s, i), bit(p, from + i));
      }
    for (int unit = 1; unit <= 6; ++unit) {
      Pattern r = p;
      r.reduce(unit);
      // The shortest period among the multiples of the unit, unless one that divides nothing is
      // met first; no mask of six bits has such a gap.
      int shortest = p.width;
      for (int period = unit; period <= p.width / 2; period += unit)
        if (p.width % unit == 0 && p.width % period == 0 && shortest == p.width &&
            p.slice(period, p.width + period - 1).bits == p.bits)
          shortest = period;
      ASSERT_EQ(r.width, shortest) << p.width << ':' << p.bits << " by " << unit;
      for (int b = 0; b < p.width; ++b) ASSERT_EQ(bit(r, b), bit(p, b));
    }
    for (const Pattern &q : masks) {
      const Pattern both = p & q;
      const Pattern either = p | q;
      ASSERT_EQ(both.width, std::lcm(p.width, q.width));
      ASSERT_EQ(either.width, both.width);
      bool within = true;
      for (int b = 0; b < both.width; ++b) {
        ASSERT_EQ(bit(both, b), bit(p, b) && bit(q, b));
        ASSERT_EQ(bit(either, b), bit(p, b) || bit(q, b));
        within = within && (bit(p, b) || !bit(q, b));
      }
      if (p.width == q.width) {
        ASSERT_EQ(p == q, p.bits == q.bits);
        ASSERT_EQ(p.contains(q), within);
      }
    }
  }
}

TEST(Pattern, WideMasks)
{
  EXPECT_EQ((Pattern(12, 1) & Pattern(16, 1)).width, 48);
  EXPECT_TRUE(throws<Overflow>([] { (void)(Pattern(24, 1) & Pattern(40, 1)); }));
  EXPECT_TRUE(throws<Overflow>([] { (void)(Pattern(24, 1) | Pattern(40, 1)); }));
  EXPECT_TRUE(throws<Overflow>([] { (void)Pattern(8, 1).slice(0, 64); }));
  EXPECT_TRUE(throws<Overflow>([] { (void)Pattern(8, 1).slice(3, 2); }));
  EXPECT_TRUE(throws<Overflow>([] { (void)Pattern(8, 1).slice(INT64_MIN, INT64_MAX); }));
  EXPECT_EQ(Pattern(64, 0x8000000000000001).slice(-1, 62).bits, 3u);
  EXPECT_EQ(Pattern(3, 0b101).slice(0, 63).bits, 0xDB6DB6DB6DB6DB6Du);

  struct Row {
    Pattern mask;
    int unit;
    Pattern reduced;
  };
  const Row rows[] = {
      {{32, 0xFF00FF00}, 16, {16, 0xFF00}},
      {{32, 0xFF00FF00}, 8, {16, 0xFF00}},
      {{32, 0xFFFFFFFF}, 8, {8, 0xFF}},
      // 24 doesn't divide 64, and so the period of 32 isn't found.
      {{64, 0x0000FF0F0000FF0F}, 8, {64, 0x0000FF0F0000FF0F}},
      {{64, 0x0000FF0F0000FF0F}, 16, {32, 0xFF0F}},
      {{64, ~uint64_t{0}}, 64, {64, ~uint64_t{0}}},
      {{16, 0xFFFF}, 0, {16, 0xFFFF}},
  };
  for (const Row &row : rows) {
    Pattern p = row.mask;
    p.reduce(row.unit);
    EXPECT_EQ(p.width, row.reduced.width);
    EXPECT_EQ(p.bits, row.reduced.bits);
  }

  EXPECT_TRUE(Pattern(32, 0xFF00FF00) == Pattern(16, 0xFF00));
  EXPECT_FALSE(Pattern(32, 0xFF0000FF) == Pattern(16, 0x00FF));
  EXPECT_TRUE(Pattern(16, 0xFF00).contains(Pattern(16, 0xF000)));
  EXPECT_FALSE(Pattern(16, 0xFF00).contains(Pattern(8, 0xFF)));
  EXPECT_TRUE(Pattern(8, 0xFF).contains(Pattern(16, 0xFF00)));
  EXPECT_EQ(Pattern(8, 0xABCD).bits, 0xCDu);
}

TEST(Pattern, OverflowSaysWhatToDo)
{
  const auto text = [](const tdm_interval &record) {
    try {
      (void)Interval(record);
    } catch (Overflow *failure) {
      const std::string result = failure->text();
      delete failure;
      return result;
    }
    return std::string();
  };
  const tdm_addressvalue zero{0, 0, 8, -1};
  EXPECT_EQ(text({zero, zero, 65, 1, 0, 0}),
            "Maximum mapping width (64) exceeded. Use the mau size as bus width unless use of "
            "source_dbits and/or dest_dbits is necessary.");
  EXPECT_EQ(text({zero, zero, 0, 1, 0, 0}), "width 0 of an interval's pattern is below 1");
  EXPECT_EQ(text({zero, zero, 64, 1, 0, 0}), "");
}

TEST(Interval, ConstructorsEstablishTheInvariants)
{
  const Interval nothing;
  EXPECT_EQ(text_of(nothing), "[0.0/1, 0.0/1) 1:0");
  const Interval backwards({10, 0, 8}, {4, 0, 8});
  EXPECT_EQ(backwards.high, AddressValue(10, 0, 8));
  EXPECT_TRUE(backwards.is_empty());
  EXPECT_EQ(text_of(Interval({0, 0, 16}, {2, 0, 16}, Pattern(32, 0xFF00FF00), 5, 6)),
            "[0.0/16, 2.0/16) 16:ff00 p5 e6");
  // What comes over the boundary is not reduced.
  const tdm_interval record{{3, 0, 8, 1}, {2, 0, 8, 1}, 16, 0xFFFF, 5, -6};
  EXPECT_EQ(text_of(Interval(record)), "[3.0/8@1, 3.0/8@1) 16:ffff p5 efffffffa");
  EXPECT_EQ(Interval(record).to_record().width, 16);
  EXPECT_TRUE(throws<Mau>([] {
    (void)Interval(tdm_interval{{0, 0, 8, -1}, {2, 0, 16, -1}, 1, 1, 0, 0});
  }));
}

/// Every span of a line of six units of two bits, under some masks.
std::vector<Interval> toy_intervals()
{
  const Pattern masks[] = {{1, 1}, {1, 0}, {2, 1}, {2, 2}, {3, 0b011}, {4, 0b1001}, {4, 0b0110}};
  std::vector<Interval> all;
  for (int low = 0; low < 12; ++low)
    for (int high = low; high <= 12; ++high)
      for (const Pattern &mask : masks) all.emplace_back(at_bit(low, 2), at_bit(high, 2), mask);
  return all;
}

TEST(Interval, IntersectionAndSplitOfAToyLine)
{
  const std::vector<Interval> all = toy_intervals();
  for (const Interval &a : all)
    for (const Interval &b : all) {
      if (a.is_empty() || b.is_empty()) continue;
      const bool meet =
          bit_address(a.low) < bit_address(b.high) && bit_address(b.low) < bit_address(a.high);
      const bool masks_meet = (a.pattern & b.pattern).bits != 0;
      Interval common;
      ASSERT_EQ(a.overlaps(b), meet && masks_meet);
      ASSERT_EQ(a.intersect(b, common), meet && masks_meet);
      if (meet && masks_meet) {
        ASSERT_EQ(bits_of(common), bits_of(a) & bits_of(b));
      }
      if (!meet) continue;
      for (const bool merge : {false, true}) {
        // Widths that differ compare by bits alone, so that a merge may not keep them apart.
        if (merge && a.pattern.width != b.pattern.width) continue;
        Interval before, middle, after;
        a.split(before, middle, after, b, merge);
        if ((a.pattern | b.pattern).bits == 0) continue;
        ASSERT_EQ(bits_of(before) | bits_of(middle) | bits_of(after), bits_of(a) | bits_of(b));
        ASSERT_LE(before.high, middle.low);
        ASSERT_LE(middle.high, after.high);
        ASSERT_TRUE(middle.is_empty() || middle.high == after.low);
      }
    }
}

TEST(Interval, EmptyOnesAndBanks)
{
  const Interval span({4, 0, 8}, {8, 0, 8});
  const auto point = [](int64_t at, int bank = -1) {
    return Interval({at, 0, 8, bank}, {at, 0, 8, bank});
  };
  EXPECT_TRUE(span.overlaps(point(4)));
  EXPECT_TRUE(point(7).overlaps(span));
  EXPECT_FALSE(span.overlaps(point(8)));
  EXPECT_FALSE(span.overlaps(point(5, 0)));
  EXPECT_FALSE(point(5).overlaps(point(5)));
  const Interval banks({6, 0, 8, -1}, {2, 0, 8, 1});
  EXPECT_TRUE(banks.overlaps(point(1000000, 0)));
  EXPECT_FALSE(banks.overlaps(point(2, 1)));

  Interval common = span;
  const Interval low_lane({0, 0, 16}, {4, 0, 16}, Pattern(16, 0x00FF));
  const Interval high_lane({0, 0, 16}, {4, 0, 16}, Pattern(16, 0xFF00));
  EXPECT_FALSE(low_lane.intersect(high_lane, common));
  EXPECT_EQ(text_of(common), text_of(span));
  EXPECT_TRUE(Interval({0, 0, 8}, {9, 0, 8}, Pattern(1, 1), -3, 7)
                  .intersect(Interval({2, 0, 8}, {5, 0, 8}, Pattern(1, 1), -2, 6), common));
  EXPECT_EQ(text_of(common), "[2.0/8, 5.0/8) 1:1 pfffffffe e7");
}

struct Insert {
  int low, high, mask, priority;
};

std::string text_after(std::vector<Insert> inserts, bool reject, bool merge)
{
  IntervalSet set;
  std::string result;
  for (const Insert &i : inserts) {
    try {
      set.insert(Interval({i.low, 0, 2}, {i.high, 0, 2}, Pattern(2, uint64_t(i.mask)), i.priority,
                          i.priority),
                 reject, merge);
    } catch (IntervalSet::OverlapException *failure) {
      result += "overlap " + text_of(failure->overlap()) + " | ";
      delete failure;
    }
  }
  for (const Interval &member : set)
    result += std::to_string(member.low.value) + "-" + std::to_string(member.high.value) + ":" +
              std::to_string(member.pattern.bits) + "p" + std::to_string(member.priority) + " ";
  return result;
}

TEST(IntervalSet, MembersAfterInserts)
{
  struct Row {
    std::vector<Insert> inserts;
    bool reject, merge;
    const char *expected;
  };
  const Row rows[] = {
      {{{0, 4, 3, 1}, {4, 8, 3, 1}}, true, false, "0-8:3p1 "},
      {{{0, 4, 3, 1}, {4, 8, 3, 2}}, true, false, "0-4:3p1 4-8:3p2 "},
      {{{4, 8, 3, 2}, {0, 4, 3, 1}}, true, true, "0-8:3p1 "},
      {{{0, 2, 3, 1}, {4, 6, 3, 1}, {2, 4, 3, 1}}, true, false, "0-6:3p1 "},
      {{{3, 3, 3, 1}}, true, false, ""},
      {{{0, 4, 1, 1}, {2, 6, 2, 5}}, true, false, "0-2:1p1 2-4:3p5 4-6:2p5 "},
      {{{0, 2, 1, 1}, {6, 8, 1, 1}, {0, 8, 2, 1}}, true, false, "0-2:3p1 2-6:2p1 6-8:3p1 "},
      {{{2, 6, 3, 1}, {0, 3, 2, 9}, {7, 8, 3, 1}},
       true,
       false,
       "overlap [2.0/2, 3.0/2) 2:2 p9 e9 | 2-6:3p1 7-8:3p1 "},
      {{{2, 6, 3, 1}, {0, 8, 3, 1}}, false, false, "0-8:3p1 "},
      {{{2, 6, 3, 1}, {0, 8, 3, 4}}, false, false, "0-8:3p4 "},
      {{{2, 6, 3, 4}, {0, 8, 3, 1}}, false, false, "0-2:3p1 2-6:3p4 6-8:3p1 "},
  };
  for (const Row &row : rows)
    EXPECT_EQ(text_after(row.inserts, row.reject, row.merge), row.expected);
}

TEST(IntervalSet, EveryThreeInsertsIntoALineOfFour)
{
  std::vector<Interval> all;
  for (int low = 0; low < 4; ++low)
    for (int high = low + 1; high <= 4; ++high)
      for (uint64_t mask = 1; mask <= 3; ++mask)
        all.emplace_back(AddressValue(low, 0, 2), AddressValue(high, 0, 2), Pattern(2, mask),
                         mask == 3 ? 7 : 1);
  for (const bool reject : {true, false})
    for (size_t number = 0; number < all.size() * all.size() * all.size(); ++number) {
      const Interval inserts[] = {all[number % all.size()], all[number / all.size() % all.size()],
                                  all[number / all.size() / all.size()]};
      IntervalSet set;
      uint64_t taken = 0;
      bool refused = false;
      for (const Interval &interval : inserts) {
        refused =
            throws<IntervalSet::OverlapException>([&] { set.insert(interval, reject, false); });
        ASSERT_EQ(refused, reject && (taken & bits_of(interval)) != 0);
        if (refused) break;
        taken |= bits_of(interval);
      }
      if (refused) continue;
      uint64_t held = 0;
      const Interval *previous = nullptr;
      for (const Interval &member : set) {
        if (previous != nullptr) {
          ASSERT_LE(previous->high, member.low);
          ASSERT_FALSE(previous->high == member.low && previous->pattern == member.pattern &&
                       previous->priority == member.priority);
        }
        held |= bits_of(member);
        previous = &member;
      }
      ASSERT_EQ(held, taken);
    }
}

} // namespace
