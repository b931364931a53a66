// The cost of selecting sections by name, for one name and one pattern, beside what others that
// match patterns need for the same names.
//
//     bench_select [--count] NAMES
//
// NAMES has a section name in each line. The 50 patterns have the forms that layouts use, and are
// made of stems of those names. The selections are those of a walk over a layout with one `select`
// for each of them. The slow ones of the others are asked about fewer names.
#include <cstdio>
#include <fnmatch.h>
#include <fstream>
#include <regex>
#include <unistd.h>

#include <benchmark/benchmark.h>

#include "measured.h"

#ifdef WITH_RE2
#include <re2/re2.h>
#endif

namespace {

constexpr std::size_t patterns_of_a_kind = 50;

std::vector<std::string> read_names(const std::string &path)
{
  std::vector<std::string> names;
  std::ifstream file(path);
  for (std::string line; std::getline(file, line);) names.push_back(line);
  bench::require(names.size() >= 1000, "too few names in " + path);
  return names;
}

/// `.head.word_7.tail` without the tail.
std::string stem(const std::string &name)
{
  return name.substr(0, name.find('.', name.find('.', 1) + 1));
}

std::vector<std::string> patterns_for(const std::vector<std::string> &names)
{
  std::vector<std::string> patterns;
  for (std::size_t i = 0; i < patterns_of_a_kind; ++i) {
    const std::string begin = stem(names[(i * names.size() / patterns_of_a_kind) | 1U]);
    const std::string forms[] = {begin + ".*", begin + "*", begin + ".[a-f]*",
                                 begin.substr(0, begin.size() - 1) + "?.?*"};
    patterns.push_back(forms[i % std::size(forms)]);
  }
  return patterns;
}

/// The pattern in the form of regular expressions.
std::string expression(const std::string &pattern)
{
  std::string text;
  for (const char c : pattern)
    text += c == '.' ? "\\." : c == '*' ? ".*" : c == '?' ? "." : std::string(1, c);
  return text;
}

/// One section for each name, as a caller makes them.
class Sections {
public:
  explicit Sections(const std::vector<std::string> &names)
  {
    functions_.get_name = [](void *handle) {
      return static_cast<const std::string *>(handle)->c_str();
    };
    for (const std::string &name : names)
      all_.push_back(tdm_section_create(const_cast<std::string *>(&name), &functions_));
  }
  ~Sections()
  {
    for (tdm_section *section : all_) tdm_section_delete(section);
  }
  Sections(const Sections &) = delete;
  Sections &operator=(const Sections &) = delete;

  [[nodiscard]] const std::vector<tdm_section *> &all() const { return all_; }

