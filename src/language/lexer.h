// From characters to tokens, on the scanner of the ANTLR 2 runtime.
//
// Positions are those of the stream, not of the text that comes out of it: a token gets the place
// at which the stream stands when resetText runs. By then up to two characters behind the previous
// token may have been fetched, and the stream may already be at its next token; so what is fetched
// when is part of the behaviour, and each rule reads ahead exactly where its decisions need it.
#pragma once

#include <antlr/CharScanner.hpp>

#include "language/token_types.h"
#include "preprocessor/tdm_input_buffer.h"

/// What is the same for all rules: characters, positions and the making of tokens.
class TDMLexerBase : public antlr::CharScanner {
public:
  /// Two characters are all that any rule looks at, so they are kept here and taken from the
  /// stream one by one, past the queue of the runtime's buffer; `i` is 1 or 2. Bytes above 127
  /// come as their unsigned values, whatever the stream has them as.
  int LA(unsigned int i) final
  {
    while (held_ < i) ahead_[held_++] = fetch();
    return ahead_[i - 1];
  }

  void consume() final;

  /// Runs at the start of every token, skipped ones included.
  void resetText() final;

protected:
  /// The buffer must be a TDMInputBuffer (std::bad_cast).
  explicit TDMLexerBase(antlr::InputBuffer &buffer);

  antlr::RefToken makeToken(int type) final;

  [[nodiscard]] antlr::LexerInputState &state() { return *state_; }

private:
  int fetch()
  {
    const int c = stream_.getChar();
    return c < EOF_CHAR ? c & 0xFF : c;
  }

  TDMInputBuffer &stream_;
  antlr::LexerInputState *state_; ///< that of the scanner, without the way over its counter
  const char *file_ = "";         ///< the same text as the state's file name
  int ahead_[2] = {};
  unsigned int held_ = 0;
};

class TDMLexer final : public TDMLexerBase, public TDMTokenTypes {
public:
  explicit TDMLexer(antlr::InputBuffer &buffer);

  bool getCaseSensitiveLiterals() const override { return true; }
  int testLiteralsTable(int type) const override { return tdm::keyword_type(text, type); }
  int testLiteralsTable(const std::string &word, int type) const override
  {
    return tdm::keyword_type(word, type);
  }

  /// The next token that counts; EOF again and again behind the last one.
  antlr::RefToken nextToken() override;

private:
  // Each rule reads one token and gives its type, or SKIP.
  int any_token();
  int white_space();
  int word();
  int decimal_number();
  int number_with_leading_zero();
  int string();
  int range();
  int slash();
  int single_line_comment();
  int multi_line_comment();
  int operator_with_equals(int alone, int with_equals);
  int comparison(int alone, int doubled, int with_equals);
  int doubled_operator(int alone, int doubled);

  void word_start();
  void line_end();
  int single(int type);

  void expect(int c);
  [[noreturn]] void no_viable_alternative();
};
