// The parse driver: the one place where failures of the ANTLR runtime become failures of ours.
#include "language/parse_driver.h"

#include <antlr/CharStreamException.hpp>
#include <antlr/NoViableAltException.hpp>
#include <antlr/NoViableAltForCharException.hpp>
#include <antlr/TokenStreamIOException.hpp>
#include <antlr/TokenStreamRecognitionException.hpp>

#include <optional>
#include <string_view>
#include <unordered_set>

#include "common/failures.h"
#include "language/expression_stream.h"
#include "language/lexer.h"
#include "language/parser.h"
#include "language/token.h"

namespace {

/// A failure with its position, held until lexer and parser are gone.
struct Failure {
  std::string file;
  int line = 0;
  int column = 0;
  std::string text;
};

template <typename Exception> Failure at_exception(const Exception &exception)
{
  return {exception.getFilename(), exception.getLine(), exception.getColumn(),
          exception.getMessage()};
}

template <typename Exception> Failure at_token(const Exception &exception)
{
  const TDMSourceLocation place = static_cast<const TDMToken &>(*exception.token.get()).location();
  return {place.file.text(), place.line, place.column, exception.getMessage()};
}

/// At the parser's next token. If the text there is none, then that is what is reported.
Failure at_next_token(TDMParser &parser, const std::string &text)
{
  try {
    const antlr::RefToken token = parser.LT(1);
    const TDMSourceLocation place = static_cast<const TDMToken &>(*token.get()).location();
    return {place.file.text(), place.line, place.column, text};
  } catch (const antlr::TokenStreamRecognitionException &failure) {
    return at_exception(failure);
  }
}

/// Runs the parser; null, and a failure, if the text can't be read.
template <class Result>
std::unique_ptr<Result> run(TDMInputBuffer &stream, std::unique_ptr<Result> (TDMParser::*rule)(),
                            std::optional<Failure> &failure)
{
  TDMLexer lexer(stream);
  TDMParser parser(lexer);
  try {
    return (parser.*rule)();
  } catch (const antlr::MismatchedTokenException &exception) {
    failure = at_token(exception);
  } catch (const antlr::NoViableAltException &exception) {
    failure = at_token(exception);
  } catch (const antlr::RecognitionException &exception) {
    failure = at_exception(exception);
  } catch (const antlr::TokenStreamRecognitionException &exception) {
    failure = at_exception(exception);
  } catch (const antlr::TokenStreamIOException &) {
    failure =
        Failure{stream.getFile(), stream.getLine(), stream.getColumn(), "I/O error while parsing"};
  } catch (TDMFileSyntaxException *exception) {
    const std::unique_ptr<TDMFileSyntaxException> owner(exception);
    failure = at_next_token(parser, exception->text());
  } catch (const antlr::TokenStreamException &) {
    // A failure of the stream that has no words: the caller finds no result.
  } catch (const antlr::CharStreamException &) {
    // The same, from outside the lexer.
  }
  return nullptr;
}

void require_distinct_architectures(const TDMFileInterface &result)
{
  std::unordered_set<std::string_view> names;
  for (const auto &architecture : result.architectures) {
    const tdm::Text name = tdm::name_of(architecture->name);
    if (names.insert(name).second) continue;
    const TDMSourceLocation &second = architecture->get_location("name");
    throw new TDMSyntaxException(second, "two architectures defined with name " + name);
  }
}

/// A failure at the semicolon behind the expression, or at what an open comment makes of it, is
/// told in words that speak of the text alone.
void settle_at_end(Failure &failure, const TDMSourceLocation &end)
{
  const bool inside =
      failure.line < end.line || (failure.line == end.line && failure.column < end.column);
  if (!inside) failure = {failure.file, end.line, end.column, "unexpected end of the expression"};
}

[[noreturn]] void throw_failure(const Failure &failure)
{
  throw new TDMFileSyntaxError(failure.file, failure.line, failure.column, failure.text);
}

} // namespace

std::unique_ptr<TDMFileInterface> parse_target_file(TDMInputBuffer &stream)
{
  std::optional<Failure> failure;
  std::unique_ptr<TDMFileInterface> result = run(stream, &TDMParser::target_file, failure);
  if (failure) throw_failure(*failure);
  if (result) require_distinct_architectures(*result);
  return result;
}

tdm::ExpressionPtr tdm::parse_expression(std::string_view text)
{
  ExpressionStream stream(text);
  std::optional<Failure> failure;
  ExpressionPtr result = run(stream, &TDMParser::single_expression, failure);
  if (result != nullptr) return result;
  const TDMSourceLocation end = stream.end();
  Failure told = failure.value_or(Failure{end.file.text(), end.line, end.column, ""});
  settle_at_end(told, end);
  throw_failure(told);
}
