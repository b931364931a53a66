// Random programs, preprocessed here and by the C preprocessor of the system: the same tokens must
// come out. What both have in common, and the programs are made of:
//   - object-like and function-like macros, variadic ones included (`...`, `rest...`, and a comma
//     in front of ##), #undef, redefinition, # and ##;
//   - calls nested in arguments, empty arguments, calls over several lines, names without a call,
//     names that meet their parenthesis only behind the macro that they came from;
//   - #if, #elif, #else, #endif, #ifdef, #ifndef; arithmetic of 64 bits, comparisons, logic, ?: in
//     parentheses, defined; unsigned arithmetic, for itself;
//   - #include, __LINE__.
// Left out is where they differ on purpose: signed and unsigned terms in one condition, pastes that
// make no token, commas in conditions, and numbers of arguments that don't fit (the other one gives
// up; such programs are only run here).
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <random>
#include <set>

#include "preprocess.h"

namespace {

using tdm_test::File;

constexpr int program_count = 10000;
constexpr int part_count = 20;

class ProgramMaker {
public:
  explicit ProgramMaker(unsigned seed) : random_(seed) {}

  std::string program()
  {
    std::string text;
    open_ = 0;
    arity_.clear();
    for (int lines = number(5, 25); lines > 0; --lines) text += piece();
    while (open_-- > 0) text += "#endif\n";
    return text;
  }

  // For #include: no conditionals of its own.
  std::string part() { return definition() + line(1) + ";\n" + (chance(50) ? definition() : ""); }

private:
  int number(int low, int high) { return std::uniform_int_distribution<int>(low, high)(random_); }
  bool chance(int percent) { return number(1, 100) <= percent; }
  template <std::size_t n> std::string one_of(const char *const (&texts)[n])
  {
    return texts[static_cast<std::size_t>(number(0, static_cast<int>(n) - 1))];
  }
  std::string name() { return one_of({"a", "b", "c", "f", "g", "h", "i"}); }

  std::string piece()
  {
    const int kind = number(0, 22);
    if (kind < 9) return definition();
    if (kind == 9) return "#undef " + name() + "\n";
    if (kind < 14) return ++open_, opening();
    if (kind == 14 && open_ > 0) return "#elif " + condition() + "\n";
    if (kind == 15 && open_ > 0) return open_--, "#else\n" + line(0) + "\n#endif\n";
    if (kind < 18 && open_ > 0) return open_--, "#endif\n";
    if (kind == 18) return "#include \"part" + std::to_string(number(0, part_count - 1)) + "\"\n";
    return line(0) + (chance(9) ? " __LINE__ ;\n" : " ;\n");
  }

  std::string opening()
  {
    if (chance(50)) return "#if " + condition() + "\n";
    return (chance(50) ? "#ifdef " : "#ifndef ") + name() + "\n";
  }

  std::string word()
  {
    if (chance(60)) return name();
    return one_of({"1", "27", "+", "-", "<", "=", "x", "y", "\"s\"", "'c'", "\"a\\n\"", "zz"});
  }

  std::string body(const std::vector<std::string> &parameters, bool function_like)
  {
    const auto parameter = [&] {
      return parameters[static_cast<std::size_t>(
          number(0, static_cast<int>(parameters.size()) - 1))];
    };
    std::string text, last;
    for (int count = number(0, 6); count > 0; --count) {
      if (function_like && !parameters.empty() && chance(10))
        last = "#" + parameter();
      else if (!parameters.empty() && chance(35))
        last = parameter();
      else if (chance(15))
        last = call(3);
      else
        last = word();
      // Names and numbers behind a name always make one token; arguments often do.
      if (last.size() == 1 && std::isalpha(static_cast<unsigned char>(last[0])) != 0 && chance(15))
        last += std::string(" ## ") + (parameters.empty() || chance(50)
                                           ? one_of({"1", "q", "a"})
                                           : (chance(50) ? parameter() : name()));
      text += last + (chance(90) ? " " : " /* */\t");
    }
    return text;
  }

