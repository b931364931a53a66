// The harness: a fresh start of all modules for each run, in a directory that goes afterwards.
#include "preprocess.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>

#include "common/failures.h"
#include "preprocessor/c_diag.h"
#include "preprocessor/c_opt.h"
#include "preprocessor/preprocessed_file_input_stream.h"
#include "preprocessor/preprocessor.h"

namespace tdm_test {

namespace {

class Directory {
public:
  Directory()
  {
    std::string pattern = (std::filesystem::temp_directory_path() / "tdm_ppXXXXXX").string();
    path_ = ::mkdtemp(pattern.data());
  }
  Directory(const Directory &) = delete;
  Directory &operator=(const Directory &) = delete;
  ~Directory() { std::filesystem::remove_all(path_); }

  void add(const File &file) const
  {
    const std::filesystem::path path = std::filesystem::path(path_) / file.first;
    std::filesystem::create_directories(path.parent_path());
    if (file.first.back() != '/') std::ofstream(path, std::ios::binary) << file.second;
  }

  /// The name as it is seen from the directory.
  [[nodiscard]] std::string local(const char *name) const
  {
    const std::string text = name == nullptr ? "-" : name;
    return text.starts_with(path_ + "/") ? text.substr(path_.size() + 1) : text;
  }

  [[nodiscard]] const std::string &path() const { return path_; }

private:
  std::string path_;
};

std::string place(const Directory &directory, const tdm_srcpos &position, const Settings &settings)
{
  std::string text;
  if (settings.positions_with_file) text = directory.local(position.file) + ":";
  return text + std::to_string(position.line) + ":" + std::to_string(position.column);
}

std::string text_without(std::string text, const std::string &prefix)
{
  for (std::size_t at; (at = text.find(prefix)) != text.npos;) text.erase(at, prefix.size());
  return text;
}

void describe(const tdm::PpToken &token, const Directory &directory, const Settings &settings,
              std::string &tokens)
{
  if (tdm::is_white(token.number) || token.number == tNEWLINE || token.number == tEOF) return;
  if (!tokens.empty()) tokens += ' ';
  tokens += std::to_string(token.number) + "@" + place(directory, token.position, settings) + "<";
  tokens += token.view();
  tokens += '>';
}

void read(TDMPreprocessedFileInputStream &stream, const Directory &directory,
          const Settings &settings, Outcome &outcome)
{
  for (;;) {
    describe(stream.current_token(), directory, settings, outcome.tokens);
    const std::size_t length = stream.current_token().length;
    if (length == 0) return;
    for (std::size_t i = 0; i < length; ++i) outcome.text += static_cast<char>(stream.getChar());
  }
}

} // namespace

Outcome preprocess(const std::vector<File> &files, const Settings &settings)
{
  Outcome outcome;
  const Directory directory;
  for (const File &file : files) directory.add(file);
  tdm::preprocessor_start();
  for (const std::string &define : settings.defines) option_set_string(tdm::optDEFINE, define);
  option_set_string(tdm::optINCDIR, directory.path());
  if (settings.prepare) settings.prepare();
  std::set<std::string> dependencies;
  try {
    TDMPreprocessedFileInputStream stream(settings.inputs, &dependencies);
    read(stream, directory, settings, outcome);
  } catch (TDMFileException *failure) {
    outcome.failure = failure->text();
    delete failure;
  }
  for (const std::string &name : dependencies)
    outcome.dependencies.push_back(directory.local(name.c_str()));
  for (const tdm::DiagReport &report : tdm::diag_reports()) {
    const tdm_message &message =
        tdm::diag_list(report.letter)[static_cast<std::size_t>(report.index)];
    outcome.messages += place(directory, message.position, settings) + " " + report.letter +
                        std::to_string(message.number) + " " +
                        text_without(message.text, directory.path() + "/") + "\n";
  }
  tdm::preprocessor_end();
  return outcome;
}

Outcome preprocess(const std::string &content)
{
  return preprocess({{"main", content}});
}

std::string squeezed(const std::string &text)
{
  std::string result;
  bool blank = false;
  for (const char c : text) {
    if (c == ' ' || c == '\t' || c == '\n') {
      blank = !result.empty();
      continue;
    }
    if (blank) result += ' ';
    blank = false;
    result += c;
  }
  return result;
}

std::string repeated(const std::string &text, std::size_t count)
{
  std::string result;
  result.reserve(text.size() * count);
  while (count-- > 0) result += text;
  return result;
}

} // namespace tdm_test
