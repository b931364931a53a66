// Compares the flags of sections with those of a selector.
#include "layout/section_selector.h"

#include "layout/section.h"

namespace {

/// The flags in the order of their letters, with the question to a section.
struct Flag {
  char letter;
  bool TDMAttributes::*member;
  bool (TDMSection::*ask)() const;
};

constexpr Flag flags[] = {
    {'r', &TDMAttributes::r, &TDMSection::is_readable},
    {'w', &TDMAttributes::w, &TDMSection::is_writable},
    {'x', &TDMAttributes::x, &TDMSection::is_executable},
    {'i', &TDMAttributes::i, &TDMSection::is_inited},
    {'s', &TDMAttributes::s, &TDMSection::is_scratch},
    {'b', &TDMAttributes::b, &TDMSection::is_blanked},
    {'p', &TDMAttributes::p, &TDMSection::is_p},
};

void print_letters(std::ostream &stream, const TDMAttributes &attributes)
{
  for (const Flag &flag : flags)
    if (attributes.*flag.member) stream << flag.letter;
}

} // namespace

TDMSectionSelector::~TDMSectionSelector() = default;

bool TDMSectionAttributesSelector::matches(const TDMSection &section) const
{
  for (const Flag &flag : flags) {
    const bool wanted = required.*flag.member;
    const bool unwanted = excluded.*flag.member;
    if (!wanted && !unwanted) continue;
    const bool set = (section.*flag.ask)();
    if (set ? unwanted : wanted) return false;
  }
  return true;
}

void TDMSectionAttributesSelector::print(std::ostream &stream) const
{
  stream << "attributes: +";
  print_letters(stream, required);
  stream << '-';
  print_letters(stream, excluded);
}
