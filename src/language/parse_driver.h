// The roads from characters to records: of all of a description, and of a single expression.
#pragma once

#include <memory>
#include <string_view>

#include "language/expr_records.h"
#include "language/records.h"
#include "preprocessor/tdm_input_buffer.h"

/// Runs lexer and parser over the stream, which stays the caller's. Throws TDMFileSyntaxError for
/// text that can't be read, and TDMSyntaxException for two architectures of one name. Null if the
/// stream itself fails.
[[nodiscard]] std::unique_ptr<TDMFileInterface> parse_target_file(TDMInputBuffer &stream);

namespace tdm {

/// Reads an expression that is all of a text, without preprocessing. Throws TDMFileSyntaxError,
/// with places in a file of the name ExpressionStream::name.
[[nodiscard]] ExpressionPtr parse_expression(std::string_view text);

} // namespace tdm
