// The command line: verbs, their options, and their help with an example each. A run sets up the
// options of its own verb alone; whoever wants to know all of them (manual, completion) asks for
// them as JSON.
#include "options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <iostream>
#include <limits>

#include "option_list.h"
#include "usage_error.h"

namespace tool {

namespace {

std::optional<double> seconds_of(std::string_view text)
{
  constexpr double most = 1e9;
  double seconds = 0;
  const char *end = text.data() + text.size();
  const auto [read_to, error] = std::from_chars(text.data(), end, seconds);
  const bool fits = error == std::errc() && read_to == end && seconds >= 0 && seconds <= most;
  return fits ? std::optional(seconds) : std::nullopt;
}

/// An option with a value out of a few, which `choices` holds as "one|two".
void add_choice(CLI::App &verb, const char *name, std::string &value, const char *choices,
                const char *does)
{
  const auto refuse_others = [choices](const std::string &given) {
    const bool fits =
        ("|" + std::string(choices) + "|").find("|" + given + "|") != std::string::npos;
    return fits && given.find('|') == std::string::npos ? std::string()
                                                        : "\"" + given + "\" is none of " + choices;
  };
  verb.add_option(name, value, does)->type_name(choices)->check(refuse_others);
}

/// What no description may need more of than the user allows. The numbers are read here, so that
/// what is no such number is refused by name.
void add_limits(CLI::App &verb, Options &options)
{
  const auto is_depth = [](const std::string &given) {
    const std::optional<int64_t> depth = parse_number(given);
    const bool fits = depth && *depth <= std::numeric_limits<int32_t>::max();
    return fits ? std::string() : "\"" + given + "\" is no number from 0 to 2^31 - 1";
  };
  const auto is_time = [](const std::string &given) {
    return seconds_of(given) ? std::string() : "\"" + given + "\" is no number of seconds";
  };
  const auto is_size = [](const std::string &given) {
    return parse_number(given) ? std::string() : "\"" + given + "\" is no size";
  };
  const auto add = [&](const char *name, const char *value, auto check, auto set,
                       const char *does) {
    verb.add_option_function<std::string>(name, set, does)->type_name(value)->check(check);
  };
  Options *to = &options;
  add(
      "--max-include-depth", "N", is_depth,
      [to](const std::string &given) {
        to->max_include_depth = static_cast<int>(*parse_number(given));
      },
      "How deep #include may nest: 200 is the default, 0 for any depth");
  add(
      "--timeout", "SECONDS", is_time,
      [to](const std::string &given) { to->timeout = *seconds_of(given); },
      "Stop after that time: 60 s is the default, 0 for no end. Waiting for\n"
      "whoever takes the output doesn't count");
  add(
      "--max-memory", "SIZE", is_size,
      [to](const std::string &given) { to->max_memory = *parse_number(given); },
      "Stop when more memory is needed, in bytes or with k, m or g behind\n"
      "the number: 2g is the default, 0 for all that there is");
}

/// What every verb that reads a description takes. A repeated option takes one value each time, so
/// that files may follow.
void add_input(CLI::App &verb, Options &options)
{
  verb.add_option("FILE", options.files, "Descriptions; read in this order as one input")
      ->required()
      ->type_name("");
  verb.add_option("-I,--include", options.include_dirs, "Look for #include files in DIR, too")
      ->type_name("DIR")
      ->allow_extra_args(false);
  verb.add_option("-D,--define", options.defines, "Define a macro; its value is 1 if none is given")
      ->type_name("NAME[=VALUE]")
      ->allow_extra_args(false);
  add_choice(verb, "--color", options.color, "auto|always|never",
             "Colors in messages; auto, the default, is for a terminal if NO_COLOR\n"
             "isn't set");
  add_limits(verb, options);
}

void add_check(CLI::App &verb, Options &options)
{
  add_input(verb, options);
  verb.add_flag("--each", options.each,
                "Each FILE is a description of its own; a last line sums up");
  add_choice(verb, "--format", options.format, "text|json|sarif|github",
             "How to report: for people, on the standard error output (the default);\n"
             "as JSON; as SARIF 2.1.0; as commands for a workflow of GitHub. The\n"
             "last three go to the standard output");
  CLI::Option *depfile = verb.add_option("--depfile", options.depfile,
                                         "Write the files that were read to FILE, as a Makefile "
                                         "rule")
                             ->type_name("FILE");
  verb.add_option("--target", options.target,
                  "What depends on them in that rule; by default the FILE of --depfile")
      ->type_name("NAME")
      ->needs(depfile);
  verb.callback([&options] { options.verb = Verb::check; });
  verb.footer("Ends with 1 if there are errors, with 0 if there are warnings at the most.\n"
              "Examples:\n"
              "  tdm check -D FLASH_KB=16384 chip.tdm\n"
              "  tdm check --each --format sarif boards/*.tdm > tdm.sarif\n"
              "  tdm check --depfile chip.d --target chip.stamp chip.tdm");
}

void add_explain(CLI::App &verb, Options &options)
{
  verb.add_option("NUMBER", options.numbers,
                  "Messages, such as E948 or 948; all in short if none is given")
      ->type_name("");
  add_choice(verb, "--format", options.format, "text|json|markdown",
             "How to write it; text is the default");
  verb.callback([&options] { options.verb = Verb::explain; });
  verb.footer("Example:\n"
              "  tdm explain E948");
}

void add_preprocess(CLI::App &verb, Options &options)
{
  add_input(verb, options);
  verb.add_flag("-P,--no-line-markers", options.no_markers,
                "Leave out the lines that tell where the text is from, and empty ones");
  verb.callback([&options] { options.verb = Verb::preprocess; });
  verb.footer(
      "Writes what is left of the files for the language, as cpp does: each token on the\n"
      "line where it stands, and before other places a line # LINE \"FILE\", with 1 behind\n"
      "it where a file is entered and 2 where one goes on. Comments are a blank.\n"
      "Examples:\n"
      "  tdm preprocess -D FLASH_KB=64 chip.tdm\n"
      "  tdm preprocess -P chip.tdm | less");
}

void add_show(CLI::App &verb, Options &options)
{
  add_input(verb, options);
  verb.add_flag("--json", options.json, "Write JSON; its schema_version tells the form");
  verb.add_flag("--origin", options.origin, "Tell where each part was written: file:line:column");
  verb.callback([&options] { options.verb = Verb::show; });
  verb.footer("Example:\n"
              "  tdm show chip.tdm\n"
              "  tdm show --json chip.tdm | jq '.processors[].memories[].full_name'");
}

void add_map(CLI::App &verb, Options &options)
{
  add_input(verb, options);
  verb.add_option("--space", options.space,
                  "The address is one of a space: show every route to memory, and where\n"
                  "else it shows up. NAME is processor:core:space, or the plain name if\n"
                  "there is one such space")
      ->type_name("NAME");
  verb.add_option("--memory", options.memory,
                  "The address is one of a memory: show every route back to spaces and\n"
                  "buses. NAME is processor:memory, or the plain name")
      ->type_name("NAME");
  verb.add_option("--at", options.at,
                  "Where, in units (MAUs) of the space or memory; END isn't part of the\n"
                  "span. Numbers are decimal, hex (0x10) or octal (010), and k, m, g\n"
                  "multiply by 1024, 1024^2, 1024^3. Left out: a table of the space, of\n"
                  "all spaces, or the whole memory")
      ->type_name("[BANK:]ADDRESS[.BIT][..END]");
  verb.add_option("--unit", options.unit, "Show addresses in units of so many bits")
      ->type_name("BITS")
      ->check(CLI::Range(1, 65535).description(""));
  verb.add_flag("--json", options.json, "Write JSON; its schema_version tells the form");
  verb.callback([&options, &verb] {
    options.verb = Verb::map;
    const bool has_place = verb.count("--at") > 0;
    for (const char *option : {"--space", "--memory"})
      if (verb.count(option) > 0 && verb.get_option(option)->as<std::string>().empty())
        throw UsageError{std::string("map: ") + option + " is without a name"};
    if (options.space.empty() && options.memory.empty() && has_place)
      throw UsageError{"map: --space or --memory is needed"};
    if (!options.space.empty() && !options.memory.empty())
      throw UsageError{"map: --space and --memory don't go together"};
    if (has_place) options.place = parse_place(options.at);
  });
  verb.footer("Ends with 3 if there is no route. Addresses are shown in the form that --at takes.\n"
              "Of a span, each route tells the part that it carries, and <unused> is what none\n"
              "does.\n"
              "Examples:\n"
              "  tdm map chip.tdm --space linear\n"
              "  tdm map chip.tdm --space linear --at 0x10000100\n"
              "  tdm map chip.tdm --space program --at 0x100 --unit 8\n"
              "  tdm map chip.tdm --space chip:cpu:linear --at 3:0x4000..0x4100\n"
              "  tdm map chip.tdm --memory flash --at 0..16k");
}

/// What the verbs that walk a space take.
void add_walk(CLI::App &verb, Options &options)
{
  verb.add_option("--space", options.space,
                  "Which space: processor:core:space, or the plain name if there is one\n"
                  "such space")
      ->type_name("NAME");
  verb.add_option("--exists", options.exists, "There is a section of that name, for conditions")
      ->type_name("NAME")
      ->allow_extra_args(false);
  verb.add_flag("--json", options.json, "Write JSON; its schema_version tells the form");
}

void add_layout(CLI::App &verb, Options &options)
{
  add_input(verb, options);
  add_walk(verb, options);
  verb.callback([&options] { options.verb = Verb::layout; });
  verb.footer("Shows the definitions of the space, then its layouts with the branches that\n"
              "conditions choose. Addresses and sizes are in units (MAUs) of the space.\n"
              "Example:\n"
              "  tdm layout chip.tdm --space linear --exists .data");
}

void add_select(CLI::App &verb, Options &options)
{
  add_input(verb, options);
  add_walk(verb, options);
  verb.add_option("--sections", options.sections,
                  "The sections to choose from; - for the standard input, the default")
      ->type_name("LIST|-");
  verb.callback([&options] { options.verb = Verb::select; });
  verb.footer("A line of the list holds the name of a section and the letters of its attributes,\n"
              "of r, w, x, i, s, b and p. # begins a remark; quotes enclose a name with blanks.\n"
              "The sections of the list exist, for conditions.\n"
              "Example:\n"
              "  echo '.text rx' | tdm select chip.tdm --space linear");
}

/// FILE takes all words, and hands the last one on.
void add_expression(CLI::App &verb, Options &options)
{
  verb.remove_option(verb.get_option("FILE"));
  const auto split = [&verb, &options](const std::vector<std::string> &words) {
    options.files = words;
    if (words.size() < 2) return;
    options.files.pop_back();
    verb.get_option("EXPRESSION")->add_result(words.back());
  };
  verb.add_option_function<std::vector<std::string>>(
          "FILE", split, "Descriptions; read in this order as one input")
      ->required()
      ->type_name("");
  verb.add_option("EXPRESSION", options.expression,
                  "What to calculate, written as in a section layout of the space")
      ->required()
      ->type_name("");
}

void add_eval(CLI::App &verb, Options &options)
{
  add_input(verb, options);
  add_expression(verb, options);
  add_walk(verb, options);
  verb.add_option("--symbol", options.symbols,
                  "A symbol and its value, a number as a description has it, or one with\n"
                  "- before it")
      ->type_name("NAME=VALUE")
      ->allow_extra_args(false);
  verb.add_option("--defined", options.defined,
                  "That symbol is defined, though its value isn't known. defined() is 0\n"
                  "in arithmetic all the same; whether the expression names such a symbol\n"
                  "is told behind the value")
      ->type_name("NAME")
      ->allow_extra_args(false);
  verb.callback([&options] { options.verb = Verb::eval; });
  verb.footer(
      "Names are the parameters of the processor's derivative and its memories. No macros: they\n"
      "end with the description. -- goes before an expression that begins with -.\n"
      "Addresses are shown in units (MAUs) of the space, sizes of a memory in its own.\n"
      "Ends with 1 if the expression can't be read or has no value.\n"
      "Examples:\n"
      "  tdm eval chip.tdm --space linear 'addressof(mem:flash) + 64k - 4'\n"
      "  tdm eval chip.tdm --space linear --symbol _end=0x20000400 '0x20002000 - \"_end\"'");
}

void add_draw(CLI::App &verb, Options &options)
{
  add_input(verb, options);
  verb.add_option("-o,--output", options.output,
                  "Write the picture to FILE; - for the standard output, the default")
      ->type_name("FILE|-");
  verb.add_flag("--html", options.html, "Write a page of HTML that stands alone, instead of SVG");
  verb.add_option("--processor", options.processor, "Draw one processor alone")->type_name("NAME");
  verb.callback([&options] { options.verb = Verb::draw; });
  verb.footer("A column for each space and bus, lined up where they share addresses; what has a\n"
              "name, an address or a line can be pointed at for more.\n"
              "Examples:\n"
              "  tdm draw chip.tdm -o chip.svg\n"
              "  tdm draw --html chip.tdm > chip.html");
}

void add_deps(CLI::App &verb, Options &options)
{
  add_input(verb, options);
  verb.add_option("--target", options.target,
                  "What depends on the files; by default the first FILE, ending in .d")
      ->type_name("NAME");
  verb.callback([&options] { options.verb = Verb::deps; });
  verb.footer("Example:\n"
              "  tdm deps --target firmware.elf chip.tdm > chip.d");
}

struct VerbEntry {
  const char *name;
  const char *does;
  void (*add)(CLI::App &verb, Options &options);
  const char *example; ///< for the help of the tool as a whole
};
constexpr VerbEntry verbs[] = {
    {"check", "Read a description and report what is wrong", add_check, "tdm check chip.tdm"},
    {"preprocess", "Write the text that is left behind the preprocessor", add_preprocess,
     "tdm preprocess chip.tdm"},
    {"show", "Show the model: processors, spaces and memories", add_show, "tdm show chip.tdm"},
    {"map", "Show where addresses lead, and what a space holds", add_map,
     "tdm map chip.tdm --space linear --at 0x10000100"},
    {"layout", "Show what is to be laid out in a space, and where", add_layout,
     "tdm layout chip.tdm --space linear"},
    {"select", "Show which selection takes which section", add_select,
     "tdm select chip.tdm --space linear --sections sections.txt"},
    {"eval", "Calculate an expression in the scope of a space", add_eval,
     "tdm eval chip.tdm --space linear 'sizeof(mem:flash) / 2'"},
    {"draw", "Draw the memory map as SVG, or as a page of HTML", add_draw,
     "tdm draw chip.tdm -o chip.svg"},
    {"deps", "List the files that are read, as a Makefile rule", add_deps, "tdm deps chip.tdm"},
    {"explain", "Tell what a message of the preprocessor means", add_explain, "tdm explain E948"},
};

std::string verb_list()
{
  std::string list;
  for (const VerbEntry &verb : verbs) {
    if (!list.empty()) list += &verb == std::end(verbs) - 1 ? " or " : ", ";
    list += verb.name;
  }
  return list;
}

std::string general_footer()
{
  std::string text = "Examples:\n";
  for (const VerbEntry &verb : verbs) text.append("  ").append(verb.example) += '\n';
  return text + "\nExit codes:\n"
                "  0  in order\n"
                "  1  errors in the description\n"
                "  2  wrong usage\n"
                "  3  no route (map)\n"
                "  4  #include nests deeper than --max-include-depth\n"
                "  5  not done within --timeout\n"
                "  6  more memory needed than --max-memory, or than there is\n"
                "  7  a fault of tdm itself";
}

bool is_verb(std::string_view word)
{
  return std::any_of(std::begin(verbs), std::end(verbs),
                     [&](const VerbEntry &verb) { return verb.name == word; });
}

/// The parser of the command line would call a word that is no verb a missing one.
void require_verb(int argc, char **argv)
{
  if (argc < 2) throw UsageError{"a verb is needed: " + verb_list()};
  const std::string first = argv[1];
  if (!first.starts_with('-') && !is_verb(first))
    throw UsageError{"there is no verb \"" + first + "\"; there are " + verb_list()};
}

constexpr const char *version_text = "tdm " TDM_TOOL_VERSION;

/// All verbs with their options; or those of one verb, which is all that a run of it needs.
void set_up(CLI::App &app, Options &options, std::string_view only_verb)
{
  app.set_version_flag("--version", version_text, "Print the version and exit");
  app.set_help_flag("-h,--help", "Print this help and exit");
  app.require_subcommand(1);
  app.get_formatter()->label("SUBCOMMAND", "VERB");
  const bool is_run = is_verb(only_verb);
  for (const VerbEntry &entry : verbs)
    if (!is_run || only_verb == entry.name)
      entry.add(*app.add_subcommand(entry.name, entry.does)->group("Verbs"), options);
  if (!is_run) app.footer(general_footer());
}

int refuse(const std::string &text)
{
  std::cerr << "tdm: error: " << text << "\nRun tdm --help, or tdm VERB --help.\n";
  return exit_usage;
}

} // namespace

Command read_command_line(int argc, char **argv)
{
  const std::string_view first = argc > 1 ? argv[1] : "";
  if (first == "--version" && argc == 2) {
    std::cout << version_text << '\n';
    return {std::nullopt, exit_ok};
  }
  Options options;
  CLI::App app("Reads target descriptions: checks them, shows them, translates addresses and "
               "selects sections.",
               "tdm");
  set_up(app, options, first);
  if (first == "--dump-options") {
    write_option_list(app, std::cout);
    return {std::nullopt, exit_ok};
  }
  try {
    require_verb(argc, argv);
    app.parse(argc, argv);
  } catch (const CLI::Success &answer) {
    return {std::nullopt, app.exit(answer)};
  } catch (const CLI::ParseError &error) {
    return {std::nullopt, refuse(error.what())};
  } catch (const UsageError &error) {
    return {std::nullopt, refuse(error.text)};
  }
  return {std::move(options), exit_ok};
}

} // namespace tool
