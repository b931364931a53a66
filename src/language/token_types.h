// The one table of the language's tokens: numbers, names, display strings and keywords. Lexer and
// parser share the constants; the display strings are what mismatch messages print.
#pragma once

#include <string_view>

// Tokens that are no keywords, from type 4 on, in the order of their types: name, display string.
#define TDM_PLAIN_TOKENS(X)                                                                        \
  X(WS, "WS")                                                                                      \
  X(LBRACK, "LBRACK")                                                                              \
  X(RBRACK, "RBRACK")                                                                              \
  X(LCURLY, "{")                                                                                   \
  X(RCURLY, "}")                                                                                   \
  X(LPAREN, "(")                                                                                   \
  X(RPAREN, ")")                                                                                   \
  X(EQUALS, "EQUALS")                                                                              \
  X(COLON_EQUALS, "COLON_EQUALS")                                                                  \
  X(PLUS, "PLUS")                                                                                  \
  X(PLUS_EQUALS, "PLUS_EQUALS")                                                                    \
  X(MINUS, "MINUS")                                                                                \
  X(MINUS_EQUALS, "MINUS_EQUALS")                                                                  \
  X(MULT_EQUALS, "MULT_EQUALS")                                                                    \
  X(DIV_EQUALS, "DIV_EQUALS")                                                                      \
  X(NOT_EQUALS, "NOT_EQUALS")                                                                      \
  X(COMPARE_EQUAL, "COMPARE_EQUAL")                                                                \
  X(LOGICAL_OR, "LOGICAL_OR")                                                                      \
  X(LOGICAL_AND, "LOGICAL_AND")                                                                    \
  X(BITWISE_AND, "BITWISE_AND")                                                                    \
  X(BITWISE_NOT, "BITWISE_NOT")                                                                    \
  X(MUL, "MUL")                                                                                    \
  X(DIV, "DIV")                                                                                    \
  X(MOD, "MOD")                                                                                    \
  X(SHIFT_RIGHT, "SHIFT_RIGHT")                                                                    \
  X(SHIFT_LEFT, "SHIFT_LEFT")                                                                      \
  X(GREATER, "GREATER")                                                                            \
  X(LESS, "LESS")                                                                                  \
  X(GREATER_EQUAL, "GREATER_EQUAL")                                                                \
  X(LESS_EQUAL, "LESS_EQUAL")                                                                      \
  X(XOR, "XOR")                                                                                    \
  X(BAR, "BAR")                                                                                    \
  X(COMMA, "COMMA")                                                                                \
  X(COLON, "COLON")                                                                                \
  X(SEMICOLON, "SEMICOLON")                                                                        \
  X(NOT, "NOT")                                                                                    \
  X(QMARK, "QMARK")                                                                                \
  X(DOLLAR, "DOLLAR")                                                                              \
  X(ID_START_LETTER, "ID_START_LETTER")                                                            \
  X(ID_LETTER, "ID_LETTER")                                                                        \
  X(ID_OR_POSTFIX, "ID_OR_POSTFIX")                                                                \
  X(KIBI, "KIBI")                                                                                  \
  X(MEBI, "MEBI")                                                                                  \
  X(GIBI, "GIBI")                                                                                  \
  X(IDENTIFIER, "an identifier")                                                                   \
  X(KEY_RANGE, "KEY_RANGE")                                                                        \
  X(OCTAL_NUMBER, "OCTAL_NUMBER")                                                                  \
  X(DECIMAL_NUMBER, "DECIMAL_NUMBER")                                                              \
  X(HEXADECIMAL_NUMBER, "HEXADECIMAL_NUMBER")                                                      \
  X(STRING, "quoted string")                                                                       \
  X(SL_COMMENT, "SL_COMMENT")                                                                      \
  X(ML_COMMENT, "ML_COMMENT")

// Keywords, in the order of their types. Each has itself in double quotes as display string.
#define TDM_KEYWORDS(X)                                                                            \
  X(memory)                                                                                        \
  X(type)                                                                                          \
  X(reserved)                                                                                      \
  X(mau) X(size) X(speed) X(priority) X(exec_priority) X(write_mode) X(setuptime) X(holdtime) X(   \
      cycles) X(area) X(read_ports) X(write_ports) X(readwrite_ports) X(write_unit) X(rom) X(ram)  \
      X(nvram) X(blockram) X(bus) X(address_width) X(wishbone) X(width) X(map) X(dest) X(          \
          dest_dbits) X(dest_offset) X(src_dbits) X(src_offset) X(bank) X(dest_bank) X(space)      \
          X(low_to_high) X(high_to_low) X(architecture) X(extends) X(page) X(direction) X(         \
              address_literal_space) X(id) X(align) X(page_size) X(stack) X(heap) X(copytable)     \
              X(direct_init) X(vector_table) X(fill) X(min_size) X(grows) X(fixed) X(copy_unit)    \
                  X(table) X(symbol) X(vector_size) X(id_symbol_prefix) X(run_addr) X(template)    \
                      X(template_symbol) X(vector_prefix) X(no_inline) X(copy) X(vector)           \
                          X(optional) X(loop) X(stub) X(switch) X(args) X(prefix) X(endianness)    \
                              X(core) X(copytable_space) X(import) X(space_id_offset)              \
                                  X(derivative) X(processor) X(start_address) X(section_layout)    \
                                      X(group) X(allow_cross_references) X(create_section) X(      \
                                          attributes) X(nocopy) X(load_addr)                       \
                                          X(clustered) X(contiguous) X(ordered) X(overlay) X(mem)  \
                                              X(section) X(struct) X(select) X(ref_tree)           \
                                                  X(blocksize) X(overflow) X(if) X(else)           \
                                                      X(alloc_allowed) X(absolute) X(ranged)       \
                                                          X(memcopy) X(section_setup) X(modify)    \
                                                              X(prohibit_references_to) X(input)   \
                                                                  X(addressof) X(defined)          \
                                                                      X(exists) X(max) X(min)      \
                                                                          X(sizeof) X(checksum)    \
                                                                              X(crc32w) X(sect)    \
                                                                                  X(big) X(little) \
                                                                                      X(crc32)     \
                                                                                          X(tag)

/// The token types. Those of keywords are KEY_ and the word.
struct TDMTokenTypes {
  enum {
    EOF_ = 1,
    NULL_TREE_LOOKAHEAD = 3,
#define TDM_ENUMERATOR(name, display) name,
    TDM_PLAIN_TOKENS(TDM_ENUMERATOR)
#undef TDM_ENUMERATOR
#define TDM_ENUMERATOR(word) KEY_##word,
        TDM_KEYWORDS(TDM_ENUMERATOR)
#undef TDM_ENUMERATOR
            NUMBER_OF_TYPES
  };
};

static_assert(TDMTokenTypes::NUMBER_OF_TYPES == 176);

namespace tdm {

/// The display strings, one for each type.
[[nodiscard]] const char *const *token_names();

/// The type of the keyword, or the other one if the word is none.
[[nodiscard]] int keyword_type(std::string_view word, int otherwise);

} // namespace tdm
