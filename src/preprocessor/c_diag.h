// c-diag: the one road by which the preprocessor reports.
//
// Reporting a message formats its text, counts it and keeps a tdm_message in the list of its
// letter. Nothing is printed and nothing stops (but for faults of our own): callers read the lists.
// Lists and counters go on from parse to parse until tdm_cleanup. The lexer, the parser and the
// model never report here.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "common/tdm_types.h"
#include "preprocessor/diag_catalogue.h"

namespace tdm {

/// Empties lists and counters (tdm_init).
void diag_start();

/// Frees the lists (tdm_cleanup).
void diag_end();

/// The numbers that tdm_get_error_count and tdm_get_warning_count give.
[[nodiscard]] int diag_error_count();
[[nodiscard]] int diag_warning_count();

/// The recorded messages of a letter (W, E or I), oldest first.
[[nodiscard]] const std::vector<tdm_message> &diag_list(char letter);

/// One message in the order of all reports: its letter, and its index in the list of that letter.
struct DiagReport {
  char letter;
  int index;
};
[[nodiscard]] const std::vector<DiagReport> &diag_reports();

/// What fills a place of a format.
class DiagArgument {
public:
  DiagArgument(const char *text) : text_(text), kind_('s') {}
  DiagArgument(std::string_view text) : text_(text), kind_('s') {}
  DiagArgument(char character) : character_(character), kind_('c') {}
  DiagArgument(int number) : number_(number), kind_('d') {}

  void append_to(std::string &text, char kind) const;

private:
  std::string_view text_;
  char character_ = 0;
  int number_ = 0;
  char kind_;
};

void diag_report(DiagMessage message, const tdm_srcpos &position, const DiagArgument *arguments,
                 int count);

} // namespace tdm

/// Reports at a position.
template <class... Arguments>
void diag_at(DiagMessage message, const tdm_srcpos &position, const Arguments &...arguments)
{
  const tdm::DiagArgument list[] = {tdm::DiagArgument(arguments)..., tdm::DiagArgument(0)};
  tdm::diag_report(message, position, list, int{sizeof...(arguments)});
}

/// Reports without a position.
template <class... Arguments> void diag_plain(DiagMessage message, const Arguments &...arguments)
{
  diag_at(message, tdm_srcpos{}, arguments...);
}
