// The input of a parse: the named files, preprocessed, as one stream of characters.
#pragma once

#include <set>
#include <string>
#include <vector>

#include "common/tdm_types.h"
#include "preprocessor/tdm_input_buffer.h"

/// Hands out the characters of the texts of the preprocessed tokens, one after the other. One
/// stream exists at a time; its constructor starts the modules of the preprocessor, and its
/// destructor ends them.
class TDMPreprocessedFileInputStream : public TDMInputBuffer {
public:
  /// Opens all files before the first one is read, and fetches the first token. Paths of files
  /// that are opened go into `dependencies`, which may be null. Throws TDMCannotOpenFileException.
  TDMPreprocessedFileInputStream(const std::vector<std::string> &files,
                                 std::set<std::string> *dependencies);
  ~TDMPreprocessedFileInputStream() override;

  /// The next character, 0 to 255, or -1 at the end of input.
  int getChar() override;

  int getLine() const override { return position_.line; }
  int getColumn() const override { return position_.column; }
  const char *getFile() const override { return position_.file; }

private:
  void fetch();
  [[nodiscard]] bool open(const std::string &name, std::set<std::string> *dependencies);

  bool at_end_ = true;
  const char *text_ = "";
  tdm_srcpos position_ = {};
  std::string content_;
  std::vector<std::pair<const char *, std::size_t>> files_; // name, end in content_
  std::size_t next_ = 0;
};
