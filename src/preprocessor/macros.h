// The macro table: definitions by #define, by options and by the preprocessor itself.
//
// Definitions come in from the directives and are read by macro expansion. Records stay until the
// end of the stream, also those that have left the table, as an expansion may still be reading one.
// Nothing is expanded here.
#pragma once

#include <cstdint>
#include <vector>

#include "preprocessor/pp_token.h"

namespace tdm {

struct MacroParameter {
  const char *name; ///< "..." for a variadic one without a name of its own
  bool variadic;
  bool expanded; ///< the body uses the argument expanded
};

/// What a macro without a body does.
enum class MacroKind : std::uint8_t { with_body, file_name, line_number };

/// Tokens of a body that are copied as they stand, and the parameter behind them.
struct BodyRun {
  std::uint32_t length;
  std::uint32_t parameter; ///< its index
};

// The link of a body token that names a parameter: its index, counted from 1, and whether it
// stands beside a ##, so that its argument isn't expanded.
constexpr std::uint32_t parameter_index = 0x7FFFFFFF;
constexpr std::uint32_t parameter_raw = 0x80000000;

} // namespace tdm

struct TDMMacro {
  const char *name;
  const tdm::MacroParameter *parameters; ///< null for an object-like macro
  std::size_t parameter_count;
  const tdm::PpToken *body;
  std::size_t body_count;
  const tdm::BodyRun *runs; ///< what the body is made of up to its last parameter
  std::size_t run_count;
  tdm_srcpos position; ///< of the definition; with a null file when there is none
  bool busy;           ///< its expansion is being read
  bool function_like;
  bool has_operators; ///< there is a ## in the body, or a # with a parameter
  bool predefined;
  tdm::MacroKind kind;
};

namespace tdm {

void macro_start();
void macro_stop();
/// To be called when the string pool ends.
void macro_forget_names();

/// A number that changes with each change of the table.
[[nodiscard]] std::uint32_t macro_generation();

/// How many times a macro has been undefined.
[[nodiscard]] std::uint32_t macro_undefinitions();

/// The body of a #define, behind the word.
void macro_parse_define();

/// The rest of an #undef, behind the word.
void macro_parse_undef();

/// The string of __FILE__ for a file name, and the two texts of time.
[[nodiscard]] const char *file_name_string(const char *file);

} // namespace tdm

/// Defines a macro. The parameters are null for an object-like one. White space between two tokens
/// of the body is one token, and there is none at either end.
void macro_define(const char *name, const std::vector<tdm::MacroParameter> *parameters,
                  std::vector<tdm::PpToken> body, const tdm_srcpos &position, bool predefined);
void macro_undefine(const char *name, const tdm_srcpos &position);

/// The macro of an interned name, or null.
[[nodiscard]] TDMMacro *macro_lookup(const char *name);