  std::string definition()
  {
    const std::string macro = name();
    arity_[macro] = -1;
    std::string text = "#undef " + macro + "\n#define " + macro;
    if (chance(15)) return text + " " + one_of({"", "(1)", "(a,b)", "f (2)", "g g"}) + "\n";
    if (chance(30)) return text + " " + body({}, false) + "\n";
    std::vector<std::string> parameters = {"p", "q", "r"};
    parameters.resize(static_cast<std::size_t>(number(0, 3)));
    std::string list;
    for (const std::string &parameter : parameters) list += (list.empty() ? "" : ",") + parameter;
    if (chance(20)) {
      const bool named = chance(40);
      list += std::string(list.empty() ? "" : ",") + (named ? "rest..." : "...");
      parameters.emplace_back(named ? "rest" : "__VA_ARGS__");
    }
    arity_[macro] = static_cast<int>(parameters.size());
    return text + "(" + list + ") " + body(parameters, true) + "\n";
  }

  // Mostly with as many arguments as fit.
  std::string call(int depth)
  {
    std::string macro = name();
    for (int tries = 0; tries < 4 && arity_[macro] < 0; ++tries) macro = name();
    std::string text = macro + (chance(30) ? " (" : chance(10) && depth == 0 ? "\n(" : "(");
    int arguments = arity_[macro] >= 0 && chance(90) ? arity_[macro] : number(0, 3);
    for (; arguments > 0; --arguments)
      text += (chance(10) ? "" : line(depth + 1)) + (arguments > 1 ? "," : "");
    return text + ") ";
  }

  // A comma in front of ## goes with the arguments behind it if there are none.
  std::string comma_call()
  {
    const std::string macro = one_of({"v", "w"});
    const bool named = macro == "w";
    return "#undef " + macro + "\n#define " + macro +
           (named ? "(p, rest...) [p, ## rest]" : "(p, ...) [p,##__VA_ARGS__ ]") + "\n" + macro +
           "(" + word() + (chance(60) ? ", " + word() + (chance(50) ? ", " + word() : "") : "") +
           ") ";
  }

  std::string line(int depth)
  {
    if (depth == 0 && chance(4)) return comma_call();
    std::string text;
    for (int count = number(1, depth == 0 ? 5 : 3); count > 0; --count)
      text += depth > 3 || chance(50) ? word() + " " : call(depth);
    if (depth > 0 && depth < 3 && chance(3)) text += "\n";
    return text;
  }

  std::string condition()
  {
    if (chance(15)) return term(0, "u") + comparison() + term(0, "u");
    if (chance(15)) return term(0, "") + comparison() + term(0, "");
    return small_condition(0);
  }

  std::string comparison() { return one_of({" < ", " <= ", " > ", " >= ", " == ", " != "}); }

  // 64 bits, each operation in parentheses, as results are cut to 64 bits there.
  std::string term(int depth, const std::string &suffix)
  {
    if (depth > 3 || chance(25))
      return one_of(
                 {"1", "3", "0x7fffffffffffffff", "4611686018427387904", "12345678901234", "0"}) +
             suffix;
    if (chance(20)) return "(" + one_of({"- ", "~ "}) + term(depth + 1, suffix) + ")";
    if (chance(25))
      return "(" + term(depth + 1, suffix) + one_of({" << ", " >> ", " / ", " % "}) +
             std::to_string(number(1, 60)) + suffix + ")";
    return "(" + term(depth + 1, suffix) + one_of({" + ", " - ", " * ", " & ", " | ", " ^ "}) +
           term(depth + 1, suffix) + ")";
  }

  std::string small_condition(int depth)
  {
    const int kind = number(0, 9);
    if (depth > 3 || kind < 3) {
      if (chance(50)) return std::to_string(number(0, 20));
      return one_of(
          {"defined a", "defined(b)", "defined f", "0x1f", "'a'", "undefined_name", "017"});
    }
    if (kind < 5) return one_of({"-", "~", "!", "+"}) + " " + small_condition(depth + 1);
    if (kind == 5)
      return "(" + small_condition(depth + 1) + " ? " + small_condition(depth + 1) + " : " +
             small_condition(depth + 1) + ")";
    const std::string left = "(" + small_condition(depth + 1) + ") ";
    if (chance(15))
      return left + one_of({"<<", ">>", "/", "%"}) + " " + std::to_string(number(1, 20));
    return left +
           one_of({"+", "-", "*", "<", "<=", ">", ">=", "==", "!=", "&", "^", "|", "&&", "||"}) +
           " " + small_condition(depth + 1);
  }

