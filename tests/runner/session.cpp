// Carries out the requests of an input. All of the library's state begins and ends in run_input().
#include "session.h"

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <functional>
#include <map>
#include <sstream>
#include <stdexcept>

#include <tdm_c/tdm.h>
#include <tdm_c/tdm_inspect.h>

#include "read_space.h"
#include "render.h"

namespace cases {

namespace {

namespace fs = std::filesystem;

/// An array of the caller: texts that live as long as the object.
class Texts {
public:
  explicit Texts(std::vector<std::string> texts) : texts_(std::move(texts))
  {
    for (const std::string &text : texts_) pointers_.push_back(text.c_str());
    const auto count = static_cast<uint32_t>(pointers_.size());
    array_ = {sizeof(char *), count, count, pointers_.data()};
  }
  Texts(const Texts &) = delete;
  Texts &operator=(const Texts &) = delete;

  [[nodiscard]] const tdm_arr *array() const { return &array_; }

private:
  std::vector<std::string> texts_;
  std::vector<const char *> pointers_;
  tdm_arr array_;
};

std::vector<std::string> words_of(const std::string &text)
{
  std::istringstream stream(text);
  std::vector<std::string> words;
  for (std::string word; stream >> word;) words.push_back(word);
  return words;
}

/// `0x10`, `0x10.4`, `0x10@2`, `0x10.4@2`
tdm_addressvalue read_address(const std::string &text, int mau)
{
  char *rest = nullptr;
  tdm_addressvalue address = {std::strtoll(text.c_str(), &rest, 0), 0, mau, -1};
  if (*rest == '.') address.bits = static_cast<int32_t>(std::strtol(rest + 1, &rest, 10));
  if (*rest == '@') address.bank = static_cast<int32_t>(std::strtol(rest + 1, &rest, 10));
  if (*rest != '\0') throw std::runtime_error("bad address " + text);
  return address;
}

/// What a translation starts from: an address, or an interval if `is_interval`.
struct Query {
  bool is_interval = false;
  tdm_addressvalue address{};
  tdm_interval interval{};
};

Query read_query(const std::vector<std::string> &words, int mau)
{
  Query query;
  tdm_interval &interval = query.interval;
  interval.width = 1;
  interval.bits = 1;
  interval.priority = interval.exec_priority = 0x10000;
  for (std::size_t i = 3; i < words.size(); ++i) {
    const std::string &word = words[i];
    const std::size_t equals = word.find('=');
    const std::string key = word.substr(0, equals);
    const char *value = word.c_str() + equals + 1;
    char *rest = nullptr;
    if (key == "mau")
      mau = std::atoi(value);
    else if (key == "mask") {
      interval.width = static_cast<int32_t>(std::strtol(value, &rest, 10));
      interval.bits = std::strtoull(rest + 1, nullptr, 0);
    } else if (key == "priority")
      interval.priority = static_cast<int32_t>(std::strtol(value, nullptr, 0));
    else if (key == "exec")
      interval.exec_priority = static_cast<int32_t>(std::strtol(value, nullptr, 0));
    else
      throw std::runtime_error("bad option " + word);
  }
  const std::string &what = words.at(2);
  query.is_interval = what.front() == '[';
  if (!query.is_interval) {
    query.address = read_address(what, mau);
    return query;
  }
  const std::size_t comma = what.find(',');
  interval.low = read_address(what.substr(1, comma - 1), mau);
  interval.high = read_address(what.substr(comma + 1, what.size() - comma - 2), mau);
  return query;
}

using SpaceMap = std::pair<decltype(&tdm_space_map_interval_forward),
                           decltype(&tdm_space_map_addressvalue_forward)>;
using MemoryMap = std::pair<decltype(&tdm_memory_map_interval_backward),
                            decltype(&tdm_memory_map_addressvalue_backward)>;

const std::map<std::string, SpaceMap> space_maps = {
    {"forward", {tdm_space_map_interval_forward, tdm_space_map_addressvalue_forward}},
    {"forward_to_memory",
     {tdm_space_map_interval_forward_to_memory, tdm_space_map_addressvalue_forward_to_memory}},
};
const std::map<std::string, MemoryMap> memory_maps = {
    {"backward", {tdm_memory_map_interval_backward, tdm_memory_map_addressvalue_backward}},
    {"backward_to_bus",
     {tdm_memory_map_interval_backward_to_bus, tdm_memory_map_addressvalue_backward_to_bus}},
    {"backward_to_space",
     {tdm_memory_map_interval_backward_to_space, tdm_memory_map_addressvalue_backward_to_space}},
};

class Session {
public:
  Session(const Input &input, const fs::path &directory) : input_(input), directory_(directory) {}

