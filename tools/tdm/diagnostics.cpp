#include "diagnostics.h"

#include <cstdlib>
#include <unistd.h>

#include <fmt/format.h>

namespace tool {

namespace {

constexpr const char *bold = "\033[1m";
constexpr const char *red = "\033[1;31m";
constexpr const char *magenta = "\033[1;35m";
constexpr const char *cyan = "\033[1;36m";
constexpr const char *plain = "\033[0m";

const char *style_of(std::string_view severity)
{
  return severity == "warning" ? magenta : severity == "note" ? cyan : red;
}

} // namespace

void Diagnostics::report(const std::vector<Finding> &findings)
{
  for (const Finding &finding : findings) {
    print(finding);
    for (const Finding &note : finding.notes) print(note);
  }
}

void Diagnostics::report(const Failure &failure)
{
  print(finding_of(failure, names_));
}

void Diagnostics::print(const Finding &finding)
{
  const SourcePlace &place = finding.place;
  print_chain(finding.included_from);
  std::string where = place.file.empty() ? "tdm" : place.file;
  if (place.line > 0) where += fmt::format(":{}:{}", place.line, place.column);
  out_ << styled(bold, where + ":") << ' '
       << styled(style_of(finding.severity), std::string(finding.severity) + ":") << ' '
       << finding.text;
  if (!finding.number.empty()) out_ << " [" << finding.number << ']';
  out_ << '\n';
  if (place.line > 0) print_source(place);
}

void Diagnostics::print_chain(const std::vector<SourcePlace> &included_from)
{
  std::string text;
  for (const SourcePlace &from : included_from) {
    text += text.empty() ? "In file included from " : ",\n                 from ";
    text += styled(bold, fmt::format("{}:{}", from.file, from.line));
  }
  if (!text.empty() && text != last_chain_) out_ << text << ":\n";
  last_chain_ = std::move(text);
}

void Diagnostics::print_source(const SourcePlace &place)
{
  const auto line = sources_.line(place.path, place.line);
  if (!line.has_value()) return;
  const Excerpt excerpt = excerpt_of(*line, place.column);
  const std::string number = fmt::format("{:5}", place.line);
  out_ << fmt::format("{} | {}\n{:{}} | {}\n", number, excerpt.source, "", number.size(),
                      styled(red, excerpt.caret));
}

std::string Diagnostics::styled(const char *style, const std::string &text) const
{
  return colored_ ? style + text + plain : text;
}

bool shows_colors(std::string_view wish, int descriptor)
{
  if (wish != "auto") return wish == "always";
  const char *no_color = std::getenv("NO_COLOR");
  return isatty(descriptor) != 0 && (no_color == nullptr || *no_color == '\0');
}

} // namespace tool
