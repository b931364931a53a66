// Runs the cases: finds them by walking a directory, compares their complete output, prints what
// differs, and with --update writes the output into the case files as the new expectation.
//
//   case_runner [--update] [--filter <text>] <directory or case file>...
//
// Each input runs three times, the last time behind a parse that failed: whatever state leaks from
// one run into the next shows as a difference.
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <string>
#include <vector>

#include "case_file.h"
#include "session.h"

namespace {

namespace fs = std::filesystem;
using Lines = std::vector<std::string>;

struct Options {
  bool update = false;
  std::string filter;
  std::vector<fs::path> roots;
};

struct Totals {
  int inputs = 0;
  int failed = 0;
};

std::vector<fs::path> find_cases(const Options &options)
{
  std::vector<fs::path> found;
  for (const fs::path &root : options.roots) {
    if (!fs::is_directory(root)) {
      found.push_back(root);
      continue;
    }
    for (const fs::directory_entry &entry : fs::recursive_directory_iterator(root))
      if (entry.path().extension() == ".tdm" &&
          entry.path().string().find(options.filter) != std::string::npos)
        found.push_back(entry.path());
  }
  std::sort(found.begin(), found.end());
  return found;
}

bool same(const Lines &expected, const Lines &actual)
{
  return std::equal(expected.begin(), expected.end(), actual.begin(), actual.end(),
                    cases::line_matches);
}

/// The lines between the common beginning and the common end, expected ones first.
void print_difference(const Lines &expected, const Lines &actual)
{
  const auto [expected_from, actual_from] = std::mismatch(
      expected.begin(), expected.end(), actual.begin(), actual.end(), cases::line_matches);
  auto expected_to = expected.end();
  auto actual_to = actual.end();
  while (expected_to != expected_from && actual_to != actual_from &&
         cases::line_matches(*(expected_to - 1), *(actual_to - 1))) {
    --expected_to;
    --actual_to;
  }
  for (auto line = expected_from; line != expected_to; ++line) std::cout << "  - " << *line << '\n';
  for (auto line = actual_from; line != actual_to; ++line) std::cout << "  + " << *line << '\n';
}

bool check(const cases::CaseFile &file, const cases::Input &input, const std::string &what,
           const Lines &expected, const Lines &actual)
{
  if (same(expected, actual)) return true;
  std::cout << file.path.string() << ':' << input.first_line + 1 << ": " << input.title << what
            << '\n';
  print_difference(expected, actual);
  return false;
}

void run_case(const fs::path &path, const fs::path &directory, const Options &options,
              Totals &totals)
{
  const cases::CaseFile file = cases::read_case_file(path);
  std::vector<Lines> outputs;
  bool changed = false;
  for (const cases::Input &input : file.inputs) {
    ++totals.inputs;
    cases::write_files(input, directory);
    const Lines first = cases::run_input(input, directory, cases::Before::nothing);
    const bool once = std::count(input.requests.begin(), input.requests.end(), "once") > 0;
    const Lines again = once ? first : cases::run_input(input, directory, cases::Before::nothing);
    const Lines after =
        once ? first : cases::run_input(input, directory, cases::Before::failed_parse);
    const bool as_expected = same(input.expected, first);
    outputs.push_back(as_expected ? input.expected : first);
    changed |= !as_expected;
    const bool good = (options.update || check(file, input, "", input.expected, first)) &&
                      check(file, input, " (second run)", first, again) &&
                      check(file, input, " (after a failed parse)", first, after);
    if (!good) ++totals.failed;
  }
  if (options.update && changed) {
    cases::rewrite_case_file(file, outputs);
    std::cout << "updated " << path.string() << '\n';
  }
}

Options read_options(int count, char **arguments)
{
  Options options;
  for (int i = 1; i < count; ++i) {
    const std::string word = arguments[i];
    if (word == "--update")
      options.update = true;
    else if (word == "--filter" && i + 1 < count)
      options.filter = arguments[++i];
    else
      options.roots.emplace_back(word);
  }
  return options;
}

} // namespace

int main(int count, char **arguments)
{
  const Options options = read_options(count, arguments);
  std::string pattern = (fs::temp_directory_path() / "tdm_cases_XXXXXX").string();
  if (mkdtemp(pattern.data()) == nullptr) {
    std::cerr << "cannot make " << pattern << '\n';
    return 2;
  }
  Totals totals;
  try {
    for (const fs::path &path : find_cases(options))
      run_case(path, fs::path(pattern) / "in", options, totals);
  } catch (const std::exception &failure) {
    std::cout << "stopped: " << failure.what() << '\n';
    ++totals.failed;
  }
  fs::remove_all(pattern);
  std::cout << totals.inputs << " inputs, " << totals.failed << " failed\n";
  // A directory without cases is a mistake of the call, not a success.
  return totals.failed == 0 && totals.inputs > 0 ? 0 : 1;
}
