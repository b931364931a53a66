// The token's file name in its two forms.
#include "language/token.h"

#include <memory>

#include "preprocessor/string_pool.h"

antlr::RefToken TDMToken::factory()
{
  return antlr::RefToken(new TDMToken);
}

antlr::RefToken TDMToken::make(const tdm::Lexeme &lexeme)
{
  // Not lost if the runtime finds no memory for its counter.
  std::unique_ptr<TDMToken> owned(new TDMToken);
  antlr::RefToken result(owned.get());
  TDMToken *token = owned.release();
  token->setType(lexeme.type);
  token->setText(std::string(lexeme.characters()));
  token->setLine(lexeme.location.line);
  token->setColumn(lexeme.location.column);
  token->set_file(lexeme.location.file);
  return result;
}

void TDMToken::setFilename(const std::string &file)
{
  file_ = FileName(tdm::intern(file));
}

const std::string &TDMToken::getFilename()
{
  filename_ = file_.text();
  return filename_;
}
