// Random programs, preprocessed here and by the C preprocessor of the system: the same tokens must
// come out. What both have in common, and the programs are made of:
//   - object-like and function-like macros, variadic ones included, #undef, # and ##;
//   - calls nested in arguments, calls over several lines, names without a call;
//   - #if, #elif, #else, #endif, #ifdef, #ifndef; signed arithmetic, comparisons, logic, ?: in
//     parentheses, defined;
//   - __LINE__.
// Left out is where they differ on purpose: unsigned constants, pastes that make no token, commas
// in conditions, and numbers of arguments that don't fit (the other one gives up; such programs are
// only run here).
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>

#include "preprocess.h"

namespace {

class ProgramMaker {
public:
  explicit ProgramMaker(unsigned seed) : random_(seed) {}

  std::string program()
  {
    std::string text;
    int open = 0;
    for (int lines = number(5, 40); lines > 0; --lines) {
      const int kind = number(0, 19);
      if (kind < 8)
        text += definition();
      else if (kind < 9)
        text += "#undef " + name() + "\n";
      else if (kind < 13 && ++open > 0)
        text += kind == 9    ? "#ifdef " + name() + "\n"
                : kind == 10 ? "#ifndef " + name() + "\n"
                             : "#if " + condition(0) + "\n";
      else if (kind == 13 && open > 0)
        text += "#elif " + condition(0) + "\n";
      else if (kind < 16 && open > 0 && open-- > 0)
        text += "#endif\n";
      else
        text += line(0) + (chance(9) ? " __LINE__ ;\n" : " ;\n");
    }
    while (open-- > 0) text += "#endif\n";
    return text;
  }

private:
  int number(int low, int high) { return std::uniform_int_distribution<int>(low, high)(random_); }
  bool chance(int percent) { return number(1, 100) <= percent; }
  template <std::size_t n> std::string one_of(const char *const (&texts)[n])
  {
    return texts[static_cast<std::size_t>(number(0, static_cast<int>(n) - 1))];
  }
  std::string name() { return one_of({"a", "b", "c", "f", "g", "h", "i"}); }

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
      else if (chance(12))
        last = name() + "(" + word() + (chance(50) ? "," + word() : "") + ")";
      else
        last = word();
      // Names and numbers behind a name always make one token.
      if (last.size() == 1 && std::isalpha(static_cast<unsigned char>(last[0])) != 0 && chance(15))
        last += std::string(" ## ") +
                (parameters.empty() || chance(50) ? one_of({"1", "q", "a"}) : name());
      text += last + " ";
    }
    return text;
  }

  std::string definition()
  {
    const std::string macro = name();
    std::string text = "#undef " + macro + "\n#define " + macro;
    if (chance(15)) return text + " " + one_of({"", "(1)", "(a,b)", "f (2)", "g g"}) + "\n";
    if (chance(35)) return text + " " + body({}, false) + "\n";
    std::vector<std::string> parameters = {"p", "q", "r"};
    parameters.resize(static_cast<std::size_t>(number(0, 3)));
    std::string list;
    for (const std::string &parameter : parameters) list += (list.empty() ? "" : ",") + parameter;
    if (chance(20)) {
      list += list.empty() ? "..." : ",...";
      parameters.emplace_back("__VA_ARGS__");
    }
    return text + "(" + list + ") " + body(parameters, true) + "\n";
  }

  std::string line(int depth)
  {
    std::string text;
    for (int count = number(1, 5); count > 0; --count) {
      if (depth == 4 || chance(50)) {
        text += word() + " ";
        continue;
      }
      text += name() + (chance(30) ? " (" : chance(10) ? "\n(" : "(");
      for (int arguments = number(0, 3); arguments > 0; --arguments)
        text += line(depth + 1) + (arguments > 1 ? "," : chance(5) ? "\n" : "");
      text += ") ";
    }
    return text;
  }

  std::string condition(int depth)
  {
    const int kind = number(0, 9);
    if (depth > 3 || kind < 3) {
      if (chance(50)) return std::to_string(number(0, 20));
      return one_of(
          {"defined a", "defined(b)", "defined f", "0x1f", "'a'", "undefined_name", "017"});
    }
    if (kind < 5) return one_of({"-", "~", "!", "+"}) + " " + condition(depth + 1);
    if (kind == 5)
      return "(" + condition(depth + 1) + " ? " + condition(depth + 1) + " : " +
             condition(depth + 1) + ")";
    const std::string left = "(" + condition(depth + 1) + ") ";
    if (chance(15))
      return left + one_of({"<<", ">>", "/", "%"}) + " " + std::to_string(number(1, 20));
    return left +
           one_of({"+", "-", "*", "<", "<=", ">", ">=", "==", "!=", "&", "^", "|", "&&", "||"}) +
           " " + condition(depth + 1);
  }

  std::mt19937 random_;
};

// The text without the white space that separates nothing (inside strings there is none).
std::string without_blanks(const std::string &text)
{
  std::string result;
  for (const char c : text)
    if (c != ' ' && c != '\n') result += c;
  return result;
}

// What the system's preprocessor makes of a file; empty if it finds a fault.
bool other_preprocessor(const std::string &file, std::string &text)
{
  FILE *pipe = ::popen(("cpp -P -std=gnu99 -w " + file + " 2>/dev/null").c_str(), "r");
  if (pipe == nullptr) return false;
  std::array<char, 4096> bytes;
  while (const std::size_t count = std::fread(bytes.data(), 1, bytes.size(), pipe))
    text.append(bytes.data(), count);
  return ::pclose(pipe) == 0;
}

TEST(Preprocessor, AgreesWithAnother)
{
  if (std::system("cpp --version >/dev/null 2>&1") != 0) GTEST_SKIP() << "there is no cpp here";
  const char *wanted = std::getenv("TDM_SEED");
  const unsigned seed = wanted != nullptr ? static_cast<unsigned>(std::strtoul(wanted, nullptr, 10))
                                          : std::random_device()();
  std::printf("the seed is %u (TDM_SEED)\n", seed);
  std::string pattern = (std::filesystem::temp_directory_path() / "tdm_ppXXXXXX").string();
  const std::string directory = ::mkdtemp(pattern.data());
  int compared = 0;
  for (unsigned i = 0; i < 150; ++i) {
    const std::string program = ProgramMaker(seed + i).program();
    const std::string file = directory + "/program.c";
    std::ofstream(file) << program;
    const tdm_test::Outcome outcome = tdm_test::preprocess(program);
    std::string expected;
    if (!other_preprocessor(file, expected)) continue;
    ++compared;
    EXPECT_EQ(without_blanks(outcome.text), without_blanks(expected)) << program;
    if (HasFailure()) break;
  }
  EXPECT_GT(compared, 20);
  std::filesystem::remove_all(directory);
}

} // namespace
