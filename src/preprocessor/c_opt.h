// c-opt: the option store, one static table with a row per option.
//
// It fixes the dialect of the preprocessor: the modules read their switches here, at start or at
// the point of use. Two options get values from outside, DEFINE (tdm_init) and INCDIR
// (tdm_parse_file); all others keep the defaults of the table. Values outlive the input streams and
// go with tdm_cleanup. What a value means is none of this module's business.
#pragma once

#include <cstddef>
#include <string_view>

namespace tdm {

/// The rows of the table, numbered as they stand in it.
enum Option : int {
  optOPT = 1,
  optERR,
  optARG,
  optINT,
  optABSOLUTE,
  optA_CPP,
  optA_GCC,
  optA_KANJI,
  optCOMMENT,
  optDEFINE,
  optDETERMINISTIC,
  optERRWARN,
  optFLOAT,
  optINCDIR,
  optISO,
  optISUFFIX,
  optNOLINE,
  optNOMACRO,
  optNOSTDINC,
  optNOWARN,
  optNOWARNP,
  optPREDEF,
  optQUAL,
  optSTDINC,
  optUNDEF,
};

enum OptionType { otBOOL, otSTRING, otFLAGS, otINTEGER, otOPTFILE };

/// Reads the attributes of all rows, applies the defaults and clears the counts; values that were
/// given before are dropped. The string pool must have been started.
void option_start();

/// Resets every row and frees the arrays of multiple values.
void option_end();

/// Marks an option that belongs to positions in the source and not to the table alone.
void option_bind_to_pragma(Option number, bool bound);

/// While on, pragma-bound options may be read from the table.
void option_allow_pragma_bound(bool allowed);

[[nodiscard]] OptionType option_type(Option number);

/// The text behind an attribute of the row ("DEF", "MUL", ...), or null without the attribute.
[[nodiscard]] const char *option_attribute(Option number, std::string_view attribute);

} // namespace tdm

/// Gives a value to a string option: appends it if the option takes several, else replaces.
void option_set_string(tdm::Option number, std::string_view text);

/// How many values were given; a default is none.
[[nodiscard]] int option_count(tdm::Option number);

/// A value of a string option, from the string pool. With several values the index tells which; it
/// must be below the count. With a single one it is ignored, and a null means no value.
[[nodiscard]] const char *option_get_string(tdm::Option number, int index = 0);

[[nodiscard]] bool option_get_bool(tdm::Option number);
[[nodiscard]] int option_get_integer(tdm::Option number);

// For tests and front ends: values that replace the defaults of switches.
void option_set_bool(tdm::Option number, bool value);
void option_set_integer(tdm::Option number, int value);
