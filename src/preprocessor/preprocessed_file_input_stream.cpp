// For now the files come out as they stand, one after the other: found by the rules of the file
// search, but not preprocessed.
#include "preprocessor/preprocessed_file_input_stream.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "common/failures.h"
#include "preprocessor/c_opt.h"
#include "preprocessor/string_pool.h"

TDMPreprocessedFileInputStream::TDMPreprocessedFileInputStream(
    const std::vector<std::string> &files, std::set<std::string> *dependencies)
{
  for (const std::string &name : files)
    if (!open(name, dependencies)) throw new TDMCannotOpenFileException(name);
  position_ = {files_.empty() ? tdm::intern("") : files_[0].first, 1, 1, nullptr};
}

TDMPreprocessedFileInputStream::~TDMPreprocessedFileInputStream() = default;

bool TDMPreprocessedFileInputStream::open(const std::string &name,
                                          std::set<std::string> *dependencies)
{
  std::vector<std::string> directories;
  for (int i = 0; i < option_count(tdm::optINCDIR); ++i)
    directories.emplace_back(option_get_string(tdm::optINCDIR, i));
  if (const char *value = std::getenv("TDM PARSERINC")) directories.emplace_back(value);
  directories.emplace_back("../include/");
  for (const std::string &directory : directories) {
    const std::string path = (std::filesystem::path(directory) / name).lexically_normal().string();
    std::ifstream file(path, std::ios::binary);
    if (!file || std::filesystem::is_directory(path)) continue;
    if (dependencies != nullptr) dependencies->insert(path);
    content_.append(std::istreambuf_iterator<char>(file), {});
    if (!content_.empty() && content_.back() != '\n') content_ += '\n';
    files_.emplace_back(tdm::intern(path), content_.size());
    return true;
  }
  return false;
}

int TDMPreprocessedFileInputStream::getChar()
{
  if (next_ == content_.size()) return -1;
  const char c = content_[next_++];
  fetch();
  return c == '\xff' ? 255 : static_cast<signed char>(c);
}

void TDMPreprocessedFileInputStream::fetch()
{
  ++position_.column;
  if (content_[next_ - 1] == '\n') {
    ++position_.line;
    position_.column = 1;
  }
  for (std::size_t i = 0; i + 1 < files_.size(); ++i)
    if (files_[i].second == next_) position_ = {files_[i + 1].first, 1, 1, nullptr};
}
