// From characters to tokens, on the scanner of the ANTLR 2 runtime.
//
// Positions are those of the stream, not of the text that comes out of it: a token gets the place
// at which the stream stands when resetText runs. By then up to two characters behind the previous
// token may have been fetched, and the stream may already be at its next token; so what is fetched
// when is part of the behaviour, and each rule reads ahead exactly where its decisions need it.
//
// There are two roads to a token, and one result. The rules read character by character. Where the
// stream is that of the preprocessor and its token is at the same time a whole token of ours, a
// word, number, string, comment or run of blanks, the rest of it is left out at once: see
// lexer_whole_tokens.cpp.
#pragma once

#include <antlr/CharScanner.hpp>

#include "language/expression_stream.h"
#include "language/lexeme.h"
#include "language/token_types.h"
#include "preprocessor/preprocessed_file_input_stream.h"
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

  /// Gives the scanner's state the place of the token at hand, as the rules need it: failures are
  /// reported from there.
  void settle();

  /// The same for a token whose place is known.
  void settle(const TDMSourceLocation &place)
  {
    place_ = place;
    settle();
  }

  /// consume() for what makes no text.
  void pass()
  {
    advance(LA(1));
    ahead_[0] = ahead_[1];
    --held_;
  }

  /// Counts the character's column.
  void advance(int c)
  {
    if (c == '\t')
      tab();
    else
      ++state_->column;
  }

  // What the short road does with the stream. It may only be taken on a stream of whole tokens.
  [[nodiscard]] bool has_whole_tokens() const { return tokens_ != nullptr; }
  [[nodiscard]] TDMPreprocessedFileInputStream &tokens() { return *tokens_; }
  [[nodiscard]] unsigned int characters_held() const { return held_; }
  void leave_out_token()
  {
    tokens_->skip_token();
    held_ = 0;
  }
  void drop_held(unsigned int count)
  {
    ahead_[0] = ahead_[1];
    held_ -= count;
  }
  /// The first character behind a token that has been left out.
  int look_behind()
  {
    held_ = 1;
    return ahead_[0] = tokens_->take_byte();
  }

  TDMSourceLocation place_; ///< of the token at hand

private:
  int fetch()
  {
    if (tokens_ != nullptr) return tokens_->take_byte();
    const int c = stream_.getChar();
    return c < EOF_CHAR ? c & 0xFF : c;
  }

  [[nodiscard]] TDMSourceLocation stream_place() const
  {
    if (tokens_ != nullptr) return tokens_->place();
    if (expression_ != nullptr) return expression_->place(held_);
    return {stream_.getFile(), stream_.getLine(), stream_.getColumn()};
  }

  TDMInputBuffer &stream_;
  TDMPreprocessedFileInputStream *tokens_;  ///< the same stream, if it has whole tokens; or null
  const tdm::ExpressionStream *expression_; ///< the same stream, if it is one; or null
  antlr::LexerInputState *state_; ///< that of the scanner, without the way over its counter
  FileName file_;                 ///< the same text as the state's file name
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

  /// Reads the next token that counts; EOF again and again behind the last one. Failures are those
  /// of nextToken.
  void scan(tdm::Lexeme &next)
  {
    next.type = has_whole_tokens() ? quick_token(next) : 0;
    if (next.type <= 0) scan_by_rules(next);
  }

  /// The same as a token of the runtime.
  antlr::RefToken nextToken() override;

private:
  /// Goes on until there is a token, where the short road has come to its end (type 0) or has
  /// left something out (SKIP).
  void scan_by_rules(tdm::Lexeme &next);

  /// Calls the rule; failures become those of nextToken.
  template <typename Rule> int with_failures_of_stream(Rule rule);

  // Each rule reads one token and gives its type, or SKIP.
  int any_token();
  int white_space();
  int word();
  int word_tail();
  int decimal_number();
  int decimal_tail();
  int number_with_leading_zero();
  int octal_tail();
  int hexadecimal_tail();
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

  // The short road; these give 0 where the rules have to look at the characters.
  int quick_token(tdm::Lexeme &next);
  int whole_token(const tdm::PpToken &token, tdm::Lexeme &next);
  int whole_text(const tdm::PpToken &token, tdm::Lexeme &next);
  int whole_comment(const tdm::PpToken &token, const TDMSourceLocation &place);
  int single_character(int c, tdm::Lexeme &next);
  int merged(int type, tdm::Lexeme &next);
  int rest_by_rule(int type);

  /// Gives the token the text that the rules have read, in a place where it stays.
  void keep_text(int type, tdm::Lexeme &next) const;
};
