// The buffer that the lexer reads its characters from: a buffer of the ANTLR runtime that also
// tells where in the user's files the character at hand was written.
#pragma once

#include <antlr/InputBuffer.hpp>

class TDMInputBuffer : public antlr::InputBuffer {
public:
  virtual int getLine() const = 0;
  virtual int getColumn() const = 0;
  /// The file name, a text of the string pool.
  virtual const char *getFile() const = 0;
};
