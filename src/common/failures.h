/// @file
/// The failures of the language, the model and the layouts.
///
/// Every failure is thrown by pointer (`throw new ...`) and is a plain object that holds one
/// finished text. Whoever catches one deletes it by the type that it was caught as: the classes
/// below TDMFileException add no member, so one `catch (TDMFileException *)` serves them all, while
/// each family outside it needs a catch of its own.
#pragma once

#include <string>

#include "common/source_location.h"
#include "common/tdm_types.h"

/// The root of all failures that end a parse with a message.
class TDM_CLIENT_API TDMFileException {
public:
  /// With the finished text.
  explicit TDMFileException(std::string text) : text_(std::move(text)) {}

  /// The text, position and all.
  [[nodiscard]] const std::string &text() const { return text_; }

private:
  std::string text_;
};

/// A rule of the language that a parser action finds broken; the parse driver adds the position.
class TDM_CLIENT_API TDMFileSyntaxException : public TDMFileException {
public:
  using TDMFileException::TDMFileException;
};

/// `["<file>" <line>/<column>] syntax error: <text>`
class TDM_CLIENT_API TDMFileSyntaxError : public TDMFileException {
public:
  /// Puts the position in front of the text.
  TDMFileSyntaxError(const std::string &file, int line, int column, const std::string &text);
};

/// The same form, from a location: the usual failure of model building.
class TDM_CLIENT_API TDMSyntaxException : public TDMFileSyntaxError {
public:
  /// At the location.
  TDMSyntaxException(const TDMSourceLocation &location, const std::string &text);
};

/// Passes an already finished text on.
class TDM_CLIENT_API TDMSyntaxError : public TDMFileException {
public:
  using TDMFileException::TDMFileException;
};

/// `["<file>" <line>/<column>] TDM unexpected error: <text>`
class TDM_CLIENT_API TDMUnexpectedErrorException : public TDMFileException {
public:
  /// At the location.
  TDMUnexpectedErrorException(const TDMSourceLocation &location, const std::string &text);
};

/// `cannot open "<file>"`
class TDM_CLIENT_API TDMCannotOpenFileException : public TDMFileException {
public:
  /// For a file of that name.
  explicit TDMCannotOpenFileException(const std::string &file);
};

/// `["<file>" <line>/<column>] <text>`
class TDM_CLIENT_API TDMSemanticException : public TDMFileException {
public:
  /// At the location.
  TDMSemanticException(const TDMSourceLocation &location, const std::string &text);
};

/// An expression needs data that only the caller's environment can give.
class TDM_CLIENT_API TDMDataNeededForExpressionException : public TDMSemanticException {
public:
  using TDMSemanticException::TDMSemanticException;
};

/// Data that was given doesn't suffice.
class TDM_CLIENT_API TDMDataIncompleteException : public TDMSemanticException {
public:
  using TDMSemanticException::TDMSemanticException;
};

/// A failure of the expression library.
class TDM_CLIENT_API ExprlibException : public TDMFileException {
public:
  using TDMFileException::TDMFileException;
};

/// Arguments that don't fit parameters. Thrown and caught where a template is instantiated.
class TDMArgumentsException {
public:
  /// With the words "too many arguments" or "too few arguments".
  explicit TDMArgumentsException(std::string text) : text_(std::move(text)) {}

  /// The text, without a position.
  [[nodiscard]] const std::string &text() const { return text_; }

private:
  std::string text_;
};

/// More arguments than there are parameters.
class TDMTooManyArgumentsException : public TDMArgumentsException {
public:
  TDMTooManyArgumentsException() : TDMArgumentsException("too many arguments") {}
};

/// A parameter without a default has no argument.
class TDMTooFewArgumentsException : public TDMArgumentsException {
public:
  TDMTooFewArgumentsException() : TDMArgumentsException("too few arguments") {}
};

/// The root of the failures of address arithmetic. It carries nothing, but what derives from it
/// may, and can be deleted as what it was caught as.
class TDM_CLIENT_API MauLibException {
public:
  virtual ~MauLibException();
};
