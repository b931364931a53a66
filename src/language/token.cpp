// The token's file name in its two forms.
#include "language/token.h"

#include "preprocessor/string_pool.h"

antlr::RefToken TDMToken::factory()
{
  return antlr::RefToken(new TDMToken);
}

void TDMToken::setFilename(const std::string &file)
{
  file_ = tdm::intern(file);
}

const std::string &TDMToken::getFilename()
{
  filename_ = file_;
  return filename_;
}
