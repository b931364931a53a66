#include "section_list.h"

#include <fstream>
#include <iostream>
#include <optional>
#include <string_view>

#include "supervision.h"
#include "usage_error.h"

namespace tool {

namespace {

constexpr std::string_view blanks = " \t\r\v\f";
constexpr std::string_view letters = "rwxisbp";
/// Somebody gave a file that is no list.
constexpr size_t most_failures = 10;

/// Thrown for a bad line.
struct BadLine {
  size_t at;
  std::string text;
};

struct Word {
  std::string_view text;
  size_t at;
};

class Line {
public:
  explicit Line(std::string_view text) : text_(text) { skip_blanks(); }

  [[nodiscard]] bool at_end() const { return at_ == text_.size() || text_[at_] == '#'; }
  [[nodiscard]] size_t at() const { return at_; }

  Word word() { return take(at_, std::min(text_.find_first_of(blanks, at_), text_.size()), 0); }

  Word name()
  {
    if (text_[at_] != '"') return word();
    const size_t quote = text_.find('"', at_ + 1);
    if (quote == std::string_view::npos) throw BadLine{at_, "the quote isn't closed"};
    const size_t behind = quote + 1;
    if (behind < text_.size() && blanks.find(text_[behind]) == std::string_view::npos)
      throw BadLine{behind, "a blank is needed behind the name"};
    return take(at_ + 1, quote, 1);
  }

private:
  Word take(size_t from, size_t to, size_t skip)
  {
    at_ = to + skip;
    skip_blanks();
    return {text_.substr(from, to - from), from};
  }

  void skip_blanks() { at_ = std::min(text_.find_first_not_of(blanks, at_), text_.size()); }

  std::string_view text_;
  size_t at_ = 0;
};

/// The library takes f and g for attributes that it has no flag for.
std::string attributes_of(const Word &word)
{
  for (size_t i = 0; i < word.text.size(); ++i) {
    const char letter = word.text[i];
    if (letters.find(letter) != std::string_view::npos || letter == 'f' || letter == 'g') continue;
    const bool shown = letter > ' ' && letter < 0x7F;
    const std::string what = shown ? std::string("attribute \"") + letter + "\"" : "such attribute";
    throw BadLine{word.at + i, "there is no " + what + "; there are r, w, x, i, s, b and p"};
  }
  std::string attributes;
  for (const char letter : letters)
    if (word.text.find(letter) != std::string_view::npos) attributes += letter;
  return attributes;
}

std::optional<Section> section_of(std::string_view text, int number)
{
  Line line(text);
  if (line.at_end()) return std::nullopt;
  Section section{std::string(line.name().text), "", number};
  if (!line.at_end()) section.attributes = attributes_of(line.word());
  if (!line.at_end())
    throw BadLine{line.at(), "a line holds a name and the letters of the attributes"};
  return section;
}

SectionList read(std::istream &in, const std::string &file)
{
  SectionList list;
  std::string text;
  for (int number = 1; std::getline(in, text); ++number) {
    try {
      if (auto section = section_of(text, number)) list.sections.push_back(std::move(*section));
    } catch (const BadLine &bad) {
      list.failures.push_back({file, number, static_cast<int>(bad.at) + 1, bad.text});
      if (list.failures.size() == most_failures) break;
    }
  }
  if (in.bad()) throw UsageError{"cannot read \"" + file + "\""};
  return list;
}

} // namespace

SectionList read_section_list(const std::string &file)
{
  if (file == "-") {
    const ClockStop while_somebody_writes;
    return read(std::cin, "<stdin>");
  }
  std::ifstream in(file, std::ios::binary);
  if (!in) throw UsageError{"cannot open \"" + file + "\""};
  return read(in, file);
}

} // namespace tool
