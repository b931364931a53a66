// The verb check: reads one description or several, and reports what is wrong.
#include <algorithm>
#include <fstream>
#include <set>
#include <unistd.h>

#include "diagnostics.h"
#include "format.h"
#include "make_rule.h"
#include "reports.h"
#include "verbs.h"

namespace tool {

namespace {

std::string counts_of(const tdm_spec *spec)
{
  size_t cores = 0;
  size_t spaces = 0;
  const std::vector<tdm_processor *> processors = processors_of(spec);
  for (const tdm_processor *processor : processors)
    for (const tdm_core *core : cores_of(processor)) {
      ++cores;
      for (const tdm_space *space : spaces_of(core)) spaces += is_placeholder(space) ? 0 : 1;
    }
  return counted(processors.size(), "processor") + ", " + counted(cores, "core") + ", " +
         counted(spaces, "space") + ", " + counted(memories_of(spec).size(), "memory");
}

/// Checks one description after the other, and remembers what programs are to read at the end.
class Checks {
public:
  Checks(const Options &options, std::ostream &out, std::ostream &messages)
      : options_(options), out_(out), messages_(messages), for_people_(options.format == "text")
  {
  }

  void run(const std::vector<std::string> &files)
  {
    Options options = options_;
    options.files = files;
    const Session session(options);
    Checked checked{files, session.failure().empty() && tdm_get_error_count() == 0,
                    findings_of(session)};
    if (!checked.in_order) exit_code_ = std::max(exit_code_, exit_code_of_errors());
    if (for_people_) tell(checked, session);
    for (const std::string &file : files_read(session))
      if (known_.insert(file).second) read_.push_back(file);
    checked_.push_back(std::move(checked));
  }

  /// What the process ends with.
  int finish()
  {
    const auto in_order = static_cast<size_t>(std::count_if(
        checked_.begin(), checked_.end(), [](const Checked &checked) { return checked.in_order; }));
    if (!for_people_)
      write_report(options_.format, checked_, out_);
    else if (options_.each)
      out_ << counted(checked_.size(), "description") << ": " << in_order << " in order, "
           << checked_.size() - in_order << " with errors\n";
    const bool written = options_.depfile.empty() || write_depfile();
    return written ? exit_code_ : std::max<int>(exit_code_, exit_errors);
  }

private:
  void tell(const Checked &checked, const Session &session)
  {
    Diagnostics(session.names(), messages_, shows_colors(options_.color, STDERR_FILENO))
        .report(checked.findings);
    if (checked.in_order)
      out_ << checked.files.front() << ": in order: " << counts_of(session.spec()) << '\n';
    // The two streams often end in one terminal or log.
    out_.flush();
    messages_.flush();
  }

  [[nodiscard]] bool write_depfile() const
  {
    std::ofstream file(options_.depfile, std::ios::binary);
    write_make_rule(options_.target.empty() ? options_.depfile : options_.target, read_, file);
    file.close();
    if (!file) messages_ << "tdm: error: cannot write \"" << options_.depfile << "\"\n";
    return static_cast<bool>(file);
  }

  const Options &options_;
  std::ostream &out_;
  std::ostream &messages_;
  bool for_people_;
  int exit_code_ = exit_ok;
  std::vector<Checked> checked_;
  std::vector<std::string> read_;
  std::set<std::string> known_;
};

} // namespace

int check(const Options &options, std::ostream &out, std::ostream &messages)
{
  Checks checks(options, out, messages);
  if (!options.each)
    checks.run(options.files);
  else
    for (const std::string &file : options.files) checks.run({file});
  return checks.finish();
}

} // namespace tool