  Lines run(Before before)
  {
    start();
    if (before == Before::failed_parse) fail_first();
    if (!has("none") && !has("parse")) parse(words_for("files"));
    for (const std::string &request : input_.requests) answer(request);
    tdm_spec_free(spec_);
    tdm_cleanup();
    return std::move(out_);
  }

private:
  void start()
  {
    std::vector<std::string> defines;
    for (const std::string &request : input_.requests)
      if (request.rfind("define ", 0) == 0) defines.push_back(request.substr(7));
    tdm_init(Texts(defines).array());
    // A known text as last error: a parse that succeeds must leave it.
    tdm_parse_file(Texts({}).array(), Texts({}).array());
    sentinel_ = tdm_get_last_error();
  }

  void fail_first()
  {
    const fs::path broken = directory_ / "broken.tdm";
    std::ofstream(broken) << "#define LEAKED memory\n#if 1\n#endif\nLEAKED m1 { size = ; }\n";
    if (tdm_parse_file(Texts({broken.string()}).array(), Texts({}).array()) != nullptr)
      out_.push_back("the broken file was accepted");
    // Definitions of the caller are read, and refused, in each parse.
    shown_errors_ = static_cast<std::size_t>(tdm_get_error_count());
    shown_warnings_ = static_cast<std::size_t>(tdm_get_warning_count());
    start_again();
  }

  /// Makes the last error text known again.
  void start_again()
  {
    tdm_parse_file(Texts({}).array(), Texts({}).array());
    sentinel_ = tdm_get_last_error();
  }

  [[nodiscard]] bool has(const std::string &word) const
  {
    for (const std::string &request : input_.requests)
      if (request == word || request.rfind(word + " ", 0) == 0) return true;
    return false;
  }

  /// The words behind the first request of that name.
  [[nodiscard]] std::vector<std::string> words_for(const std::string &name) const
  {
    for (const std::string &request : input_.requests)
      if (request.rfind(name + " ", 0) == 0) return words_of(request.substr(name.size()));
    return {};
  }

  void parse(std::vector<std::string> names)
  {
    if (names.empty()) names.push_back(input_.files.front().name);
    for (std::string &name : names)
      name = name.front() == '=' ? name.substr(1) : (directory_ / name).string();
    std::vector<std::string> dirs;
    for (const std::string &request : input_.requests)
      if (request.rfind("dir ", 0) == 0) dirs.push_back((directory_ / request.substr(4)).string());
    if (parses_++ > 0) {
      dirs.clear(); // those of the first parse stay
      start_again();
    }
    tdm_spec_free(spec_);
    spec_ = tdm_parse_file(Texts(names).array(), Texts(dirs).array());
    const char *last_error = tdm_get_last_error();
    // Equal texts have one address, so the pointers tell.
    const bool untouched = last_error == sentinel_;
    if (spec_ != nullptr)
      say("ok");
    else if (untouched)
      say("null");
    if (!untouched) say(std::string("error ") + last_error);
    messages();
  }

  void messages()
  {
    const std::vector<tdm_message> errors = take<tdm_message>(tdm_get_errors());
    const std::vector<tdm_message> warnings = take<tdm_message>(tdm_get_warnings());
    if (tdm_get_error_count() != static_cast<int>(errors.size()) ||
        tdm_get_warning_count() != static_cast<int>(warnings.size()))
      say("the counters and the lists differ");
    for (std::size_t i = shown_errors_; i < errors.size(); ++i) message('E', errors[i]);
    for (std::size_t i = shown_warnings_; i < warnings.size(); ++i) message('W', warnings[i]);
    shown_errors_ = errors.size();
    shown_warnings_ = warnings.size();
  }

  void message(char letter, const tdm_message &message)
  {
    std::string line = letter + std::to_string(message.number) + " ";
    if (message.position.file != nullptr)
      line += "[\"" + std::string(message.position.file) + "\" " +
              std::to_string(message.position.line) + "/" +
              std::to_string(message.position.column) + "] ";
    say(line + message.text + (message.note == -1 ? "" : " (note)"));
    if (message.note != -1) note(message.note);
  }

