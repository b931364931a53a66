// The catalogue itself. The formats are the system's words; the long descriptions are help texts
// for a message reference and are never part of a message.
#include "preprocessor/diag_catalogue.h"

#include <cstddef>

namespace tdm {

namespace {

// Formats stay in one piece, so that a text can be searched.
constexpr DiagRow catalogue[diag_message_count] = {
    {S_assertion_failed, "S_assertion_failed", 'S', 600, "assertion failed at \"%s\", line %d",
     "A check of the library itself has failed. No input should be able to cause this; please "
     "report it together with the input."},
    {E_hash_error, "E_hash_error", 'E', 901, "#error %s",
     "The file itself reports an error with the #error directive. The text behind the directive "
     "says what is wrong; look at the condition around it."},
    {E_hash_without_param, "E_hash_without_param", 'E', 904, "'#' not followed by macro parameter",
     "In the body of a function-like macro the operator # makes a string of an argument, so the "
     "name of a parameter must follow it. The # is taken as a blank."},
    {E_unexpected_arg, "E_unexpected_arg", 'E', 907, "arguments given to macro \"%s\"",
     "The macro was defined with an empty parameter list, so nothing may stand between the "
     "parentheses where it is used."},
    {E_division_by_zero, "E_division_by_zero", 'E', 911, "division by zero",
     "The right operand of / or % in an #if or #elif expression is 0. The left operand is taken as "
     "the result. Operands that are not evaluated, as in #if 0 && 1/0, do no harm."},
    {E_illegal_digit, "E_illegal_digit", 'E', 914, "illegal digit '%c' for base %d",
     "A constant in an #if expression holds a digit that its base doesn't have. A leading 0 makes "
     "a constant octal, so that 8 and 9 can't occur in it."},
    {E_invalid_macro, "E_invalid_macro", 'E', 916, "invalid macro name \"defined\"",
     "The word defined is an operator of #if and can neither be defined nor undefined as a macro."},
    {E_define_predefined, "E_define_predefined", 'E', 917, "macro \"%s\" cannot be defined",
     "The macro is predefined by the preprocessor and can't be given another definition."},
    {E_undef_predefined, "E_undef_predefined", 'E', 918, "macro \"%s\" cannot be undefined",
     "The macro is predefined by the preprocessor and stays defined."},
    {E_missing_bracket, "E_missing_bracket", 'E', 919, "missing '>' after header name",
     "A file name that starts with < must end with > on the same line."},
    {E_missing_argument, "E_missing_argument", 'E', 920, "missing argument for \"%s\" parameter",
     "The macro was used with fewer arguments than it has parameters. The parameter named is taken "
     "as empty."},
    {E_missing_file, "E_missing_file", 'E', 921, "missing file name after #include",
     "Write the name of the file in double quotes or between < and >, or a macro that expands to "
     "one of these forms."},
    {E_bad_ifdef, "E_bad_ifdef", 'E', 923, "missing identifier after #ifdef",
     "The directive #ifdef tests whether a name is a macro, so a name must follow. The conditional "
     "is opened all the same and needs its #endif."},
    {E_bad_ifndef, "E_bad_ifndef", 'E', 924, "missing identifier after #ifndef",
     "The directive #ifndef tests whether a name is a macro, so a name must follow. The "
     "conditional is opened all the same and needs its #endif."},
    {E_bad_undef, "E_bad_undef", 'E', 925, "missing identifier after #undef",
     "The directive #undef needs the name of the macro that is to be forgotten."},
    {E_bad_line, "E_bad_line", 'E', 926, "missing line number after #line",
     "The directive #line needs the number that the next line is to have, optionally followed by a "
     "file name in double quotes."},
    {E_expected_hex, "E_expected_hex", 'E', 927, "no hex digits following \\x",
     "The escape sequence \\x gives a character by its hexadecimal value, so at least one "
     "hexadecimal digit must follow."},
    {E_no_endif, "E_no_endif", 'E', 928, "no matching #endif",
     "The input ended while the conditional that begins at this position was still open. Each #if, "
     "#ifdef and #ifndef needs an #endif of its own."},
    {E_redundant_suffix, "E_redundant_suffix", 'E', 929, "redundant suffix on constant: '%c'",
     "A letter of the suffix of an integer constant is given more often than it may be, as in "
     "1uu."},
    {E_runaway_argument, "E_runaway_argument", 'E', 930, "runaway macro argument",
     "This error occurs when the closing parenthesis of a macro expansion is missing, and the "
     "linker skips the entire TDM file looking for it."},
    {E_syntax_define, "E_syntax_define", 'E', 931, "syntax error in #define",
     "The parameter list of the macro is malformed: it must hold names separated by commas, with "
     "\"...\" only at its end, and a closing parenthesis on the same line."},
    {E_syntax_if, "E_syntax_if", 'E', 932, "syntax error in #if/#elif expression",
     "The expression is malformed, or its parentheses are nested too deeply. The condition counts "
     "as true. Only integer and character constants, macros, defined and the operators of C can be "
     "used; floating constants and strings can't."},
    {E_syntax_line, "E_syntax_line", 'E', 933, "syntax error in #line directive",
     "Something stands behind the line number and the optional file name of the #line directive. "
     "The directive changes nothing."},
    {E_syntax_directive, "E_syntax_directive", 'E', 934, "syntax error in preprocessing directive",
     "A # at the start of a line must be followed by the name of a directive or a line number, or "
     "stand alone."},
    {E_too_many_arguments, "E_too_many_arguments", 'E', 935, "too many macro arguments",
     "The macro was used with more arguments than it has parameters. A comma inside an argument "
     "needs parentheses around the argument. The arguments left over are ignored."},
    {E_undefined_directive, "E_undefined_directive", 'E', 936,
     "undefined preprocessing directive \"#%s\"",
     "There is no directive of this name. The line is ignored."},
    {E_unexpected_directive, "E_unexpected_directive", 'E', 937,
     "unexpected preprocessing directive \"#%s\"",
     "The directive can't be used here: #elif, #else and #endif need an open conditional, and "
     "#elif and #else can't follow its #else."},
    {E_unterminated_char, "E_unterminated_char", 'E', 938, "unterminated character constant",
     "The closing single quote of the character constant is missing on its line."},
    {E_unterminated_comment, "E_unterminated_comment", 'E', 939, "unterminated comment",
     "The comment that begins at this position isn't closed in the same file."},
    {E_unterminated_filename, "E_unterminated_filename", 'E', 940, "unterminated filename",
     "The closing double quote or > of the file name is missing on the line."},
    {E_unterminated_string, "E_unterminated_string", 'E', 941, "unterminated string constant",
     "The closing double quote of the string is missing on its line. To continue a string on the "
     "next line, end the line with a backslash."},
    {E_illegal_macro_name, "E_illegal_macro_name", 'E', 943,
     "illegal macro name in option: \"-%c%s\"",
     "A macro that was given from outside must have a name that begins with a letter or an "
     "underscore. The definition is ignored."},
    {E_invalid_constant, "E_invalid_constant", 'E', 944, "invalid constant",
     "The constant is syntactically incorrect. Possible causes are  for example integer overflow "
     "and a double decimal point  in a preprocessor expression."},
    {E_universal_character, "E_universal_character", 'E', 945, "invalid universal character name",
     "A universal character name is \\u with four or \\U with eight hexadecimal digits, and must "
     "name a character outside the basic set that isn't a surrogate."},
    {E_macro_redefined, "E_macro_redefined", 'E', 946,
     "\"%s\" redefined as a different kind of macro",
     "The macro was defined with a parameter list before and now has none, or the other way round. "
     "The new definition holds. Undefine the macro first if this is what you want."},
    {E_concat_at_end, "E_concat_at_end", 'E', 947, "'##' at the end of a macro definition",
     "The operator ## joins the tokens on both its sides, so it can't be the last token of a macro "
     "body. It is taken as a blank."},
    {E_include_file, "E_include_file", 'E', 948, "cannot open #include file \"%s\"",
     "The file wasn't found, or couldn't be opened. It is searched in the directory of the "
     "including file (not with < >), in the include directories in their order, and in "
     "../include/. The input goes on without it."},
    {E_illegal_suffix, "E_illegal_suffix", 'E', 950, "illegal suffix on constant: '%c'",
     "The suffix of an integer constant can hold u and l only, and l twice for long long."},
    {E_duplicate_macro_arg, "E_duplicate_macro_arg", 'E', 951, "duplicate macro argument",
     "Two parameters of a macro have the same name."},
    {E_defined, "E_defined", 'E', 952, "error in \"defined\" operator",
     "The operator defined needs a name behind it, with or without parentheses around the name."},
    {E_concat_at_begin, "E_concat_at_begin", 'E', 953, "'##' at the start of a macro definition",
     "The operator ## joins the tokens on both its sides, so it can't be the first token of a "
     "macro body. It is taken as a blank."},
    {E_bad_define, "E_bad_define", 'E', 954, "missing identifier after #define",
     "The directive #define needs the name of the macro that is to be defined."},
    {E_expansion_limit, "E_expansion_limit", 'E', 955,
     "macro expansion is too large, the limit is %d tokens",
     "Macros that use one another multiply: the expansion of one name would give more tokens than "
     "any real description needs. It is cut off, and no macro is expanded in the rest of the "
     "input."},
    {E_include_depth, "E_include_depth", 'E', 956, "#include nested too deeply, the limit is %d",
     "More files are open inside one another than the caller of the library allows. The input goes "
     "on without the file. Perhaps a file includes itself, directly or by way of another one."},
    {E_include_count, "E_include_count", 'E', 957, "too many files included, the limit is %d",
     "Files were included more often than any real description needs. The input goes on without "
     "the "
     "file, and without any further one. Perhaps a file includes itself twice."},
    {W_defined_macro, "W_defined_macro", 'W', 969,
     "behavior of 'defined' operator generated by a macro is undefined",
     "The word defined in an #if expression came out of a macro. Other preprocessors may treat the "
     "expression differently."},
    {W_illegal_escape, "W_illegal_escape", 'W', 971, "illegal escape sequence",
     "There is no escape sequence with this character behind the backslash. The character stands "
     "for itself."},
    {W_macro_redefined, "W_macro_redefined", 'W', 972, "macro \"%s\" redefined",
     "The macro already has a different definition. The new one holds from here on; the note tells "
     "where the old one stands."},
    {W_ignored_pragma, "W_ignored_pragma", 'W', 973, "ignored unrecognized \"#pragma %s\"",
     "The pragma has no meaning here and was ignored."},
    {W_unexpected_text, "W_unexpected_text", 'W', 974,
     "unexpected text after preprocessing directive",
     "You used too many identifiers after a preprocessing directive. The linker ignores the "
     "superfluous text."},
    {W_expected_white_space, "W_expected_white_space", 'W', 975,
     "white-space separator required before replacement list",
     "The body of an object-like macro must be separated from the name by white space."},
    {W_trigraph, "W_trigraph", 'W', 976, "trigraph sequence %s replaced by %c",
     "Two question marks and one of nine characters stand for another character, also inside "
     "strings. Write \\? for one of the question marks to keep the text as it is."},
    {W_dec_terminates_oct, "W_dec_terminates_oct", 'W', 977,
     "octal escape sequence terminated by decimal digit",
     "An octal escape sequence ended at a digit 8 or 9, which is no part of it. Perhaps the "
     "sequence was meant to be a decimal number."},
    {W_concat_failed, "W_concat_failed", 'W', 978,
     "'##' does not produce a valid preprocessing token",
     "The two tokens beside ## don't make one token when they are put together. They stay two "
     "tokens."},
    {W_nested_comment, "W_nested_comment", 'W', 979, "\"/*\" inside comment",
     "Comments don't nest: the comment ends at the first */. Perhaps the end of an earlier comment "
     "is missing."},
    {W_hash_warning, "W_hash_warning", 'E', 980, "#warning %s",
     "The file itself reports a problem with the #warning directive. It counts as an error."},
    {I_previous_macro_def, "I_previous_macro_def", 'I', 981, "previous definition of macro \"%s\"",
     "The place of the old definition, for the message on a redefined macro before it."},
    {F_open_failed, "F_open_failed", 'E', 982, "the file %s could not be opened",
     "The file exists but can't be read: it is a directory, access is denied, or too many files "
     "are open at once, as when a file includes itself."},
    {S_pragma_used_as_option, "S_pragma_used_as_option", 'S', 992, "%s is a pragma, not an option",
     nullptr},
};

constexpr bool in_order()
{
  for (std::size_t i = 0; i < diag_message_count; ++i)
    if (catalogue[i].message != static_cast<int>(i) ||
        (i > 0 && catalogue[i - 1].number >= catalogue[i].number))
      return false;
  return true;
}
static_assert(in_order(), "rows stand in the order of their names and of their numbers");

} // namespace

const DiagRow (&diag_catalogue)[diag_message_count] = catalogue;

const DiagRow *diag_row(int number)
{
  for (const DiagRow &row : catalogue)
    if (row.number == number) return &row;
  return nullptr;
}

} // namespace tdm
