#include "diagnostics.h"

#include <charconv>
#include <cstdlib>
#include <string_view>
#include <unistd.h>
#include <vector>

#include <tdm_c/tdm_inspect.h>

namespace tool {

namespace {

constexpr const char *bold = "\033[1m";
constexpr const char *red = "\033[1;31m";
constexpr const char *magenta = "\033[1;35m";
constexpr const char *cyan = "\033[1;36m";
constexpr const char *plain = "\033[0m";

/// Takes a number, and what must follow it, off the beginning.
bool take_number(std::string_view &text, std::string_view follows, int &number)
{
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc()) return false;
  std::string_view rest = text.substr(static_cast<size_t>(end - text.data()));
  if (!rest.starts_with(follows)) return false;
  text = rest.substr(follows.size());
  return true;
}

/// Takes `" <line>/<column>] ` off the beginning.
bool take_position(std::string_view &text, int &line, int &column)
{
  std::string_view rest = text;
  if (!rest.starts_with("\" ")) return false;
  rest.remove_prefix(2);
  if (!take_number(rest, "/", line) || !take_number(rest, "] ", column)) return false;
  text = rest;
  return true;
}

struct Severity {
  const char *name;
  const char *style;
};

Severity severity_of(std::string_view name)
{
  if (name == "warning") return {"warning", magenta};
  if (name == "note") return {"note", cyan};
  return {"error", red};
}

/// The texts that quote the name of a file as the library has it.
struct NamingText {
  std::string_view before;
  std::string_view after;
};
constexpr NamingText naming_texts[] = {{"cannot open \"", "\""},
                                       {"the file ", " could not be opened [E982]"}};

std::string with_shown_name(std::string_view text, const FileNames &names)
{
  for (const auto &[before, after] : naming_texts)
    if (text.size() > before.size() + after.size() && text.starts_with(before) &&
        text.ends_with(after)) {
      const size_t length = text.size() - before.size() - after.size();
      return std::string(before)
          .append(names.shown(text.substr(before.size(), length)))
          .append(after);
    }
  return std::string(text);
}

const char *severity_name(char letter)
{
  return letter == 'W' ? "warning" : letter == 'I' ? "note" : "error";
}

std::vector<tdm_inspect_message> all_messages()
{
  std::vector<tdm_inspect_message> messages(static_cast<size_t>(tdm_inspect_message_count()));
  for (size_t i = 0; i < messages.size(); ++i)
    tdm_inspect_get_message(static_cast<int>(i), &messages[i]);
  return messages;
}

} // namespace

Failure parse_failure(const std::string &text)
{
  const std::string_view whole = text;
  Failure failure;
  failure.text = text;
  if (!whole.starts_with("[\"")) return failure;
  // A file name may hold a quote itself: the first one with a position behind it ends the name.
  for (size_t quote = whole.find('"', 2); quote != std::string_view::npos;
       quote = whole.find('"', quote + 1)) {
    std::string_view rest = whole.substr(quote);
    if (!take_position(rest, failure.line, failure.column)) continue;
    failure.file = whole.substr(2, quote - 2);
    constexpr std::string_view label = "syntax error: ";
    if (rest.starts_with(label)) rest.remove_prefix(label.size());
    failure.text = rest;
    return failure;
  }
  return failure;
}

void Diagnostics::report(const Session &session)
{
  report_messages();
  if (session.spec() == nullptr) report(parse_failure(session.failure()));
}

void Diagnostics::report_messages()
{
  const std::vector<tdm_inspect_message> messages = all_messages();
  std::vector<bool> printed(messages.size());
  for (size_t i = 0; i < messages.size(); ++i) {
    for (size_t next = i; next < messages.size() && !printed[next];) {
      const tdm_inspect_message &message = messages[next];
      printed[next] = true;
      const std::string number = std::to_string(message.number);
      print({text_of(message.position.file), message.position.line, message.position.column},
            severity_name(message.letter),
            text_of(message.text) + " [" + message.letter + number + "]");
      if (message.note < 0) break;
      next = static_cast<size_t>(message.note);
    }
  }
}

void Diagnostics::report(const Failure &failure)
{
  print({failure.file, failure.line, failure.column}, "error", failure.text);
}

void Diagnostics::print(const Place &place, const char *severity, const std::string &text)
{
  const auto [name, style] = severity_of(severity);
  std::string where = place.file.empty() ? "tdm" : names_.shown(place.file);
  // What is given on the command line has lines too, but no file.
  const bool placed = !place.file.empty() && place.line > 0;
  if (placed) where += ":" + std::to_string(place.line) + ":" + std::to_string(place.column);
  out_ << styled(bold, where + ":") << ' ' << styled(style, std::string(name) + ":") << ' '
       << with_shown_name(text, names_) << '\n';
  if (placed) print_source(place);
}

void Diagnostics::print_source(const Place &place)
{
  const auto line = sources_.line(place.file, place.line);
  if (!line.has_value()) return;
  const Excerpt excerpt = excerpt_of(*line, place.column);
  const std::string number = std::to_string(place.line);
  const std::string margin(number.size() < 5 ? 5 - number.size() : 0, ' ');
  out_ << margin << number << " | " << excerpt.source << '\n'
       << std::string(margin.size() + number.size(), ' ') << " | " << styled(red, excerpt.caret)
       << '\n';
}

std::string Diagnostics::styled(const char *style, const std::string &text) const
{
  return colored_ ? style + text + plain : text;
}

bool shows_colors(int descriptor)
{
  const char *no_color = std::getenv("NO_COLOR");
  return isatty(descriptor) != 0 && (no_color == nullptr || *no_color == '\0');
}

} // namespace tool