  /// The note of that index among all notes; the list of notes has no accessor in tdm.h.
  void note(int index)
  {
    tdm_inspect_message message;
    for (int i = 0; tdm_inspect_get_message(i, &message) == 1; ++i)
      if (message.letter == 'I' && index-- == 0)
        say("  I" + std::to_string(message.number) + " [\"" + message.position.file + "\" " +
            std::to_string(message.position.line) + "/" + std::to_string(message.position.column) +
            "] " + message.text);
  }

  void answer(const std::string &request)
  {
    const std::vector<std::string> words = words_of(request);
    if (words.empty()) throw std::runtime_error("a request without words");
    const std::string &name = words.front();
    if (name == "parse") return parse({words.begin() + 1, words.end()});
    if (name == "define" || name == "dir" || name == "files" || name == "bytes" || name == "none" ||
        name == "once")
      return;
    if (name == "last_error") return say(std::string("last error ") + tdm_get_last_error());
    if (spec_ == nullptr) return;
    if (name == "model") return render_to_out();
    say("? " + request);
    const int64_t failures = tdm_inspect_failure_count();
    if (name == "find")
      find(words);
    else if (name == "set_literals")
      tdm_space_set_address_literal_space(space_of(words.at(1)),
                                          words.at(2) == "null" ? nullptr : space_of(words.at(2)));
    else if (name == "walk")
      walk(words);
    else if (name == "read")
      for (const std::string &line :
           read_space(space_of(words.at(1)), {words.begin() + 2, words.end()}))
        say(line);
    else if (name == "valid")
      valid(words);
    else
      translate(words);
    if (tdm_inspect_failure_count() != failures)
      say(std::string("  error ") + tdm_get_last_error());
  }

  void render_to_out()
  {
    Lines lines;
    render_model(spec_, lines);
    for (const std::string &line : lines) say(line);
  }

  [[nodiscard]] tdm_core *core_of(const std::string &full_name) const
  {
    const std::size_t colon = full_name.find(':');
    tdm_processor *processor = tdm_spec_get_processor(spec_, full_name.substr(0, colon).c_str());
    if (processor == nullptr) throw std::runtime_error("no processor for " + full_name);
    const std::size_t end = full_name.find(':', colon + 1);
    tdm_core *core =
        tdm_processor_get_core(processor, full_name.substr(colon + 1, end - colon - 1).c_str());
    if (core == nullptr) throw std::runtime_error("no core for " + full_name);
    return core;
  }

  [[nodiscard]] tdm_space *space_of(const std::string &full_name) const
  {
    tdm_space *space = tdm_core_get_space_by_name(core_of(full_name), full_name.c_str());
    if (space == nullptr) throw std::runtime_error("no space " + full_name);
    return space;
  }

  [[nodiscard]] tdm_memory *memory_of(const std::string &full_name) const
  {
    tdm_memory *memory = tdm_spec_get_memory(spec_, full_name.c_str());
    if (memory == nullptr) {
      tdm_processor *processor =
          tdm_spec_get_processor(spec_, full_name.substr(0, full_name.find(':')).c_str());
      if (processor != nullptr) memory = tdm_processor_get_memory(processor, full_name.c_str());
    }
    if (memory == nullptr) throw std::runtime_error("no memory " + full_name);
    return memory;
  }

  /// find processor <name> | memory <name> | memory_in <processor> <name> | core <processor> <name>
  /// | space <core> <name> | id <core> <number>
  void find(const std::vector<std::string> &words)
  {
    const std::string &kind = words.at(1);
    // A name may hold blanks: the last word and what stands behind it in the request.
    const std::size_t at = kind == "processor" || kind == "memory" ? 2 : 3;
    std::string name = words.at(at);
    for (std::size_t i = at + 1; i < words.size(); ++i) name += " " + words[i];
    const char *key = name.c_str();
    const char *found = nullptr;
    if (kind == "processor") {
      if (tdm_processor *processor = tdm_spec_get_processor(spec_, key))
        found = tdm_processor_get_name(processor);
    } else if (kind == "memory") {
      if (tdm_memory *memory = tdm_spec_get_memory(spec_, key))
        found = tdm_memory_get_full_name(memory);
    } else if (kind == "memory_in" || kind == "core") {
      tdm_processor *processor = tdm_spec_get_processor(spec_, words.at(2).c_str());
      tdm_memory *memory = kind == "core" ? nullptr : tdm_processor_get_memory(processor, key);
      tdm_core *core = kind == "core" ? tdm_processor_get_core(processor, key) : nullptr;
      if (memory != nullptr) found = tdm_memory_get_full_name(memory);
      if (core != nullptr) found = tdm_core_get_full_name(core);
    } else {
      tdm_core *core = core_of(words.at(2));
      tdm_space *space = kind == "id" ? tdm_core_get_space_by_id(core, std::atoll(key))
                                      : tdm_core_get_space_by_name(core, key);
      if (space != nullptr) found = tdm_space_get_full_name(space);
    }
    say(std::string("  ") + (found == nullptr ? "null" : found));
  }

