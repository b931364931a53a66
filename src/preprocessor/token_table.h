// The 75 kinds of preprocessor tokens and the recogniser for those that are fixed characters.
//
// A token's number is its row in the table and its kind everywhere in the preprocessor. From the
// patterns of the rows the compiler builds a transition table: a state for each prefix of a
// pattern, and for each state the token that ends there.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

enum TokenNumber : int {
  tEOF,
  tERROR,
  tFILE,
  tHEADER,
  tMARKER,
  tWSTRING,
  tWCHAR,
  tIDENT,
  tIDENT2,
  tICON,
  tFCON,
  tSTRING,
  tCHAR,
  tSPACE,
  tTAB,
  tNEWLINE,
  tWHITE,
  tCOMMENT,
  tCPPCMNT,
  tLSQB,
  tLSQB2,
  tRSQB,
  tRSQB2,
  tLPAR,
  tRPAR,
  tLBRA,
  tLBRA2,
  tRBRA,
  tRBRA2,
  tDOT,
  tERROR1,
  tELLIPS,
  tSEL,
  tINC,
  tDEC,
  tAND,
  tMUL,
  tADD,
  tSUB,
  tCOMPL,
  tNOT,
  tDIV,
  tMOD,
  tSHL,
  tSHR,
  tLT,
  tLE,
  tGT,
  tGE,
  tEQ,
  tNE,
  tXOR,
  tOR,
  tLAND,
  tLOR,
  tQMARK,
  tCOLON,
  tASSIGN,
  tCMUL,
  tCDIV,
  tCMOD,
  tCADD,
  tCSUB,
  tCSHL,
  tCSHR,
  tCAND,
  tCXOR,
  tCOR,
  tCOMMA,
  tHASH,
  tHASH2,
  tERROR2,
  tCONCAT,
  tCONCAT2,
  tSEMI,
  token_count
};

namespace tdm {

struct TokenRow {
  TokenNumber number;
  std::string_view pattern; ///< empty: never recognised from characters
  const char *display;
};

/// A pattern is literal characters; `[...]` of more than one character is a class with ranges.
constexpr TokenRow token_table[] = {
    {tEOF, "", "<eof>"},
    {tERROR, "", "<error>"},
    {tFILE, "", "<filename>"},
    {tHEADER, "", "<headerfile>"},
    {tMARKER, "", "<placemarker>"},
    {tWSTRING, "L\"", "<wide-string>"},
    {tWCHAR, "L'", "<wide-character>"},
    {tIDENT, "[A-Za-z_\\]", "<identifier>"},
    {tIDENT2, "", "<no-macro>"},
    {tICON, "[0-9]", "<integer>"},
    {tFCON, ".[0-9]", "<float>"},
    {tSTRING, "\"", "<string>"},
    {tCHAR, "'", "<character>"},
    {tSPACE, " ", "<space>"},
    {tTAB, "\t", "<tab>"},
    {tNEWLINE, "\n", "<newline>"},
    {tWHITE, "[\v\f\r]", "<white-space>"},
    {tCOMMENT, "/*", "/*"},
    {tCPPCMNT, "//", "//"},
    {tLSQB, "[", "["},
    {tLSQB2, "<:", "<:"},
    {tRSQB, "]", "]"},
    {tRSQB2, ":>", ":>"},
    {tLPAR, "(", "("},
    {tRPAR, ")", ")"},
    {tLBRA, "{", "{"},
    {tLBRA2, "<%", "<%"},
    {tRBRA, "}", "}"},
    {tRBRA2, "%>", "%>"},
    {tDOT, ".", "."},
    {tERROR1, "..", ".."},
    {tELLIPS, "...", "..."},
    {tSEL, "->", "->"},
    {tINC, "++", "++"},
    {tDEC, "--", "--"},
    {tAND, "&", "&"},
    {tMUL, "*", "*"},
    {tADD, "+", "+"},
    {tSUB, "-", "-"},
    {tCOMPL, "~", "~"},
    {tNOT, "!", "!"},
    {tDIV, "/", "/"},
    {tMOD, "%", "%"},
    {tSHL, "<<", "<<"},
    {tSHR, ">>", ">>"},
    {tLT, "<", "<"},
    {tLE, "<=", "<="},
    {tGT, ">", ">"},
    {tGE, ">=", ">="},
    {tEQ, "==", "=="},
    {tNE, "!=", "!="},
    {tXOR, "^", "^"},
    {tOR, "|", "|"},
    {tLAND, "&&", "&&"},
    {tLOR, "||", "||"},
    {tQMARK, "?", "?"},
    {tCOLON, ":", ":"},
    {tASSIGN, "=", "="},
    {tCMUL, "*=", "*="},
    {tCDIV, "/=", "/="},
    {tCMOD, "%=", "%="},
    {tCADD, "+=", "+="},
    {tCSUB, "-=", "-="},
    {tCSHL, "<<=", "<<="},
    {tCSHR, ">>=", ">>="},
    {tCAND, "&=", "&="},
    {tCXOR, "^=", "^="},
    {tCOR, "|=", "|="},
    {tCOMMA, ",", ","},
    {tHASH, "#", "#"},
    {tHASH2, "%:", "%:"},
    {tERROR2, "%:%", "%:%"},
    {tCONCAT, "##", "##"},
    {tCONCAT2, "%:%:", "%:%:"},
    {tSEMI, ";", ";"},
};

constexpr int state_count = 75;

struct Recogniser {
  std::array<std::array<std::uint8_t, 128>, state_count> next; ///< 0: no transition
  std::array<bool, state_count> goes_on;                       ///< has transitions of its own
  std::array<std::uint8_t, state_count> token;                 ///< the token that ends here, or 0
};

[[gnu::visibility("hidden")]] extern const Recogniser recogniser;

} // namespace tdm
