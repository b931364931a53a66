// Formatting, counting and keeping. An I message is a note on the message before it: that one's
// record is given the index of the note.
#include "preprocessor/c_diag.h"

#include <string>

#include "preprocessor/orderly_stop.h"
#include "preprocessor/string_pool.h"

namespace tdm {

namespace {

constexpr std::size_t longest_text = 1024;
constexpr std::string_view letters = "WEI";

struct {
  std::vector<tdm_message> lists[letters.size()];
  std::vector<tdm_message> *previous; ///< the list that the latest message went to
  std::vector<DiagReport> reports;
  int errors;
  int warnings;
  std::string text;
} state;

void format_text(const char *format, const DiagArgument *argument, const DiagArgument *end)
{
  state.text.clear();
  for (; *format != 0 && state.text.size() < longest_text; ++format) {
    if (*format != '%') {
      state.text += *format;
      continue;
    }
    ++format;
    internal_check(argument != end);
    (argument++)->append_to(state.text, *format);
  }
  if (state.text.size() > longest_text) state.text.resize(longest_text);
}

void count(char letter)
{
  if (letter == 'E') ++state.errors;
  if (letter == 'W') ++state.warnings;
}

} // namespace

void DiagArgument::append_to(std::string &text, char kind) const
{
  internal_check(kind == kind_);
  if (kind == 's') text += text_.substr(0, longest_text);
  if (kind == 'c') text += character_;
  if (kind == 'd') text += std::to_string(number_);
}

void diag_start()
{
  diag_end();
}

void diag_end()
{
  for (std::vector<tdm_message> &list : state.lists) std::vector<tdm_message>().swap(list);
  std::vector<DiagReport>().swap(state.reports);
  state.previous = nullptr;
  state.errors = state.warnings = 0;
}

int diag_error_count()
{
  return state.errors;
}

int diag_warning_count()
{
  return state.warnings;
}

const std::vector<tdm_message> &diag_list(char letter)
{
  const std::size_t index = letters.find(letter);
  internal_check(index != letters.npos);
  return state.lists[index];
}

const std::vector<DiagReport> &diag_reports()
{
  return state.reports;
}

void diag_report(DiagMessage message, const tdm_srcpos &position, const DiagArgument *arguments,
                 int argument_count)
{
  const DiagRow &row = diag_catalogue[message];
  if (row.letter == 'S') stop_internal();
  count(row.letter);
  format_text(row.format, arguments, arguments + argument_count);

  std::vector<tdm_message> &list = state.lists[letters.find(row.letter)];
  const int index = static_cast<int>(list.size());
  if (row.letter == 'I' && state.previous != nullptr && !state.previous->empty())
    state.previous->back().note = index;
  list.push_back({row.number, position, intern(state.text), -1});
  state.reports.push_back({row.letter, index});
  state.previous = &list;
}

} // namespace tdm
