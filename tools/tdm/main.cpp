// tdm: reads target descriptions from the command line. Each verb reads its files as one input,
// reports what is wrong with them, and then answers.
#include <exception>
#include <iostream>
#include <sstream>
#include <unistd.h>

#include "diagnostics.h"
#include "options.h"
#include "session.h"
#include "supervision.h"
#include "usage_error.h"
#include "verbs.h"

namespace {

using namespace tool;

int answer(const Options &options, const Session &session, Diagnostics &diagnostics,
           std::ostream &out)
{
  switch (options.verb) {
  case Verb::show:
    return options.json ? show_json(options, session, out) : show_text(options, session, out);
  case Verb::map:
    return map(options, session, out);
  case Verb::layout:
    return layout(options, session, diagnostics, out);
  case Verb::select:
    return select(options, session, diagnostics, out);
  case Verb::eval:
    return eval(options, session, diagnostics, out);
  case Verb::draw:
    return draw(options, session, out);
  case Verb::deps:
    return deps(options, session, out);
  default:
    return exit_usage;
  }
}

/// Reads the description, and answers if it could be read. A picture is drawn also of one that can
/// be read and nothing more.
int read_and_answer(const Options &options, std::ostream &out)
{
  const Session session(options);
  Diagnostics diagnostics(session.names(), std::cerr, shows_colors(options.color, STDERR_FILENO));
  diagnostics.report(findings_of(session));
  const bool answers = session.failure().empty() || options.verb == Verb::draw;
  if (session.spec() == nullptr || !answers) return exit_code_of_errors();
  const bool errors = tdm_get_error_count() > 0 || !session.failure().empty();
  const int result = answer(options, session, diagnostics, out);
  return errors ? exit_code_of_errors() : result;
}

/// Whether all that was written could be.
bool flushed()
{
  std::cout.flush();
  if (!std::cout) std::cerr << "tdm: error: cannot write the output\n";
  return static_cast<bool>(std::cout);
}

int run(const Options &options)
try {
  const int result = options.verb == Verb::check        ? check(options, std::cout, std::cerr)
                     : options.verb == Verb::preprocess ? preprocess(options, std::cout, std::cerr)
                     : options.verb == Verb::explain    ? explain(options, std::cout)
                                                        : read_and_answer(options, std::cout);
  return flushed() ? result : exit_errors;
} catch (const UsageError &error) {
  std::cerr << "tdm: error: " << error.text << '\n';
  return exit_usage;
} catch (const std::exception &error) {
  std::cerr << "tdm: error: " << error.what() << '\n';
  return exit_errors;
}

} // namespace

int main(int argc, char **argv)
{
  std::ios::sync_with_stdio(false);
  const Command command = read_command_line(argc, argv);
  if (!command.options.has_value()) return flushed() ? command.exit_code : exit_errors;
  const Options &options = *command.options;
  return options.files.empty() ? run(options) : supervised(options, [&] { return run(options); });
}