  /// Calls nothing back: what is seen is whether the rules of the groups agree.
  void walk(const std::vector<std::string> &words)
  {
    const tdm_walk_callbacks callbacks{};
    tdm_space_walk(space_of(words.at(1)), &callbacks, nullptr, nullptr, nullptr);
  }

  void valid(const std::vector<std::string> &words)
  {
    tdm_interval interval;
    tdm_space_get_valid_interval(space_of(words.at(1)), &interval);
    say("  " + render(interval));
  }

  void translate(const std::vector<std::string> &words)
  {
    const std::string &name = words.front();
    tdm_arr *results = nullptr;
    int found = 0;
    bool is_interval = false;
    if (const auto entry = space_maps.find(name); entry != space_maps.end()) {
      tdm_space *space = space_of(words.at(1));
      const Query query = read_query(words, tdm_space_get_mausize(space));
      is_interval = query.is_interval;
      found = is_interval ? entry->second.first(space, &query.interval, &results)
                          : entry->second.second(space, &query.address, &results);
    } else if (const auto back = memory_maps.find(name); back != memory_maps.end()) {
      tdm_memory *memory = memory_of(words.at(1));
      const Query query = read_query(words, tdm_memory_get_mausize(memory));
      is_interval = query.is_interval;
      found = is_interval ? back->second.first(memory, &query.interval, &results)
                          : back->second.second(memory, &query.address, &results);
    } else {
      throw std::runtime_error("unknown request " + name);
    }
    if ((found == 1) != (results->count > 0)) say("  the result and the array disagree");
    if (results->count == 0) say("  no route");
    if (is_interval)
      show(name, take<tdm_map_interval_result>(results),
           [](const tdm_map_interval_result &result) { return render(result.interval); });
    else
      show(name, take<tdm_map_address_result>(results),
           [](const tdm_map_address_result &result) { return render(result.address); });
  }

  template <typename Result, typename Render>
  void show(const std::string &request, const std::vector<Result> &results, Render render_result)
  {
    for (const Result &result : results) {
      std::string object;
      if (request == "forward")
        object = name_of(static_cast<tdm_mapdestination *>(result.object));
      else if (request == "forward_to_memory")
        object = "memory " + name_of(static_cast<tdm_memory *>(result.object));
      else
        object = name_of(static_cast<tdm_mapsource *>(result.object));
      say("  " + object + " " + render_result(result) + (result.reserved ? " reserved" : ""));
    }
  }

  /// Adds a line of output, without the directory, which differs from run to run.
  void say(std::string line)
  {
    const std::string prefix = directory_.string() + "/";
    for (std::size_t at = 0; (at = line.find(prefix, at)) != std::string::npos;)
      line.erase(at, prefix.size());
    out_.push_back(std::move(line));
  }

  const Input &input_;
  const fs::path &directory_;
  const char *sentinel_ = nullptr;
  tdm_spec *spec_ = nullptr;
  int parses_ = 0;
  std::size_t shown_errors_ = 0;
  std::size_t shown_warnings_ = 0;
  Lines out_;
};

} // namespace

Lines run_input(const Input &input, const fs::path &directory, Before before)
{
  return Session(input, directory).run(before);
}

void write_files(const Input &input, const fs::path &directory)
{
  fs::remove_all(directory);
  fs::create_directories(directory);
  for (const NamedFile &file : input.files) {
    fs::create_directories((directory / file.name).parent_path());
    std::ofstream(directory / file.name, std::ios::binary) << file.text;
  }
}

} // namespace cases
