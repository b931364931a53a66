// Reads and rewrites case files; knows nothing of the library.
#include "case_file.h"

#include <fstream>
#include <iterator>
#include <stdexcept>

namespace cases {

namespace {

bool starts_with(const std::string &line, const char *prefix)
{
  return line.rfind(prefix, 0) == 0;
}

std::string behind(const std::string &line, std::size_t prefix)
{
  const std::size_t begin = line.find_first_not_of(' ', prefix);
  return begin == std::string::npos ? "" : line.substr(begin);
}

/// `{{1A}}` and `{{end}}`, see the header.
std::string with_bytes(const std::string &text)
{
  std::string result;
  for (std::size_t at = 0; at < text.size();) {
    if (text.compare(at, 2, "{{") != 0) {
      result += text[at++];
      continue;
    }
    const std::size_t close = text.find("}}", at);
    if (close == std::string::npos) throw std::runtime_error("'{{' without '}}'");
    const std::string word = text.substr(at + 2, close - at - 2);
    if (word == "end") return result;
    result += static_cast<char>(std::stoi(word, nullptr, 16));
    at = close + 2;
  }
  return result;
}

void finish(Input &input, const std::vector<NamedFile> &shared, std::size_t end)
{
  input.end_line = end;
  for (NamedFile &file : input.files)
    while (file.text.size() > 1 && file.text.compare(file.text.size() - 2, 2, "\n\n") == 0)
      file.text.pop_back();
  for (const std::string &request : input.requests)
    if (request == "bytes")
      for (NamedFile &file : input.files) file.text = with_bytes(file.text);
  input.files.insert(input.files.end(), shared.begin(), shared.end());
}

std::vector<std::string> read_lines(const std::filesystem::path &path)
{
  std::ifstream stream(path, std::ios::binary);
  if (!stream) throw std::runtime_error("cannot read " + path.string());
  std::vector<std::string> lines;
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

} // namespace

CaseFile read_case_file(const std::filesystem::path &path)
{
  CaseFile result;
  result.path = path;
  result.lines = read_lines(path);
  const std::string main_name = path.filename().string();

  bool separated = false;
  for (const std::string &line : result.lines) separated |= starts_with(line, "//---");

  std::vector<NamedFile> shared;
  std::vector<NamedFile> *files = &shared;
  const auto begin_input = [&](std::size_t line, std::string title) {
    if (!result.inputs.empty()) finish(result.inputs.back(), shared, line);
    result.inputs.emplace_back();
    Input &input = result.inputs.back();
    input.title = std::move(title);
    input.first_line = line;
    input.files.push_back({main_name, ""});
    files = &input.files;
  };
  if (!separated) begin_input(0, "");

  for (std::size_t i = 0; i < result.lines.size(); ++i) {
    const std::string &line = result.lines[i];
    if (starts_with(line, "//---"))
      begin_input(i, behind(line, 5));
    else if (starts_with(line, "//+++"))
      files->push_back({behind(line, 5), ""});
    else if (starts_with(line, "//!") && !result.inputs.empty())
      result.inputs.back().requests.push_back(behind(line, 3));
    else if (starts_with(line, "//=") && !result.inputs.empty())
      result.inputs.back().expected.push_back(line.size() > 4 ? line.substr(4) : "");
    else if (!files->empty())
      files->back().text += line + "\n";
  }
  finish(result.inputs.back(), shared, result.lines.size());
  return result;
}

void rewrite_case_file(const CaseFile &file, const std::vector<std::vector<std::string>> &outputs)
{
  std::ofstream stream(file.path, std::ios::binary);
  std::size_t at = 0;
  for (std::size_t i = 0; i < file.inputs.size(); ++i) {
    const Input &input = file.inputs[i];
    for (; at < input.first_line; ++at) stream << file.lines[at] << '\n';
    // The expectation stands at the end of its input, before the blank lines that close it.
    std::size_t last = input.end_line;
    while (last > at && file.lines[last - 1].empty()) --last;
    for (; at < last; ++at)
      if (!starts_with(file.lines[at], "//=")) stream << file.lines[at] << '\n';
    for (const std::string &line : outputs[i]) stream << "//= " << line << '\n';
    for (; at < input.end_line; ++at) stream << '\n';
  }
}

bool line_matches(const std::string &expected, const std::string &actual)
{
  const std::size_t tail = expected.find("at=*");
  if (tail != std::string::npos && tail + 4 == expected.size())
    return actual.compare(0, tail, expected, 0, tail) == 0;
  const std::size_t open = expected.find("/*]");
  if (open == std::string::npos) return expected == actual;
  if (actual.compare(0, open + 1, expected, 0, open + 1) != 0) return false;
  const std::size_t close = actual.find_first_not_of("0123456789", open + 1);
  return close != std::string::npos && close > open + 1 &&
         actual.substr(close) == expected.substr(open + 2);
}

} // namespace cases
