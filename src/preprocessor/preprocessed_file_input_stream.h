// The input of a parse: the named files, preprocessed, as one stream of characters.
#pragma once

#include <cstddef>
#include <set>
#include <string>
#include <vector>

#include "common/source_location.h"
#include "preprocessor/directives.h"
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
    const int c = take_byte();
    return c == 255 ? c : static_cast<signed char>(c);
  }

  /// The next character as an unsigned value, or -1 at the end of input.
  int take_byte()
  {
    if (text_ == text_end_) return -1;
    const auto c = static_cast<unsigned char>(*text_++);
    if (text_ == text_end_) fetch_token();
    return c;
  }

  int getLine() const override { return token_->position.line; }
  /// A run of blanks counts as many tokens as it has characters.
  int getColumn() const override { return place().column; }
  const char *getFile() const override { return token_->position.file; }

  /// The token whose characters are being handed out: number (tEOF at the end), text and position.
  /// The text of a name, number or string is interned.
  [[nodiscard]] const tdm::PpToken &current_token() const { return *token_; }

  /// How many characters of the current token have been handed out.
  [[nodiscard]] std::ptrdiff_t characters_taken() const { return text_ - token_->text; }

  /// What getFile, getLine and getColumn tell.
  [[nodiscard]] TDMSourceLocation place() const
  {
    TDMSourceLocation place = start_of_token();
    if (token_->number == tWHITE) place.column += static_cast<int>(characters_taken());
    return place;
  }

  /// Where the current token begins.
  [[nodiscard]] TDMSourceLocation start_of_token() const
  {
    const tdm_srcpos &position = token_->position;
    if (position.file != file_) {
      file_name_ = position.file;
      file_ = position.file;
    }
    return {file_name_, position.line, position.column};
  }

  /// Leaves the rest of the current token's text out; gives the token behind it.
  const tdm::PpToken &skip_token()
  {
    fetch_token();
    return *token_;
  }

  /// The same for white space, together with all white space behind it.
  const tdm::PpToken &skip_blanks();

private:
  void start(const std::vector<std::string> &files);
  void fetch_token() { take(pp_next_token(true)); }
  void take(const tdm::PpToken &token)
  {
    token_ = &token;
    if (token_->length == 0) pass_empty_tokens();
    text_ = token_->text;
    text_end_ = text_ + token_->length;
  }
  void pass_empty_tokens();

  const tdm::PpToken *token_ = nullptr;
  const char *text_ = nullptr; ///< the rest of the token's text; empty only at the end of input
  const char *text_end_ = nullptr;
  mutable const char *file_ = nullptr; ///< of the token that was asked for last
  mutable FileName file_name_;         ///< the same
};
