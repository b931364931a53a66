// The token that the lexer makes: that of the runtime, with the name of its file.
#pragma once

#include <antlr/CommonToken.hpp>

#include "language/lexeme.h"

class TDMToken final : public antlr::CommonToken {
public:
  /// What the lexer installs as its factory.
  static antlr::RefToken factory();

  static antlr::RefToken make(const tdm::Lexeme &lexeme);

  /// Interns the name.
  void setFilename(const std::string &file) override;

  using antlr::CommonToken::getFilename; // the runtime's own: always an empty name
  virtual const std::string &getFilename();

  void set_file(FileName file) { file_ = file; }

  [[nodiscard]] TDMSourceLocation location() const { return {file_, line, col}; }

private:
  FileName file_;
  std::string filename_; ///< made when asked for
};
