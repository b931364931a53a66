// Runs a target over files, over all files of directories, and over the inputs of a corpus: the
// suite's way to see that no finding comes back, and AFL++'s way in.
//
//     fuzz_TARGET FILE_OR_DIRECTORY...
//     fuzz_TARGET --corpus FILE...
//
// A corpus is a text with an input a line, in which `\\`, `\n` and `\xHH` are escapes.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>

#include "target.h"

namespace {

namespace fs = std::filesystem;

void replay(const std::string &text)
{
  // A copy of the exact size, so that the sanitizer sees a read behind its end.
  const std::vector<std::uint8_t> bytes(text.begin(), text.end());
  LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
}

std::string unescaped(const std::string &line)
{
  std::string text;
  for (std::size_t at = 0; at < line.size(); ++at)
    if (line[at] != '\\') {
      text += line[at];
    } else if (line[++at] == 'x') {
      text += static_cast<char>(std::stoi(line.substr(at + 1, 2), nullptr, 16));
      at += 2;
    } else {
      text += line[at] == 'n' ? '\n' : line[at];
    }
  return text;
}

int replay_corpus(const fs::path &path)
{
  std::ifstream file(path);
  int count = 0;
  for (std::string line; std::getline(file, line); ++count) replay(unescaped(line));
  return count;
}

int replay_file(const fs::path &path)
{
  std::ifstream file(path, std::ios::binary);
  replay({std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()});
  return 1;
}

std::vector<fs::path> files_of(const fs::path &path)
{
  if (!fs::is_directory(path)) return {path};
  std::vector<fs::path> files;
  for (const auto &entry : fs::recursive_directory_iterator(path))
    if (entry.is_regular_file()) files.push_back(entry.path());
  std::sort(files.begin(), files.end());
  return files;
}

} // namespace

int main(int argc, char **argv)
{
  const bool corpus = argc > 1 && std::string_view(argv[1]) == "--corpus";
  std::vector<fs::path> files;
  // The targets may work in a directory of their own.
  for (int i = corpus ? 2 : 1; i < argc; ++i)
    for (const fs::path &file : files_of(fs::absolute(argv[i]))) files.push_back(file);
  int count = 0;
  for (const fs::path &file : files) count += corpus ? replay_corpus(file) : replay_file(file);
  std::cout << count << " inputs\n";
  return count > 0 ? 0 : 1;
}
