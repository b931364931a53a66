// The readers of the additive header: failures as they are counted, messages as they came.
#include "interface/tdm_inspect.h"

#include "interface/last_error.h"
#include "preprocessor/c_diag.h"
#include "preprocessor/diag_catalogue.h"

namespace {

/// Where the note stands in the sequence of all reports: behind the message that it belongs to.
int place_of_note(size_t message, int note)
{
  const auto &reports = tdm::diag_reports();
  for (size_t i = message + 1; note >= 0 && i < reports.size(); ++i)
    if (reports[i].letter == 'I' && reports[i].index == note) return static_cast<int>(i);
  return -1;
}

} // namespace

int64_t tdm_inspect_failure_count(void)
{
  return tdm::failure_count();
}

const char *tdm_inspect_failure_text(void)
{
  return tdm::failure_text();
}

int tdm_inspect_message_count(void)
{
  return static_cast<int>(tdm::diag_reports().size());
}

int tdm_inspect_get_message(int index, tdm_inspect_message *out)
{
  const auto &reports = tdm::diag_reports();
  if (index < 0 || static_cast<size_t>(index) >= reports.size()) return 0;
  const auto place = static_cast<size_t>(index);
  const tdm::DiagReport &report = reports[place];
  const tdm_message &message = tdm::diag_list(report.letter)[static_cast<size_t>(report.index)];
  *out = {report.letter, message.number, message.position, message.text,
          place_of_note(place, message.note)};
  return 1;
}

int tdm_inspect_get_message_kind(int index, tdm_inspect_message_kind *out)
{
  if (index < 0 || index >= diag_message_count) return 0;
  const tdm::DiagRow &row = tdm::diag_catalogue[index];
  *out = {row.letter, row.number, row.format, row.long_description};
  return 1;
}
