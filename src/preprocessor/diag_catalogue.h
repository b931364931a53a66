// The message catalogue: what the preprocessor can report, one row per message in number order.
#pragma once

/// The messages by name; the letter of a row decides what a message is, not the letter of its name
/// (two differ: W_hash_warning and F_open_failed are errors).
enum DiagMessage : int {
  S_assertion_failed,
  E_hash_error,
  E_hash_without_param,
  E_unexpected_arg,
  E_division_by_zero,
  E_illegal_digit,
  E_invalid_macro,
  E_define_predefined,
  E_undef_predefined,
  E_missing_bracket,
  E_missing_argument,
  E_missing_file,
  E_bad_ifdef,
  E_bad_ifndef,
  E_bad_undef,
  E_bad_line,
  E_expected_hex,
  E_no_endif,
  E_redundant_suffix,
  E_runaway_argument,
  E_syntax_define,
  E_syntax_if,
  E_syntax_line,
  E_syntax_directive,
  E_too_many_arguments,
  E_undefined_directive,
  E_unexpected_directive,
  E_unterminated_char,
  E_unterminated_comment,
  E_unterminated_filename,
  E_unterminated_string,
  E_illegal_macro_name,
  E_invalid_constant,
  E_universal_character,
  E_macro_redefined,
  E_concat_at_end,
  E_include_file,
  E_illegal_suffix,
  E_duplicate_macro_arg,
  E_defined,
  E_concat_at_begin,
  E_bad_define,
  E_expansion_limit,
  E_include_depth,
  E_include_count,
  W_defined_macro,
  W_illegal_escape,
  W_macro_redefined,
  W_ignored_pragma,
  W_unexpected_text,
  W_expected_white_space,
  W_trigraph,
  W_dec_terminates_oct,
  W_concat_failed,
  W_nested_comment,
  W_hash_warning,
  I_previous_macro_def,
  F_open_failed,
  S_pragma_used_as_option,
  diag_message_count
};

namespace tdm {

struct DiagRow {
  DiagMessage message; ///< the row's own name, so that the order can be checked
  const char *name;
  char letter; ///< E, W, I or S
  int number;
  const char *format;           ///< %s, %c and %d only
  const char *long_description; ///< for a message reference; null where there is none
};

extern const DiagRow (&diag_catalogue)[diag_message_count];

/// The row with this number, or null.
[[nodiscard]] const DiagRow *diag_row(int number);

} // namespace tdm
