// The translation over one mapping once more, as slow and literal as can be: masks are lists of
// booleans, each step is a loop over single bits, and nothing of the library is used. It judges the
// library where bank numbers and partly connected data lines leave no simpler model.
#pragma once

#include <algorithm>
#include <cstdint>
#include <optional>
#include <vector>

namespace literal {

struct Overflow {};

using Mask = std::vector<bool>;

struct Address {
  int64_t value, bits, mau, bank;
};

struct Span {
  Address low, high;
  Mask mask;
  int64_t priority, exec_priority;
};

struct Edge {
  int64_t src_mau, src_width, src_low, src_high, src_offset;
  int64_t dest_mau, dest_width, dest_low, dest_high, dest_offset;
  int64_t size, bank, dest_bank, priority, exec_priority;
};

inline bool less(const Address &a, const Address &b)
{
  if (a.bank != b.bank) return a.bank < b.bank;
  if (a.value != b.value) return a.value < b.value;
  return a.bits < b.bits;
}
inline bool equal(const Address &a, const Address &b)
{
  return !less(a, b) && !less(b, a);
}

inline bool at(const Mask &mask, int64_t bit)
{
  return mask[static_cast<size_t>(bit)];
}

inline Mask ensure(Mask mask)
{
  if (mask.size() > 64) throw Overflow{};
  return mask;
}

inline Mask slice(const Mask &mask, int64_t from, int64_t to)
{
  const int64_t width = static_cast<int64_t>(mask.size());
  Mask result;
  for (int64_t b = from; b <= to; ++b) result.push_back(at(mask, ((b % width) + width) % width));
  return ensure(result);
}

inline Mask meet(const Mask &a, const Mask &b)
{
  size_t length = a.size();
  while (length % b.size() != 0) length += a.size();
  Mask result;
  for (size_t i = 0; i < length; ++i) result.push_back(a[i % a.size()] && b[i % b.size()]);
  return ensure(result);
}

inline Mask reduced(const Mask &mask, int64_t unit)
{
  const int64_t width = static_cast<int64_t>(mask.size());
  if (width % unit != 0) return mask;
  for (int64_t p = unit; p <= width / 2; p += unit) {
    if (width % p != 0) return mask;
    bool same = true;
    for (int64_t b = 0; b < width; ++b) same = same && at(mask, b) == at(mask, b % p);
    if (same) return Mask(mask.begin(), mask.begin() + p);
  }
  return mask;
}

inline bool any(const Mask &mask)
{
  return std::find(mask.begin(), mask.end(), true) != mask.end();
}

inline Address convert(Address a, int64_t mau)
{
  const int64_t bit = a.value * a.mau + a.bits; // small numbers only
  return {bit / mau, bit % mau, mau, a.bank};
}

inline Span make_span(Address low, Address high, const Mask &mask)
{
  if (less(high, low)) high = low;
  return {low, high, reduced(mask, low.mau), 0x10000, 0x10000};
}

inline std::optional<Span> intersect(const Span &a, const Span &b)
{
  const bool b_in_a = !less(b.low, a.low) && less(b.low, a.high);
  const bool a_in_b = !less(a.low, b.low) && less(a.low, b.high);
  if (!b_in_a && !a_in_b) return std::nullopt;
  const Mask mask = meet(a.mask, b.mask);
  if (!any(mask)) return std::nullopt;
  return make_span(less(a.low, b.low) ? b.low : a.low, less(a.high, b.high) ? a.high : b.high,
                   mask);
}

inline Mask lines(int64_t width, int64_t low, int64_t high)
{
  Mask mask(static_cast<size_t>(width), false);
  for (int64_t b = low; b <= high; ++b)
    if (b < width) mask[static_cast<size_t>(b)] = true;
  return mask;
}

inline Span source_span(const Edge &e)
{
  return make_span({e.src_offset, 0, e.src_mau, e.bank},
                   {e.src_offset + e.size, 0, e.src_mau, e.bank},
                   lines(e.src_width, e.src_low, e.src_high));
}

inline Span destination_span(const Edge &e)
{
  const Address size = convert({e.size, 0, e.src_mau, -1}, e.dest_mau);
  return make_span({e.dest_offset, 0, e.dest_mau, e.dest_bank},
                   {e.dest_offset + size.value, size.bits, e.dest_mau, e.dest_bank},
                   lines(e.dest_width, e.dest_low, e.dest_high));
}

inline bool in_range(const Address &a, Address start, Address end, bool upper)
{
  start.bank = end.bank = a.bank >= 0 ? a.bank : -1;
  if (upper) return less(start, a) && !less(end, a);
  return !less(a, start) && less(a, end);
}

inline std::optional<Address> forward(const Edge &e, const Address &a, bool upper)
{
  const Address start{e.src_offset, 0, e.src_mau, -1};
  const Address end{e.src_offset + e.size, 0, e.src_mau, -1};
  if (!in_range(a, start, end, upper)) return std::nullopt;
  if (e.bank >= 0 && e.bank != a.bank) return std::nullopt;
  Address out = a;
  if (out.bits < e.src_low) {
    out.bits = e.src_low;
  } else if (out.bits > e.src_high) {
    out.value += 1;
    out.bits = e.src_low;
  }
  const int64_t t = e.dest_low - e.src_low + out.bits;
  out.value += t / e.src_mau;
  out.bits = t % e.src_mau;
  out.value -= e.src_offset;
  if (e.src_mau != e.dest_mau) out = convert(out, e.dest_mau);
  out.value += e.dest_offset;
  out.bits += e.dest_low;
  out.value += out.bits / e.dest_mau;
  out.bits %= e.dest_mau;
  out.bank = e.dest_bank >= 0 ? e.dest_bank : e.bank >= 0 ? -1 : a.bank;
  return out;
}

inline std::optional<Address> backward(const Edge &e, const Address &a, bool upper)
{
  const Span span = destination_span(e);
  if (!in_range(a, span.low, span.high, upper)) return std::nullopt;
  if (e.dest_bank >= 0 && e.dest_bank != a.bank) return std::nullopt;
  Address out = a;
  out.value -= e.dest_offset;
  if (e.src_mau != e.dest_mau) out = convert(out, e.src_mau);
  out.value += e.src_offset;
  out.bits += e.src_low;
  out.value += out.bits / e.src_mau;
  out.bits %= e.src_mau;
  out.bank = e.bank >= 0 ? e.bank : e.dest_bank >= 0 ? -1 : a.bank;
  return out;
}

inline Mask compress(const Mask &t, int64_t low, int64_t high, int64_t stride, int64_t periods)
{
  Mask c(1, false);
  const int64_t n = high - low + 1;
  for (int64_t k = 0; k < periods; ++k) {
    const Mask run = slice(t, low + k * stride, high + k * stride);
    Mask moved(static_cast<size_t>(k * n), false);
    moved.insert(moved.end(), run.begin(), run.end());
    ensure(moved);
    if (c.size() < moved.size()) c.resize(moved.size(), false);
    for (size_t b = 0; b < moved.size(); ++b)
      if (moved[b]) c[b] = true;
  }
  return c;
}

inline Mask expand(const Mask &x, int64_t run, int64_t width, int64_t low)
{
  const int64_t r = static_cast<int64_t>(x.size()) / run;
  Mask result(static_cast<size_t>(width * r), false);
  ensure(result);
  for (int64_t k = 0; k < r; ++k)
    for (int64_t b = 0; b < run; ++b) {
      const size_t to = static_cast<size_t>(k * width + low + b);
      if (at(x, k * run + b) && to < result.size()) result[to] = true;
    }
  return result;
}

inline std::optional<Span> cross(const Edge &e, const Span &i, bool is_forward)
{
  const int64_t sign = is_forward ? 1 : -1;
  const auto translate = [&](const Address &a, bool upper) {
    return is_forward ? forward(e, a, upper) : backward(e, a, upper);
  };
  std::optional<Span> out;
  if (equal(i.low, i.high)) {
    const std::optional<Address> p = translate(i.low, false);
    if (!p) return std::nullopt;
    out = Span{*p, *p, Mask(1, true), 0, 0};
  } else {
    Span source = source_span(e);
    Span destination = destination_span(e);
    if (e.bank == -1 && e.dest_bank == -1 && i.low.bank >= 0)
      source.low.bank = source.high.bank = destination.low.bank = destination.high.bank =
          i.low.bank;
    const Mask &s = source.mask;
    const Mask &d = destination.mask;
    const int64_t s_width = static_cast<int64_t>(s.size());
    const int64_t d_width = static_cast<int64_t>(d.size());
    const std::optional<Span> c = intersect(i, is_forward ? source : destination);
    if (!c) return std::nullopt;
    const std::optional<Address> lo = translate(c->low, false);
    const std::optional<Address> hi = translate(c->high, true);
    if (!lo || !hi) return std::nullopt;
    const int64_t t_width = static_cast<int64_t>(c->mask.size());
    Mask r;
    if (is_forward) {
      const Mask connected = slice(d, e.dest_low, e.dest_high);
      const Mask packed = compress(c->mask, e.src_low, e.src_high, s_width, t_width / e.src_mau);
      r = expand(meet(packed, connected), static_cast<int64_t>(connected.size()), d_width,
                 e.dest_low);
    } else {
      const Mask connected = slice(s, e.src_low, e.src_high);
      const Mask packed = compress(c->mask, e.dest_low, e.dest_high, d_width,
                                   std::max<int64_t>(t_width / d_width, 1));
      r = expand(meet(packed, connected), static_cast<int64_t>(connected.size()), s_width,
                 e.src_low);
    }
    out = intersect(make_span(*lo, *hi, r), is_forward ? destination : source);
    if (!out) return std::nullopt;
  }
  out->priority = i.priority + sign * e.priority;
  out->exec_priority = i.exec_priority + sign * e.exec_priority;
  return out;
}

} // namespace literal
