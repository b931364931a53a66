// The verb explain: what the messages of the preprocessor mean.
#include "format.h"
#include "json_values.h"
#include "message_texts.h"
#include "usage_error.h"
#include "verbs.h"

namespace tool {

namespace {

constexpr const char *no_example = "No description can provoke it.";

/// Each line with blanks in front.
std::string indented(std::string_view text, size_t columns)
{
  std::string result;
  while (!text.empty()) {
    const std::string_view line = text.substr(0, text.find('\n'));
    if (!line.empty()) result.append(columns, ' ').append(line);
    result += '\n';
    text.remove_prefix(std::min(text.size(), line.size() + 1));
  }
  return result;
}

/// Breaks lines at blanks.
std::string wrapped(std::string_view text, size_t width)
{
  std::string result;
  while (text.size() > width) {
    size_t end = text.rfind(' ', width);
    if (end == std::string_view::npos) end = text.find(' ');
    if (end == std::string_view::npos) break;
    result.append(text.substr(0, end)) += '\n';
    text.remove_prefix(end + 1);
  }
  return result.append(text) + '\n';
}

void write_list(const std::vector<MessageText> &texts, std::ostream &out)
{
  Table table;
  for (const MessageText &text : texts) table.add({text.number, text.title});
  for (const std::string &line : table.lines()) out << line << '\n';
}

void write_text(const MessageText &text, std::ostream &out)
{
  out << text.number << ", " << text.severity << ": " << text.title << '\n';
  if (!text.meaning.empty()) out << '\n' << indented(wrapped(text.meaning, 76), 2);
  if (text.example == nullptr) {
    out << "\n  " << no_example << '\n';
    return;
  }
  out << "\n  Provoked by:\n\n" << indented(text.example->provokes, 6);
  out << "\n  Mended:\n\n" << indented(text.example->mended, 6);
}

/// As text of Markdown: what would be a mark there stands behind a backslash.
std::string marked(std::string_view text)
{
  std::string result;
  for (const char c : text) {
    if (std::string_view("\\`*_<>#[]|").find(c) != std::string_view::npos) result += '\\';
    result += c;
  }
  return result;
}

void write_markdown(const std::vector<MessageText> &texts, std::ostream &out)
{
  out << "# Messages of the preprocessor\n\n"
         "What `tdm explain` says, number by number. `E` is an error, `W` a warning, `I` a note "
         "to\n"
         "another message, `S` a fault of the library itself. Where a text stands for several, "
         "\"...\"\n"
         "is what the message fills in. After an error the preprocessor goes on with its input, "
         "so\n"
         "that one run shows them all; what the language or the model refuses has no number, and\n"
         "ends the parse.\n\n"
         "An example is the contents of `example.tdm`, in front of a description that is in "
         "order.\n"
         "`--- NAME` begins a further file, and a line with `$` is the command.\n";
  for (const MessageText &text : texts) {
    out << "\n## " << text.number << ": " << marked(text.title) << "\n\n";
    if (!text.meaning.empty()) out << wrapped(marked(text.meaning), 110) << '\n';
    if (text.example == nullptr)
      out << no_example << '\n';
    else
      out << "Provoked by\n\n"
          << indented(text.example->provokes, 4) << "\nand mended:\n\n"
          << indented(text.example->mended, 4);
  }
}

Json text_json(const MessageText &text)
{
  Json json = {{"number", text.number},
               {"severity", text.severity},
               {"title", text.title},
               {"meaning", text.meaning.empty() ? Json(nullptr) : Json(text.meaning)},
               {"provoked_by", nullptr},
               {"mended", nullptr}};
  if (text.example != nullptr) {
    json["provoked_by"] = text.example->provokes;
    json["mended"] = text.example->mended;
  }
  return json;
}

void write_messages_json(const std::vector<MessageText> &texts, std::ostream &out)
{
  Json list = Json::array();
  for (const MessageText &text : texts) list.push_back(text_json(text));
  write_json(out, {{"schema_version", json_schema_version}, {"messages", std::move(list)}});
}

std::vector<MessageText> chosen_texts(const Options &options)
{
  if (options.numbers.empty()) return message_texts();
  std::vector<MessageText> texts;
  for (const std::string &number : options.numbers) {
    const auto text = message_text(number);
    if (!text.has_value())
      throw UsageError{"there is no message \"" + number + "\"; tdm explain lists all"};
    texts.push_back(*text);
  }
  return texts;
}

} // namespace

int explain(const Options &options, std::ostream &out)
{
  const std::vector<MessageText> texts = chosen_texts(options);
  if (options.format == "json") {
    write_messages_json(texts, out);
  } else if (options.format == "markdown") {
    write_markdown(texts, out);
  } else if (options.numbers.empty()) {
    write_list(texts, out);
  } else {
    for (const MessageText &text : texts) {
      if (&text != &texts.front()) out << '\n';
      write_text(text, out);
    }
  }
  return exit_ok;
}

} // namespace tool
