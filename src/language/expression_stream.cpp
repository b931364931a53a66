// Counts lines and columns of the text of an expression.
#include "language/expression_stream.h"

#include <algorithm>

namespace tdm {

TDMSourceLocation ExpressionStream::place(std::size_t fetched) const
{
  return place_at(std::min(at_ - fetched, text_.size()));
}

TDMSourceLocation ExpressionStream::place_at(std::size_t position) const
{
  if (position < line_begin_) {
    line_begin_ = 0;
    line_ = 1;
  }
  for (std::size_t newline = text_.find('\n', line_begin_); newline < position;
       newline = text_.find('\n', line_begin_)) {
    line_begin_ = newline + 1;
    ++line_;
  }
  return {name, line_, static_cast<int>(position - line_begin_) + 1};
}

} // namespace tdm
