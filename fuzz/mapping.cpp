// Address values, masks, interval sets and translations: against single bits and the literal
// transcription of the steps where the numbers are small, and for defined arithmetic at the ends of
// 64 bits.
#include <numeric>

#include "../tests/unit/mapping/literal_translation.h"
#include "mapping/interval_set.h"
#include "mapping/walk.h"
#include "target.h"

namespace {

using Overflow = Interval::PatternOverflowException;

struct Node final : TDMMapSource, TDMMapDestination {
  Node(int mau_, int width_) : mau(mau_), width(width_) {}

  int get_mau_size() const override { return mau; }
  void get_full_name(std::string &out) const override { out = "node"; }
  void add_outgoing_mapping(TDMMapping *mapping) override { outgoing.push_back(mapping); }
  const tdm::MappingList &outgoing_mappings() const override { return outgoing; }
  void add_incoming_mapping(TDMMapping *mapping) override { incoming.push_back(mapping); }
  const tdm::MappingList &incoming_mappings() const override { return incoming; }
  tdm::MapEnd end() { return {tdm::NodeKind::bus, width, this, this}; }

  int mau, width;
  tdm::MappingList outgoing, incoming;
};

/// Whether the call ended in one of the failures of the arithmetic.
template <class Call> bool fails(Call call)
{
  try {
    call();
    return false;
  } catch (IntervalSet::OverlapException *failure) { // no virtual destructor below
    delete failure;
  } catch (MauLibException *failure) {
    delete failure;
  } catch (Overflow *failure) {
    delete failure;
  } catch (TDMFileException *failure) {
    delete failure;
  }
  return true;
}

std::string text_of(const AddressValue &a)
{
  return std::to_string(a.value) + "." + std::to_string(a.bits) + "/" + std::to_string(a.mau) +
         "@" + std::to_string(a.bank);
}

std::string text_of(const Interval &i)
{
  return text_of(i.low) + " " + text_of(i.high) + " " + std::to_string(i.pattern.width) + ":" +
         std::to_string(i.pattern.bits) + " " + std::to_string(i.priority) + " " +
         std::to_string(i.exec_priority);
}

literal::Address literal_address(const AddressValue &a)
{
  return {a.value, a.bits, a.mau, a.bank};
}

AddressValue from_literal(const literal::Address &a)
{
  return {a.value, a.bits, static_cast<int>(a.mau), static_cast<int>(a.bank)};
}

literal::Mask literal_mask(const Interval::Pattern &pattern)
{
  literal::Mask mask;
  for (int b = 0; b < pattern.width; ++b) mask.push_back((pattern.bits >> b & 1) != 0);
  return mask;
}

Interval::Pattern from_literal(const literal::Mask &mask)
{
  std::uint64_t bits = 0;
  for (std::size_t b = 0; b < mask.size(); ++b) bits |= std::uint64_t{mask[b]} << b;
  return {static_cast<std::int64_t>(mask.size()), bits};
}

std::string expected(const literal::Edge &edge, const Interval &i, bool forward)
{
  try {
    const auto result = literal::cross(edge,
                                       {literal_address(i.low), literal_address(i.high),
                                        literal_mask(i.pattern), i.priority, i.exec_priority},
                                       forward);
    if (!result) return "no route";
    Interval out;
    out.low = from_literal(result->low);
    out.high = from_literal(result->high);
    out.pattern = from_literal(result->mask);
    out.priority = static_cast<std::int32_t>(result->priority);
    out.exec_priority = static_cast<std::int32_t>(result->exec_priority);
    return text_of(out);
  } catch (literal::Overflow) {
    return "overflow";
  }
}

template <class Value> std::string translated(const TDMMapping &m, const Value &value, bool forward)
{
  Value out = value;
  bool carried = false;
  if (fails([&] { carried = forward ? tdm::map(m, value, out) : tdm::map_back(m, value, out); }))
    return "overflow";
  return carried ? text_of(out) : "no route";
}

tdm::MapEntry entry(fuzz::Bytes &bytes, const Node &source, const Node &destination, bool small)
{
  tdm::MapEntry entry;
  const auto lines = [&](int width) -> std::optional<tdm::DataLines> {
    if (bytes.flag()) return std::nullopt;
    if (!small)
      return tdm::DataLines{static_cast<std::int32_t>(bytes.number()),
                            static_cast<std::int32_t>(bytes.number())};
    const int low = bytes.pick(0, width - 1);
    return tdm::DataLines{low, bytes.pick(low, width - 1)};
  };
  entry.src_dbits = lines(source.width);
  entry.dest_dbits = lines(destination.width);
  entry.src_offset = small ? bytes.pick(0, 9) : bytes.number();
  entry.dest_offset = small ? bytes.pick(0, 9) : bytes.number();
  entry.size = small ? bytes.pick(0, 20) : bytes.number();
  entry.bank = bytes.pick(-1, 2);
  entry.dest_bank = bytes.pick(-1, 2);
  entry.priority = bytes.pick(0, 3);
  entry.exec_priority = bytes.pick(-1, 3);
  return entry;
}

void translate(fuzz::Bytes &bytes, bool small)
{
  constexpr int maus[] = {1, 2, 3, 4, 8, 8, 16, 24};
  const auto node = [&] {
    const int mau = small ? maus[bytes.pick(0, 7)] : static_cast<int>(bytes.number());
    return Node(mau, small ? mau * bytes.pick(1, std::min(4, 64 / mau)) : bytes.pick(0, 80));
  };
  Node source = node(), destination = node();
  std::unique_ptr<TDMMapping> mapping;
  if (fails([&] {
        mapping =
            TDMMapping::forward(entry(bytes, source, destination, small), source, source.end());
        source.outgoing.push_back(mapping.get());
        mapping->set_destination(destination, destination.end());
      }))
    return fuzz::require(!small, "small numbers make a mapping");
  const TDMMapping &m = *mapping;
  const literal::Edge edge = {source.mau,        source.width,     m.src_dbits.low,
                              m.src_dbits.high,  m.src_offset,     destination.mau,
                              destination.width, m.dest_dbits.low, m.dest_dbits.high,
                              m.dest_offset,     m.size,           m.bank,
                              m.dest_bank,       m.priority,       m.exec_priority};
  for (int i = 0; i < 4; ++i) {
    const bool forward = bytes.flag();
    const int mau = forward ? source.mau : destination.mau;
    const int bank = bytes.pick(-1, 2);
    const int bit = small ? bytes.byte() : static_cast<int>(bytes.number());
    const AddressValue low(small ? bit / mau : bytes.number(), small ? bit % mau : bit, mau, bank);
    const AddressValue high(small ? low.value + bytes.pick(0, 12) : bytes.number(), low.bits, mau,
                            bank);
    Interval span;
    const int width = bytes.pick(1, 64);
    if (fails([&] {
          span = bytes.flag() ? Interval(low, high)
                              : Interval(low, high, Interval::Pattern(width, bytes.word(8)),
                                         bytes.pick(-9, 9), bytes.pick(-9, 9));
        }))
      continue;
    const std::string of_address = translated(m, low, forward),
                      of_span = translated(m, span, forward);
    if (!small) continue;
    fuzz::require(of_span == expected(edge, span, forward), "a span across a mapping",
                  text_of(span) + "\n" + of_span + "\n" + expected(edge, span, forward));
    const auto address = forward ? literal::forward(edge, literal_address(low), false)
                                 : literal::backward(edge, literal_address(low), false);
    fuzz::require(of_address == (address ? text_of(from_literal(*address)) : "no route"),
                  "an address across a mapping", text_of(low));
  }
  if (!small)
    (void)fails([&] {
      (void)tdm::map_to_memory(source,
                               Interval({0, 0, source.mau}, {bytes.number(), 0, source.mau}));
    });
}

void patterns(fuzz::Bytes &bytes)
{
  const auto pattern = [&] {
    const int width = bytes.pick(1, 64);
    return Interval::Pattern(width, bytes.word(8));
  };
  const Interval::Pattern a = pattern(), b = pattern();
  const literal::Mask one = literal_mask(a), two = literal_mask(b);
  const std::size_t together = std::lcm(one.size(), two.size());
  bool overflow = false;
  Interval::Pattern both, either;
  overflow = fails([&] {
    both = a & b;
    either = a | b;
  });
  fuzz::require(overflow == (together > 64), "masks meet within 64 bits");
  for (std::size_t i = 0; !overflow && i < together; ++i) {
    const bool x = one[i % one.size()], y = two[i % two.size()];
    fuzz::require((both.bits >> i & 1) == (x && y) && (either.bits >> i & 1) == (x || y),
                  "bits of masks");
  }
  const std::int64_t from = bytes.number(), to = bytes.number();
  Interval::Pattern slice;
  // A difference of more than 64 bits wraps.
  const bool wide = static_cast<std::uint64_t>(to) - static_cast<std::uint64_t>(from) > 63;
  fuzz::require(fails([&] { slice = a.slice(from, to); }) == wide, "a slice is 1 to 64 bits");
  for (int i = 0; !wide && i < slice.width; ++i) {
    const std::int64_t at = ((from % a.width + a.width) % a.width + i) % a.width;
    fuzz::require((slice.bits >> i & 1) == (a.bits >> at & 1), "bits of a slice");
  }
  Interval::Pattern reduced = a;
  reduced.reduce(bytes.pick(-1, 64));
  for (int i = 0; i < a.width; ++i)
    fuzz::require((reduced.bits >> (i % reduced.width) & 1) == (a.bits >> i & 1),
                  "a reduced mask is the same");
}

__extension__ using Wide = __int128;

void addresses(fuzz::Bytes &bytes)
{
  const AddressValue a(bytes.number(), bytes.pick(0, 40), bytes.pick(1, 70), bytes.pick(-1, 2));
  const auto unit = static_cast<std::int16_t>(bytes.flag() ? bytes.pick(1, 70) : bytes.number());
  AddressValue out;
  const bool failed = fails([&] { out = a.in_mau(unit); });
  fuzz::require(failed == (unit < 1), "units are above 0");
  const Wide bit = Wide{a.value} * a.mau + a.bits;
  if (!failed && unit != a.mau && bit / unit >= INT64_MIN && bit / unit <= INT64_MAX)
    fuzz::require(Wide{out.value} * unit + out.bits == bit && out.bits < unit && out.bits > -unit &&
                      out.bank == a.bank,
                  "the same bit in another unit", text_of(a) + " " + text_of(out));
  AddressValue b(bytes.number(), bytes.pick(0, 40), bytes.flag() ? a.mau : bytes.pick(1, 70),
                 bytes.pick(-1, 2));
  const bool same = a.mau == b.mau;
  fuzz::require(fails([&] { out = a + b; }) == !same && fails([&] { (void)(a < b); }) == !same,
                "units are compared");
  if (!same) return;
  const Wide sum = Wide{a.value} * a.mau + a.bits + Wide{b.value} * b.mau + b.bits;
  // Rounded down: bits are above 0 in a sum.
  const Wide whole = (sum - (sum % a.mau + a.mau) % a.mau) / a.mau;
  if (whole >= INT64_MIN && whole <= INT64_MAX)
    fuzz::require(Wide{out.value} * a.mau + out.bits == sum, "a sum",
                  text_of(a) + " " + text_of(b));
  fuzz::require((a < b) + (b < a) + (a == b) == 1, "one of three");
}

/// Inserts against an array: of each bit, whether it is taken.
void sets(fuzz::Bytes &bytes)
{
  IntervalSet set;
  const bool reject = bytes.flag(), merge = bytes.flag();
  const int width = bytes.pick(1, 4), mau = bytes.pick(1, 2) * width;
  std::uint64_t taken = 0;
  for (int i = 0; i < 10; ++i) {
    // Whole masks: spans that share positions and masks that share bits share bits of the line
    // then.
    const int first = bytes.pick(0, 12), low = first * width, high = bytes.pick(first, 12) * width;
    const std::uint64_t bits = bytes.byte();
    const Interval interval({low / mau, low % mau, mau}, {high / mau, high % mau, mau},
                            Interval::Pattern(width, bits | 1), bytes.pick(0, 2), 1);
    std::uint64_t own = 0;
    for (int b = low; b < high; ++b)
      if (((bits | 1) >> (b % width) & 1) != 0) own |= std::uint64_t{1} << b;
    const bool refused = fails([&] { set.insert(interval, reject, merge); });
    fuzz::require(refused == (reject && (own & taken) != 0), "what is taken is refused",
                  text_of(interval));
    if (refused) return;
    taken |= own;
  }
  std::uint64_t held = 0;
  std::int64_t last = 0;
  for (const Interval &member : set) {
    const std::int64_t from = member.low.value * mau + member.low.bits,
                       to = member.high.value * mau + member.high.bits;
    fuzz::require(last <= from && from < to, "members are in order and not empty");
    last = to;
    for (std::int64_t b = from; b < to; ++b)
      if ((member.pattern.bits >> (b % member.pattern.width) & 1) != 0)
        held |= std::uint64_t{1} << b;
  }
  fuzz::require(held == taken, "the set holds what was inserted");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
  fuzz::Bytes bytes(data, size);
  switch (bytes.pick(0, 4)) {
  case 0:
    translate(bytes, true);
    break;
  case 1:
    translate(bytes, false);
    break;
  case 2:
    patterns(bytes);
    break;
  case 3:
    addresses(bytes);
    break;
  default:
    sets(bytes);
  }
  return 0;
}
