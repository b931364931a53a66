// Which sections of an array of the caller's a pattern matches.
//
// A caller walks a layout with many selections over the same array. So the latest array is kept,
// and an index of it as soon as it comes a second time. What is kept speaks of sections by their
// addresses, and an address may come again under another name; so it is dropped when any section
// ends, also one of a client's own class, and when the interface makes one.
#pragma once

#include <span>
#include <vector>

struct TDMSection;
class TDMSelectionPattern;

namespace tdm {

/// The sections that the pattern matches, all without one: in the order of names and, for sections
/// of one name, of the array; each of them once, and no null.
[[nodiscard]] std::vector<TDMSection *> matching_sections(std::span<TDMSection *const> sections,
                                                          const TDMSelectionPattern *pattern);

/// Drops what is kept.
void forget_sections() noexcept;

} // namespace tdm