  std::mt19937 random_;
  int open_ = 0;
  std::map<std::string, int> arity_; ///< as last defined; -1 for an object-like macro
};

// The text without the white space that separates nothing (inside strings there is none).
std::string without_blanks(const std::string &text)
{
  std::string result;
  for (const char c : text)
    if (c != ' ' && c != '\n' && c != '\t') result += c;
  return result;
}

std::string content(const std::filesystem::path &path)
{
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

/// Many programs in one file. Each has a file name of its own, by which its faults are told, and
/// begins with a mark that comes through as it is.
std::string marked(const std::vector<std::string> &programs)
{
  std::string text;
  for (std::size_t i = 0; i < programs.size(); ++i) {
    const std::string number = std::to_string(i);
    text += "#line 1 \"program" + number + "\"\n@" + number + "@\n";
    for (const char *name : {"a", "b", "c", "f", "g", "h", "i"})
      text += std::string("#undef ") + name + "\n";
    text += programs[i];
  }
  return text;
}

// What came out of each program.
std::vector<std::string> parted(const std::string &text, std::size_t count)
{
  std::vector<std::string> results(count);
  std::size_t begin = text.find("@0@");
  for (std::size_t i = 0; i < count && begin != text.npos; ++i) {
    const std::size_t end = text.find("@" + std::to_string(i + 1) + "@", begin);
    results[i] = text.substr(begin, end == text.npos ? end : end - begin);
    begin = end;
  }
  return results;
}

// The numbers of all programs that are named in messages.
std::set<std::size_t> faulty(const std::string &messages)
{
  const std::string word = "program";
  std::set<std::size_t> numbers;
  for (std::size_t at = 0; (at = messages.find(word, at)) != messages.npos; at += word.size())
    numbers.insert(std::strtoul(messages.c_str() + at + word.size(), nullptr, 10));
  return numbers;
}

unsigned chosen_seed()
{
  const char *wanted = std::getenv("TDM_SEED");
  const unsigned seed = wanted != nullptr ? static_cast<unsigned>(std::strtoul(wanted, nullptr, 10))
                                          : std::random_device()();
  std::printf("the seed is %u (TDM_SEED)\n", seed);
  return seed;
}

TEST(Preprocessor, AgreesWithAnother)
{
  if (std::system("cpp --version >/dev/null 2>&1") != 0) GTEST_SKIP() << "there is no cpp here";
  ProgramMaker maker(chosen_seed());
  std::vector<std::string> programs;
  for (int i = 0; i < program_count; ++i) programs.push_back(maker.program());
  std::vector<File> files = {{"main", marked(programs)}};
  for (int i = 0; i < part_count; ++i) files.emplace_back("part" + std::to_string(i), maker.part());

  std::string pattern = (std::filesystem::temp_directory_path() / "tdm_ppXXXXXX").string();
  const std::filesystem::path directory = ::mkdtemp(pattern.data());
  for (const File &file : files)
    std::ofstream(directory / file.first, std::ios::binary) << file.second;
  const std::string run = "cd " + directory.string() + " && cpp -P -std=gnu99 -w main >out 2>err";
  static_cast<void>(std::system(run.c_str())); // fails if any of the programs has a fault
  const auto expected = parted(content(directory / "out"), programs.size());
  const std::set<std::size_t> faults = faulty(content(directory / "err"));
  std::filesystem::remove_all(directory);

  const auto results = parted(tdm_test::preprocess(files).text, programs.size());
  for (std::size_t i = 0; i < programs.size(); ++i) {
    if (faults.contains(i)) continue;
    ASSERT_NE(expected[i], "") << "the marks are lost";
    EXPECT_EQ(without_blanks(results[i]), without_blanks(expected[i])) << programs[i];
    if (HasFailure()) break;
  }
  std::printf("%zu programs of %zu have faults\n", faults.size(), programs.size());
  EXPECT_LT(faults.size(), programs.size() * 3 / 4);
}

} // namespace
