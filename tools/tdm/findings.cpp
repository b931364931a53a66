#include "findings.h"

#include <charconv>
#include <string_view>

#include <tdm_c/tdm_inspect.h>

#include "overlaps.h"

namespace tool {

namespace {

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

/// The texts that quote the name of a file as the library has it.
struct NamingText {
  std::string_view before;
  std::string_view after;
};
constexpr NamingText naming_texts[] = {{"cannot open \"", "\""},
                                       {"the file ", " could not be opened"}};

void set_text(Finding &finding, std::string_view text, const FileNames &names)
{
  finding.text = text;
  for (const auto &[before, after] : naming_texts)
    if (text.size() > before.size() + after.size() && text.starts_with(before) &&
        text.ends_with(after)) {
      const size_t length = text.size() - before.size() - after.size();
      finding.file = names.shown(text.substr(before.size(), length));
      finding.text = std::string(before).append(finding.file).append(after);
    }
}

const char *severity_name(char letter)
{
  return letter == 'W' ? "warning" : letter == 'I' ? "note" : "error";
}

SourcePlace place_of(const std::string &path, int line, int column, const FileNames &names)
{
  // What is given on the command line has lines too, but no file.
  if (path.empty()) return {};
  return {path, names.shown(path), line, column};
}

Finding finding_of(const tdm_inspect_message &message, const FileNames &names)
{
  Finding finding;
  finding.severity = severity_name(message.letter);
  finding.number = message.letter + std::to_string(message.number);
  set_text(finding, text_of(message.text), names);
  finding.place = place_of(text_of(message.position.file), message.position.line,
                           message.position.column, names);
  finding.included_from = include_chain_of(finding.place, names);
  return finding;
}

std::vector<tdm_inspect_message> all_messages()
{
  std::vector<tdm_inspect_message> messages(static_cast<size_t>(tdm_inspect_message_count()));
  for (size_t i = 0; i < messages.size(); ++i)
    tdm_inspect_get_message(static_cast<int>(i), &messages[i]);
  return messages;
}

} // namespace

std::vector<SourcePlace> include_chain_of(const SourcePlace &place, const FileNames &names)
{
  std::vector<SourcePlace> chain;
  if (place.path.empty() || place.line == 0) return chain;
  tdm_srcpos position{};
  position.file = place.path.c_str();
  position.line = place.line;
  position.column = place.column;
  for (const tdm_srcpos &from : take_elements<tdm_srcpos>(tdm_inspect_include_chain(&position)))
    chain.push_back(place_of(text_of(from.file), from.line, from.column, names));
  return chain;
}

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

Finding finding_of(const Failure &failure, const FileNames &names)
{
  Finding finding;
  set_text(finding, failure.text, names);
  finding.place = place_of(failure.file, failure.line, failure.column, names);
  finding.included_from = include_chain_of(finding.place, names);
  return finding;
}

std::vector<Finding> findings_of(const Session &session)
{
  const std::vector<tdm_inspect_message> messages = all_messages();
  std::vector<bool> taken(messages.size());
  std::vector<Finding> findings;
  for (size_t i = 0; i < messages.size(); ++i) {
    if (taken[i]) continue;
    findings.push_back(finding_of(messages[i], session.names()));
    for (int note = messages[i].note; note >= 0 && !taken[static_cast<size_t>(note)];
         note = messages[static_cast<size_t>(note)].note) {
      taken[static_cast<size_t>(note)] = true;
      findings.back().notes.push_back(
          finding_of(messages[static_cast<size_t>(note)], session.names()));
    }
  }
  if (!session.failure().empty()) {
    findings.push_back(finding_of(parse_failure(session.failure()), session.names()));
    if (session.spec() != nullptr) findings.back().notes = overlap_notes(session);
  }
  return findings;
}

} // namespace tool
