// A span of positions with a repeating mask of the bits that it holds, and two priorities.
//
// Conventions:
// - The span is half-open, [low, high), both ends in one unit, and high is never below low: the
//   constructors see to it.
// - The mask lies over the whole line of bits from bit address 0, wherever the span begins: bit b
//   belongs to the interval if it is in the span and mask bit (b mod width) is set.
// - low = high is empty as a span; a translation takes it as the single position low.
// - Priorities are fixed point with 16 fractional bits.
//
//   width  bits    the interval holds
//   1      1       every bit of the span: a plain range
//   1      0       no bit
//   16     0xFF00  the upper byte lane of a line of 16-bit units
#pragma once

#include <cstdint>
#include <string>

#include "common/tdm_types.h"
#include "mapping/address_value.h"

struct Interval {
  /// 1 as a priority.
  static constexpr int32_t priority_one = 0x10000;

  /// A mask that would be wider than 64 bits, or has no width. Thrown by pointer.
  class PatternOverflowException {
  public:
    explicit PatternOverflowException(std::string text) : text_(std::move(text)) {}

    [[nodiscard]] const std::string &text() const { return text_; }

  private:
    std::string text_;
  };

  /// A mask of `width` bits that repeats; bits at or above the width are 0.
  struct Pattern {
    static constexpr int32_t max_width = 64;

    int32_t width = 1; ///< 1 to max_width
    uint64_t bits = 0;

    constexpr Pattern() = default;
    /// Bits above the width are dropped. PatternOverflowException if the width isn't 1 to 64.
    constexpr Pattern(int64_t width_, uint64_t bits_)
        : width(checked_width(width_)), bits(bits_ & mask(width))
    {
    }

    /// The mask of a plain range.
    [[nodiscard]] static constexpr Pattern plain() { return {1, 1}; }
    /// The lowest `width` bits, width 0 to 64.
    [[nodiscard]] static constexpr uint64_t mask(int64_t width)
    {
      return width >= max_width ? ~uint64_t{0} : (uint64_t{1} << width) - 1;
    }

    /// The mask as seen through the bits `from` to `to` of the line, both included, which may lie
    /// in any period, below bit 0 too. PatternOverflowException if these aren't 1 to 64 bits.
    [[nodiscard]] Pattern slice(int64_t from, int64_t to) const;

    /// Over the least common multiple of the widths, not reduced. PatternOverflowException if that
    /// is above 64.
    friend Pattern operator&(const Pattern &a, const Pattern &b);
    friend Pattern operator|(const Pattern &a, const Pattern &b);

    /// Shrinks to the shortest period that is a multiple of `unit`. The search ends at the first
    /// multiple that doesn't divide the width, even if a longer one would.
    void reduce(int32_t unit);

    /// Of the bits, the wider mask being reduced by the width of the narrower one first. Where it
    /// doesn't shrink to that width its bits are compared as they are.
    friend bool operator==(const Pattern &a, const Pattern &b);

    /// Whether all that `other` holds is held here. PatternOverflowException as for `&`.
    [[nodiscard]] bool contains(const Pattern &other) const
    {
      return (width == 1 && bits == 1) || (*this & other) == other;
    }

  private:
    static constexpr int32_t checked_width(int64_t width)
    {
      if (width < 1 || width > max_width) throw_bad_width(width);
      return static_cast<int32_t>(width);
    }
    [[noreturn]] static void throw_bad_width(int64_t width);
    /// The bits repeated up to a multiple of the width.
    [[nodiscard]] uint64_t repeated(int32_t to_width) const;
  };

  AddressValue low;
  AddressValue high;
  Pattern pattern;
  int32_t priority = priority_one;
  int32_t exec_priority = priority_one;

  /// Nothing at 0, in units of one bit.
  Interval() = default;
  /// Each: MauException if the ends have different units; an end below the beginning becomes the
  /// beginning. Patterns are reduced in units of the MAU.
  Interval(const AddressValue &low_, const AddressValue &high_);
  Interval(const AddressValue &low_, const AddressValue &high_, const Pattern &pattern_,
           int32_t priority_ = priority_one, int32_t exec_priority_ = priority_one);

  /// From and to the form of the boundary, field by field: the pattern isn't reduced. What comes in
  /// fails with MauException or PatternOverflowException if it can't be an interval.
  explicit Interval(const tdm_interval &record);
  [[nodiscard]] tdm_interval to_record() const;

  [[nodiscard]] bool is_empty() const { return low == high; }

  /// Whether the spans share a position and the patterns a bit. An empty interval shares its
  /// position with a span that contains it. MauException, PatternOverflowException.
  [[nodiscard]] bool overlaps(const Interval &other) const;

  /// What the two share, with the greater priorities; false, and `out` as it was, if nothing.
  /// MauException, PatternOverflowException.
  [[nodiscard]] bool intersect(const Interval &other, Interval &out) const;

  /// Cuts the union of two intervals whose spans share positions into what comes before the other
  /// begins, what both hold (with the patterns of both), and what comes after one has ended. With
  /// `merge`, a piece that looks like the middle one is joined with it and comes out empty or makes
  /// the middle empty. MauException, PatternOverflowException.
  void split(Interval &before, Interval &middle, Interval &after, const Interval &other,
             bool merge) const;

private:
  [[nodiscard]] bool shares_span(const Interval &other) const;
  [[nodiscard]] bool looks_like(const Interval &other) const;
};