  /// The sections without one, in another order for each number.
  [[nodiscard]] std::vector<tdm_section *> without(std::size_t number) const
  {
    const std::size_t turn = number * 777 % all_.size();
    std::vector<tdm_section *> some(all_.begin() + static_cast<std::ptrdiff_t>(turn), all_.end());
    some.insert(some.end(), all_.begin(), all_.begin() + static_cast<std::ptrdiff_t>(turn));
    some.erase(some.begin() + static_cast<std::ptrdiff_t>(number));
    return some;
  }

private:
  tdm_section_functions functions_{};
  std::vector<tdm_section *> all_;
};

struct Selection {
  tdm_selection_statement *statement;
  tdm_statement_env *env;
};

/// What is measured, and what there is to measure it with once the walk has met all selections.
struct Measurement {
  const bench::Program &program;
  const std::vector<std::string> &names;
  const std::vector<std::string> &patterns;
  std::vector<Selection> selections; ///< by pattern, then by plain name
  std::size_t found = 0;
};

using Arrays = std::vector<std::vector<tdm_section *>>;

/// Asks the first or the second half of the selections, each with the next of the arrays.
bench::Case selecting(const char *name, Measurement &measurement, std::size_t first,
                      const Arrays &arrays)
{
  return {name, patterns_of_a_kind * arrays[0].size(), [&measurement, first, &arrays] {
            for (std::size_t i = 0; i < patterns_of_a_kind; ++i) {
              const auto &sections = arrays[i % arrays.size()];
              const auto count = static_cast<uint32_t>(sections.size());
              const tdm_arr array = {sizeof(void *), count, count,
                                     const_cast<tdm_section **>(sections.data())};
              const Selection &selection = measurement.selections[first + i];
              tdm_selection_statement_get_sections(
                  selection.statement, selection.env, &array,
                  [](void *, void *user) { ++*static_cast<std::size_t *>(user); }, 0,
                  &measurement.found);
            }
          }};
}

/// Asks another matcher, made of a pattern, about every `step`th name.
template <class Compile, class Match>
bench::Case matching(const char *name, const Measurement &measurement, std::size_t step,
                     Compile compile, Match match)
{
  const std::size_t asked = (measurement.names.size() + step - 1) / step;
  return {name, measurement.patterns.size() * asked, [&measurement, step, compile, match] {
            std::size_t found = 0;
            for (const std::string &pattern : measurement.patterns) {
              const auto compiled = compile(pattern);
              for (std::size_t i = 0; i < measurement.names.size(); i += step)
                found += match(compiled, measurement.names[i]) ? 1U : 0U;
            }
            benchmark::DoNotOptimize(found);
          }};
}

std::vector<bench::Case> others(const Measurement &measurement)
{
  std::vector<bench::Case> cases = {
      matching(
          "fnmatch", measurement, 10, [](const std::string &pattern) { return pattern; },
          [](const std::string &pattern, const std::string &name) {
            return fnmatch(pattern.c_str(), name.c_str(), 0) == 0;
          }),
      matching(
          "std::regex", measurement, 200,
          [](const std::string &pattern) {
            return std::regex(expression(pattern), std::regex::optimize);
          },
          [](const std::regex &pattern, const std::string &name) {
            return std::regex_match(name, pattern);
          }),
  };
#ifdef WITH_RE2
  cases.push_back(matching(
      "RE2", measurement, 10,
      [](const std::string &pattern) { return std::make_shared<re2::RE2>(expression(pattern)); },
      [](const std::shared_ptr<re2::RE2> &pattern, const std::string &name) {
        return re2::RE2::FullMatch(name, *pattern);
      }));
#endif
  return cases;
}

void measure(Measurement &measurement)
{
  const Sections sections(measurement.names);
  const Arrays same = {sections.all()};
  Arrays changing;
  for (std::size_t i = 0; i < patterns_of_a_kind; ++i) changing.push_back(sections.without(i));
  std::vector<bench::Case> cases = {
      selecting("pattern, another array", measurement, 0, changing),
      selecting("pattern, the array unchanged", measurement, 0, same),
      selecting("plain name, another array", measurement, patterns_of_a_kind, changing),
      selecting("plain name, the array unchanged", measurement, patterns_of_a_kind, same),
  };
  for (bench::Case &other : others(measurement)) cases.push_back(std::move(other));
  measurement.program.run(cases);
  bench::require(measurement.found > 0, "nothing was selected");
}

/// A description whose layout selects the patterns and then, plain, some of the names.
std::string description(const std::vector<std::string> &patterns,
                        const std::vector<std::string> &names)
{
  std::string text = "architecture a { space s { id = 1; mau = 8; map (dest = bus:b, size = 16M); "
                     "}\n  bus b { mau = 8; width = 32; } }\n"
                     "derivative d { core c { architecture = a; } }\n"
                     "processor p { derivative = d; }\nsection_layout p:c:s {\n";
  for (const std::string &pattern : patterns) text += "  select \"" + pattern + "\";\n";
  for (std::size_t i = 0; i < patterns_of_a_kind; ++i)
    text += "  select \"" + names[i * names.size() / patterns_of_a_kind] + "\";\n";
  return text + "}\n";
}

} // namespace

int main(int argc, char **argv)
{
  const bench::Program program(argc, argv);
  bench::require(program.arguments().size() == 1, "bench_select [--count] NAMES");
  const std::vector<std::string> names = read_names(program.arguments()[0]);
  const std::vector<std::string> patterns = patterns_for(names);
  const std::string path = "/tmp/bench_select_" + std::to_string(getpid()) + ".tdm";
  std::ofstream(path) << description(patterns, names);
  const bench::Description parsed(path);
  std::remove(path.c_str());

  // All selections share one scope, so the environments are there while the last one is met.
  Measurement measurement{program, names, patterns, {}};
  tdm_walk_callbacks calls{};
  calls.selection = [](tdm_selection_statement *statement, tdm_statement_env *env, void *user) {
    auto &all = *static_cast<Measurement *>(user);
    all.selections.push_back({statement, env});
    if (all.selections.size() == 2 * patterns_of_a_kind) measure(all);
  };
  for (tdm_space *space : parsed.spaces())
    tdm_space_walk(space, &calls, &measurement, nullptr, nullptr);
}
