// The road from a stream of characters to the records of a parse.
#pragma once

#include <memory>

#include "language/records.h"
#include "preprocessor/tdm_input_buffer.h"

/// Runs lexer and parser over the stream, which stays the caller's. Throws TDMFileSyntaxError for
/// text that can't be read, and TDMSyntaxException for two architectures of one name. Null if the
/// stream itself fails.
[[nodiscard]] std::unique_ptr<TDMFileInterface> parse_target_file(TDMInputBuffer &stream);
