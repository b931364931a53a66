// The input of a parse: the named files, preprocessed, as one stream of characters.
#pragma once

#include <set>
#include <string>
#include <vector>

#include "preprocessor/pp_token.h"
#include "preprocessor/tdm_input_buffer.h"

/// Hands out the characters of the texts of the preprocessed tokens, one after the other. One
/// stream exists at a time; its constructor starts the modules of the preprocessor, and its
/// destructor ends them.
///
/// A reader that wants whole tokens takes current_token() and goes on with skip_token(); both ways
/// of reading can be mixed.
class TDMPreprocessedFileInputStream : public TDMInputBuffer {
public:
  /// Opens all files before the first one is read, and fetches the first token. Paths of files
  /// that are opened go into `dependencies`, which may be null. Throws TDMCannotOpenFileException.
  TDMPreprocessedFileInputStream(const std::vector<std::string> &files,
                                 std::set<std::string> *dependencies);
  ~TDMPreprocessedFileInputStream() override;

  /// The next character as a signed value, or -1 at the end of input. The byte 0xFF comes as 255,
  /// so that it isn't taken for the end.
  int getChar() override
  {
    if (at_end_) return -1;
    const char c = *text_++;
    position_.column += column_step_;
    if (text_ == text_end_) fetch_token();
    return c == '\xff' ? 255 : static_cast<signed char>(c);
  }

  int getLine() const override { return position_.line; }
  int getColumn() const override { return position_.column; }
  const char *getFile() const override { return position_.file; }

  /// The token whose characters are being handed out: number (tEOF at the end), text and position.
  /// The text of a name, number or string is interned.
  [[nodiscard]] const tdm::PpToken &current_token() const { return *token_; }

  /// Leaves the rest of the current token's text out.
  void skip_token() { fetch_token(); }

private:
  void start(const std::vector<std::string> &files);
  void fetch_token();

  bool at_end_ = true;
  const char *text_ = nullptr;
  const char *text_end_ = nullptr;
  int column_step_ = 0; ///< 1 in a run of blanks, which is as many tokens as it has characters
  tdm_srcpos position_ = {};
  const tdm::PpToken *token_ = nullptr;
};
