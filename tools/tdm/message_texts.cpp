#include "message_texts.h"

#include <fmt/format.h>
#include <tdm_c/tdm_inspect.h>

namespace tool {

namespace {

/// The conversions of a format give way to dots.
std::string title_of(std::string_view format)
{
  std::string title;
  for (size_t i = 0; i < format.size(); ++i) {
    if (format[i] == '%' && i + 1 < format.size()) {
      title += "...";
      ++i;
    } else {
      title += format[i];
    }
  }
  return title;
}

/// With one blank where there are several.
std::string meaning_of(const char *text)
{
  std::string meaning;
  for (const char *c = text != nullptr ? text : ""; *c != '\0'; ++c)
    if (*c != ' ' || !meaning.ends_with(' ')) meaning += *c;
  return meaning;
}

const char *severity_of(char letter)
{
  switch (letter) {
  case 'W':
    return "warning";
  case 'I':
    return "note";
  case 'S':
    return "fault of the library";
  default:
    return "error";
  }
}

MessageText text_of(const tdm_inspect_message_kind &kind)
{
  return {fmt::format("{}{}", kind.letter, kind.number), severity_of(kind.letter),
          title_of(kind.format), meaning_of(kind.meaning), message_example(kind.number)};
}

} // namespace

std::vector<MessageText> message_texts()
{
  std::vector<MessageText> texts;
  tdm_inspect_message_kind kind{};
  for (int i = 0; tdm_inspect_get_message_kind(i, &kind) != 0; ++i) texts.push_back(text_of(kind));
  return texts;
}

std::optional<MessageText> message_text(std::string_view number)
{
  const bool has_letter = !number.empty() && (number[0] < '0' || number[0] > '9');
  tdm_inspect_message_kind kind{};
  for (int i = 0; tdm_inspect_get_message_kind(i, &kind) != 0; ++i) {
    if (has_letter && number[0] != kind.letter && number[0] != kind.letter + ('a' - 'A')) continue;
    if (number.substr(has_letter ? 1 : 0) == std::to_string(kind.number)) return text_of(kind);
  }
  return std::nullopt;
}

} // namespace tool
