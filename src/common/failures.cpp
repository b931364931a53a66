// Composes the texts of failures: the only place that formats a position.
#include "common/failures.h"

namespace {

std::string positioned(const std::string &file, int line, int column, const std::string &rest)
{
  std::string text = "[\"";
  text += file;
  text += "\" ";
  text += std::to_string(line);
  text += '/';
  text += std::to_string(column);
  text += "] ";
  text += rest;
  return text;
}

std::string positioned(const TDMSourceLocation &at, const std::string &rest)
{
  return positioned(at.file.text(), at.line, at.column, rest);
}

} // namespace

MauLibException::~MauLibException() = default;

TDMFileSyntaxError::TDMFileSyntaxError(const std::string &file, int line, int column,
                                       const std::string &text)
    : TDMFileException(positioned(file, line, column, "syntax error: " + text))
{
}

TDMSyntaxException::TDMSyntaxException(const TDMSourceLocation &location, const std::string &text)
    : TDMFileSyntaxError(location.file.text(), location.line, location.column, text)
{
}

TDMUnexpectedErrorException::TDMUnexpectedErrorException(const TDMSourceLocation &location,
                                                         const std::string &text)
    : TDMFileException(positioned(location, "TDM unexpected error: " + text))
{
}

TDMCannotOpenFileException::TDMCannotOpenFileException(const std::string &file)
    : TDMFileException("cannot open \"" + file + "\"")
{
}

TDMSemanticException::TDMSemanticException(const TDMSourceLocation &location,
                                           const std::string &text)
    : TDMFileException(positioned(location, text))
{
}
