// The parser: what each construct leaves in its record, with places, and what it refuses.
#include <gtest/gtest.h>

#include "common/failures.h"
#include "language/parse_driver.h"
#include "preprocessor/string_pool.h"
#include "record_dump.h"
#include "text_stream.h"

namespace {

struct Row {
  std::string text;
  std::string expected;
};

/// The records of the text, or the words of the failure.
std::string outcome(const std::string &text)
{
  TextStream stream(text);
  try {
    return dump(*parse_target_file(stream));
  } catch (TDMFileException *failure) {
    const std::unique_ptr<TDMFileException> owner(failure);
    return failure->text();
  }
}

class Parser : public testing::Test {
protected:
  void SetUp() override { tdm::string_pool_start(); }

  /// Each text between the two others fails with `line/column words`.
  static void refuse(const std::string &before, const std::string &behind,
                     const std::vector<Row> &rows)
  {
    for (const Row &row : rows) {
      const std::size_t blank = row.expected.find(' ');
      const std::string expected = "[\"text\" " + row.expected.substr(0, blank) +
                                   "] syntax error: " + row.expected.substr(blank + 1);
      EXPECT_EQ(outcome(before + row.text + behind), expected) << row.text;
    }
  }

  static void keep(const std::vector<Row> &rows)
  {
    for (const Row &row : rows) EXPECT_EQ(outcome(row.text), row.expected) << row.text;
  }
};

TEST_F(Parser, RefusesFrame)
{
  refuse("", "",
         {
             {"", "1/1 unexpected end of file"},
             {"aa", "1/1 unexpected token: aa"},
             {"space bb { }", "1/1 unexpected token: space"},
             {"memory aa { } ;", "1/16 expecting EOF, found ';'"},
             {"memory aa { } foo", "1/15 expecting EOF, found 'foo'"},
             {"memory mau { }", "1/8 unexpected token: mau"},
             {"memory aa", "1/10 unexpected end of file"},
             {"memory aa ( ) { }", "1/12 expecting {, found '('"},
             {"memory aa (tag = 5) { }", "1/19 expecting quoted string, found '5'"},
             {"memory aa (tag = \"t\",) { }", "1/22 expecting \"tag\", found ')'"},
             {"memory aa [ { }", "1/12 unexpected token: ["},
             {"memory aa 5 { }", "1/12 expecting {, found '5'"},
             {"memory aa { $ }", "1/14 expecting }, found '$'"},
             {"memory \"aa\" { }", "1/8 unexpected token: \"aa\""},
             {"architecture aa { } architecture bb { } architecture aa { }",
              "1/54 two architectures defined with name aa"},
         });
}

TEST_F(Parser, RefusesMemories)
{
  refuse(
      "memory aa { ", " }",
      {
          {"type = ram; type = rom;", "1/36 trying to set memory type twice for memory aa"},
          {"mau = 8; mau = 8;", "1/30 trying to set mau size twice for memory aa"},
          {"size = 1; size = 2;", "1/32 trying to set size twice for memory aa"},
          {"priority = 2; speed = 3;", "1/37 trying to set memory priority twice"},
          {"priority = 0; priority = 0;", "1/40 trying to set memory priority twice"},
          {"speed = 0x80000000;", "1/32 memory priority value must be nonnegative"},
          {"exec_priority = 1; exec_priority = 2;",
           "1/50 trying to set memory execute priority twice"},
          {"exec_priority = 0xFFFFFFFF;", "1/40 memory execute priority value must be nonnegative"},
          {"exec_priority = -1;", "1/30 unexpected token: -"},
          {"speed = 1k;", "1/23 expecting SEMICOLON, found 'k'"},
          {"type = reserved;", "1/29 unexpected token: ;"},
          {"type = stack;", "1/20 unexpected token: stack"},
          {"size = 1", "1/23 unexpected token: }"},
          {"fill = ;", "1/21 unexpected token: ;"},
          {"fill = [ ];", "1/23 unexpected token: ]"},
          {"fill = 1 ];", "1/23 unexpected token: ]"},
          {"fill = 1 : 2 : 3;", "1/27 expecting SEMICOLON, found ':'"},
          {"fill = [1;", "1/23 expecting RBRACK, found ';'"},
          {"fill 1;", "1/19 unexpected token: 1"},
          {"write_mode = xx;", "1/26 expecting quoted string, found 'xx'"},
          {"map;", "1/17 unexpected token: ;"},
          {"foo;", "1/13 expecting }, found 'foo'"},
      });
}

TEST_F(Parser, RefusesBuses)
{
  refuse("bus aa { ", " }",
         {
             {"mau = 8", "1/19 unexpected token: }"},
             {"mau;", "1/14 expecting EQUALS, found ';'"},
             {"wishbone = 1;", "1/20 expecting SEMICOLON, found '='"},
             {"size = 4;", "1/10 expecting }, found 'size'"},
         });
}

TEST_F(Parser, RefusesMappings)
{
  refuse(
      "bus aa { map (", ") ; }",
      {
          {"", "1/15 unexpected token: )"},
          {"dest = xx", "1/22 unexpected token: xx"},
          {"dest = space:bb:cc", "1/31 expecting ), found ':'"},
          {"dest = bus:bb:cc:dd", "1/32 expecting ), found ':'"},
          {"dest = bus:bb;", "1/29 unexpected token: ;"},
          {"dest = space:bb, dest = bus:cc ", "1/47 trying to set mapping destination twice"},
          {"priority = 0", "1/28 mapping priority value must be positive"},
          {"priority = 1, priority = 2 ", "1/43 trying to set mapping priority twice"},
          {"priority = 1, priority = 0 ", "1/43 mapping priority value must be positive"},
          {"exec_priority = 0x80000000 ", "1/43 mapping exec priority value must be nonnegative"},
          {"exec_priority = 0, exec_priority = 0 ",
           "1/53 trying to set mapping exec priority twice"},
          {"src_dbits = 7", "1/29 expecting KEY_RANGE, found ')'"},
          {"bank = 1 + 1", "1/25 expecting ), found '+'"},
          {"bank = -1", "1/23 unexpected token: -"},
          {"size = 1,", "1/24 unexpected token: )"},
      });
}

TEST_F(Parser, RefusesMaps)
{
  refuse("", "",
         {
             {"bus aa { map bus (reserved); }", "1/14 unexpected token: bus"},
             {"bus aa { map bb cc (reserved); }", "1/17 expecting (, found 'cc'"},
         });
}

TEST_F(Parser, RefusesArchitectures)
{
  refuse("architecture aa ", "",
         {
             {"( ) { }", "1/20 unexpected token: )"},
             {"(xx yy) { }", "1/21 unexpected token: yy"},
             {"(xx = ) { }", "1/24 unexpected token: )"},
             {"[ { }", "1/18 unexpected token: ["},
             {"extends { }", "1/26 unexpected token: {"},
             {"extends bb ( ) { }", "1/31 unexpected token: )"},
             {"extends bb cc { }", "1/28 unexpected token: cc"},
             {"{ endianness { } }", "1/33 unexpected token: }"},
             {"{ endianness { big } }", "1/37 expecting SEMICOLON, found '}'"},
             {"{ endianness { big; core } }", "1/37 expecting }, found 'core'"},
             {"{ memory cc { } }", "1/19 expecting }, found 'memory'"},
         });
}

TEST_F(Parser, RefusesCores)
{
  refuse("derivative aa { core bb { ", " } }",
         {
             {"architecture = aa; architecture = bb;",
              "1/64 trying to set base architecture twice for core bb"},
             {"architecture = aa ( );", "1/48 unexpected token: )"},
             {"architecture = aa bb;", "1/45 unexpected token: bb"},
             {"endianness = big;", "1/40 expecting (, found 'big'"},
             {"endianness = (big, 1);", "1/47 unexpected token: 1"},
             {"import = xx;", "1/35 unexpected token: ="},
             {"space_id_offset = 1 + 1;", "1/48 expecting SEMICOLON, found '+'"},
             {"copytable_space = bb;", "1/48 expecting COLON, found ';'"},
             {"start_address ( );", "1/44 unexpected token: )"},
             {"start_address (size = 1);", "1/42 unexpected token: size"},
             {"start_address = 1;", "1/42 expecting (, found '='"},
         });
}

TEST_F(Parser, RefusesDerivatives)
{
  refuse("", "",
         {
             {"derivative aa { processor bb { } }", "1/17 expecting }, found 'processor'"},
             {"derivative aa { architecture bb { } }", "1/17 expecting }, found 'architecture'"},
             {"processor aa { derivative bb; }", "1/27 expecting EQUALS, found 'bb'"},
             {"processor aa { derivative = bb; derivative = cc; }",
              "1/49 trying to set base derivative twice for processor aa"},
             {"processor aa { derivative = bb cc; }", "1/32 unexpected token: cc"},
         });
}

TEST_F(Parser, RefusesSpaces)
{
  refuse("architecture aa { space bb { ", " } }",
         {
             {"mau = 8; mau = 8;", "1/47 trying to set mau size twice in space bb"},
             {"id = 1; id = 2;", "1/45 trying to set id twice in space bb"},
             {"id = 1 + 1;", "1/38 expecting SEMICOLON, found '+'"},
             {"align = 1; align = 2;", "1/51 trying to set alignment twice in space bb"},
             {"page_size = 1; page_size = 2;", "1/59 trying to set page size twice in space bb"},
             {"page_size = 16 [0 .. 3] [8 .. 11];", "1/55 expecting SEMICOLON, found '['"},
             {"page_size = 16 : 3;", "1/46 unexpected token: :"},
             {"address_literal_space = aa; address_literal_space = bb;",
              "1/85 trying to set address literal space twice in space bb"},
             {"direction = up;", "1/42 unexpected token: up"},
             {"copytable; copytable (page);", "1/41 trying to define copy table twice in space bb"},
             {"direct_init; direct_init (align = 4);",
              "1/43 trying to define direct init section twice in space bb"},
             {"copytable = 1;", "1/41 unexpected token: ="},
             {"copytable ( );", "1/43 unexpected token: )"},
             {"direct_init (page);", "1/43 unexpected token: page"},
             {"reserved 1;", "1/41 expecting KEY_RANGE, found ';'"},
             {"reserved (1) .. ;", "1/47 unexpected token: ;"},
             {"reserved (tag = \"t\" 0 .. 1;", "1/51 expecting ), found '0'"},
             {"bank ( );", "1/38 unexpected token: )"},
             {"bank (stub:args = \"x\");", "1/47 expecting COLON, found '='"},
             {"bank (switch:args:switch = \"x\");", "1/48 expecting \"bank\", found 'switch'"},
             {"bank (stub:foo = \"x\");", "1/41 unexpected token: foo"},
             {"bank (stub:args:stub = \"x\");", "1/46 unexpected token: stub"},
             {"bank (switch:foo = \"x\");", "1/43 unexpected token: foo"},
             {"bank (map = \"x\");", "1/36 unexpected token: map"},
             {"copytable (dest table);", "1/46 unexpected token: table"},
             {"copytable (dest xx yy);", "1/49 expecting EQUALS, found 'yy'"},
             {"copytable (table { symbol = \"x\"; symbol = \"y\"; });",
              "1/75 Tried to set subtable symbol twice"},
             {"copytable (table { page; });", "1/49 expecting }, found 'page'"},
             {"section_layout (page) { }", "1/46 unexpected token: page"},
         });
}

TEST_F(Parser, RefusesStacksAndHeaps)
{
  refuse("architecture aa { space bb { ", " } }",
         {
             {"stack \"ss\" (min_size = 1k, min_size = 2k );",
              "1/72 Tried to set minimal size of stack ss twice"},
             {"stack \"ss\" (grows = low_to_high, grows = low_to_high );",
              "1/84 Tried to set grow direction of stack ss twice"},
             {"stack \"ss\" (align = 1, align = 2 );",
              "1/64 Tried to set alignment of stack ss twice"},
             {"stack \"ss\" ( );", "1/44 unexpected token: )"},
             {"stack ss (min_size = 1);", "1/36 expecting quoted string, found 'ss'"},
             {"stack \"ss\" (size = 1);", "1/42 unexpected token: size"},
             {"heap \"hh\" (fixed = 1);", "1/48 expecting ), found '='"},
         });
}

TEST_F(Parser, RefusesSetups)
{
  refuse("section_setup ::aa { ", " }",
         {
             {"modify input (copy, attributes = +w ) { }",
              "1/59 trying to set attributes twice for input section modification"},
             {"modify input (copy, copy) { }",
              "1/47 trying to set attributes twice for input section modification"},
             {"modify input (space = ::xx, space = ::yy ) { }",
              "1/64 trying to set space twice for input section modification"},
             {"modify input (attributes = ) { }", "1/50 unexpected token: )"},
             {"modify input (tag = \"t\") { }", "1/36 unexpected token: tag"},
             {"modify output (copy) { }", "1/29 expecting \"input\", found 'output'"},
             {"modify input (copy) { select }", "1/52 unexpected token: }"},
             {"prohibit_references_to ;", "1/46 unexpected token: ;"},
             {"prohibit_references_to aa;", "1/48 expecting COLON, found ';'"},
             {"prohibit_references_to ::mau;", "1/47 unexpected token: mau"},
             {"stack \"ss\" (fixed)", "1/42 expecting SEMICOLON, found '}'"},
             {"memory;", "1/22 expecting }, found 'memory'"},
         });
}

TEST_F(Parser, RefusesSetupHeads)
{
  refuse("", "",
         {
             {"section_setup aa { }", "1/19 expecting COLON, found '{'"},
             {"section_setup :aa { }", "1/20 expecting COLON, found '{'"},
             {"section_setup [ { }", "1/16 unexpected token: ["},
             {"section_setup ::aa| { }", "1/22 unexpected token: {"},
             {"section_setup ::aa ; }", "1/21 unexpected token: ;"},
         });
}

TEST_F(Parser, RefusesVectorTables)
{
  refuse("section_setup ::aa { vector_table \"vv\" (", ") { } }",
         {
             {"", "1/41 unexpected token: )"},
             {"size = 4, size = 4 ", "1/61 trying to set size twice for vector table"},
             {"fill = \"f\", fill = loop ",
              "1/66 trying to set default vector value twice for vector table"},
             {"run_addr = 1, run_addr = 2 ", "1/69 trying to set address twice for vector table"},
             {"run_addr = mem:mm[1], run_addr = 2 ",
              "1/77 trying to set address twice for vector table"},
             {"run_addr = mem:mm[1], run_addr = mem:mm[2] ",
              "1/85 trying to set memory address twice for vector table"},
             {"run_addr = 1, run_addr = mem:mm[2] ",
              "1/77 trying to set address twice for vector table"},
             {"run_addr = mem:mm", "1/59 expecting LBRACK, found ')'"},
             {"run_addr = ;", "1/53 unexpected token: ;"},
             {"template = \"t\", template = \"t\" ",
              "1/73 trying to set template name twice for vector table"},
             {"template_symbol = \"t\", template_symbol = \"t\" ",
              "1/87 trying to set template symbol name twice for vector table"},
             {"vector_prefix = \"t\", vector_prefix = \"t\" ",
              "1/83 trying to set vector name prefix twice for vector table"},
             {"fill = [ ]", "1/51 unexpected token: ]"},
             {"fill = loop[ ]", "1/55 unexpected token: ]"},
             {"fill = loop 3", "1/54 unexpected token: 3"},
             {"fill = [1 + 1]", "1/52 expecting RBRACK, found '+'"},
             {"fill = 1", "1/49 unexpected token: 1"},
             {"align = 4", "1/41 unexpected token: align"},
         });
}

TEST_F(Parser, RefusesVectors)
{
  refuse("section_setup ::aa { vector_table \"vv\" (size = 4) { vector (", "); } }",
         {
             {"id = 3 .. 4", "1/68 expecting ), found '..'"},
             {"id = [4 .. 3 ]", "1/75 invalid range for vector IDs"},
             {"id = [1 : 3]", "1/70 unexpected token: :"},
             {"fill = \"x\", fill = \"y\" ", "1/85 trying to set vector value twice"},
             {"optional = 1", "1/71 expecting ), found '='"},
             {"size = 1", "1/61 unexpected token: size"},
         });
}

TEST_F(Parser, RefusesLayouts)
{
  refuse("section_layout ::aa { ", " }",
         {
             {"sym_a = 1;", "1/23 expecting }, found 'sym_a'"},
             {"\"sym\" == 1;", "1/29 unexpected token: =="},
             {"if 1 { }", "1/27 expecting (, found '1'"},
             {"if (1) { } else ;", "1/34 expecting }, found 'else'"},
             {"else { }", "1/23 expecting }, found 'else'"},
             {"reserved \"r\" ( );", "1/39 unexpected token: )"},
             {"reserved \"r\" (tag = \"t\");", "1/37 unexpected token: tag"},
             {"reserved \"r\" (alloc_allowed = 1);", "1/54 unexpected token: 1"},
             {"reserved \"r\" (alloc_allowed = fixed);", "1/53 unexpected token: fixed"},
             {"stack \"s\" (min_size = 1);", "1/34 unexpected token: min_size"},
             {"heap hh;", "1/28 expecting quoted string, found 'hh'"},
             {"heap \"h\" 1;", "1/33 unexpected token: 1"},
             {"copytable ( );", "1/34 expecting SEMICOLON, found '('"},
             {"section \"a\";", "1/34 expecting (, found ';'"},
             {"section \"a\" (size = 1) 2", "1/47 unexpected token: 2"},
             {"section \"a\" (size = 1) { \"x\" = 1; }", "1/48 expecting }, found '\"x\"'"},
             {"section \"a\" (size = 1) { group (copy) select; }", "1/55 unexpected token: copy"},
             {"section \"a\" (size = 1) { group \"x\"; }", "1/54 unexpected token: \"x\""},
             {"section \"a\" (paged) ;", "1/36 unexpected token: paged"},
             {"reserved \"r\" (attributes = rwz );", "1/55 illegal section attribute: z"},
             {"reserved \"r\" (attributes = g);", "1/51 expecting an identifier, found 'g'"},
             {"reserved \"r\" (attributes = if);", "1/50 expecting an identifier, found 'if'"},
             {"reserved \"r\" (attributes = +r);", "1/51 expecting an identifier, found '+'"},
             {"select (attributes = );", "1/45 unexpected token: )"},
             {"select (attributes = +r - );", "1/50 expecting an identifier, found ')'"},
             {"select (size = 1);", "1/31 unexpected token: size"},
             {"select \"x\" \"y\";", "1/34 unexpected token: \"y\""},
             {"select ref_tree ref_tree;", "1/39 unexpected token: ref_tree"},
             {"struct \"s\" { 1 : 2 + 2; }", "1/43 expecting SEMICOLON, found '+'"},
             {"struct \"s\" { ; }", "1/37 expecting }, found ';'"},
             {"memcopy \"m\" ( );", "1/38 unexpected token: )"},
             {"memcopy \"m\" (memory = aa, memory = bb );",
              "1/62 trying to set memory name twice for memory copy \"m\""},
             {"memcopy \"m\" (fill, fill = 1 );",
              "1/52 trying to set fill specification twice for memory copy \"m\""},
             {"memcopy \"m\" (memory = aa bb);", "1/48 unexpected token: bb"},
             {"memcopy \"m\" (size = 1);", "1/36 unexpected token: size"},
             {"select }", "1/31 unexpected token: }"},
             {"group g { }", "1/30 unexpected token: g"},
             {"group \"g\" { }", "1/34 unexpected token: {"},
             {"group mau;", "1/29 unexpected token: mau"},
         });
}

TEST_F(Parser, RefusesLayoutHeads)
{
  refuse("", "",
         {
             {"section_layout ::aa (direction = low_to_high, direction = low_to_high ) { }",
              "1/72 trying to set locate direction twice for a section layout of space aa"},
             {"section_layout aa { }", "1/20 expecting COLON, found '{'"},
             {"section_layout ::aa ;", "1/22 unexpected token: ;"},
             {"section_layout ::aa ( ) { }", "1/24 unexpected token: )"},
             {"section_layout = { }", "1/17 unexpected token: ="},
             {"architecture aa { space bb { section_layout (direction = high_to_low, direction = "
              "low_to_high ) { } } }",
              "1/96 trying to set locate direction twice for a section layout of space bb"},
         });
}

TEST_F(Parser, RefusesGroups)
{
  refuse("section_layout ::aa { group (", ") { } }",
         {
             {"copy, nocopy", "1/36 cannot set both the copy and nocopy attribute on a group"},
             {"nocopy, copy", "1/38 cannot set both the copy and nocopy attribute on a group"},
             {"contiguous = 1", "1/42 expecting ), found '='"},
             {"create_section = \"s\"", "1/46 expecting quoted string, found '='"},
             {"run_addr", "1/39 expecting EQUALS, found ')'"},
             {"load_addr 1", "1/41 unexpected token: 1"},
             {"run_addr = [1 .. ]", "1/48 unexpected token: ]"},
             {"run_addr = [1]", "1/44 expecting KEY_RANGE, found ']'"},
             {"run_addr = mem:mm[1)", "1/50 unexpected token: )"},
             {"run_addr = mem:mm[1] | mem:nn", "1/52 expecting ), found '|'"},
             {"run_addr = mem:mm/", "1/49 unexpected token: )"},
             {"run_addr = mem:mm | 3", "1/51 unexpected token: 3"},
             {"run_addr = mem:mm | mem:nn[1]", "1/59 expecting KEY_RANGE, found ']'"},
             {"run_addr = mem:mm/nn { }", "1/52 unexpected token: {"},
             {"run_addr = \"a\" { }", "1/46 unexpected token: {"},
             {"run_addr = mem:mm | mem:nn[1 .. {", "1/63 unexpected token: {"},
             {"page 2", "1/36 unexpected token: 2"},
             {"attributes = rq ", "1/47 illegal section attribute: q"},
             {"priority = 1 + 1", "1/44 expecting ), found '+'"},
             {"size = 1", "1/30 unexpected token: size"},
         });
}

TEST_F(Parser, RefusesExpressions)
{
  refuse("memory aa { area = ", "; }",
         {
             {"5-=3", "1/21 unexpected token: -="},
             {"aa=bb", "1/20 unexpected token: aa"},
             {"(4)k", "1/23 unexpected token: k"},
             {"foo { }", "1/20 unexpected token: foo"},
             {"max", "1/20 unexpected token: max"},
             {"max(1)", "1/26 expecting COMMA, found ')'"},
             {"absolute(1", "1/31 expecting ), found ';'"},
             {"checksum(crc32, 0, 4)", "1/29 expecting \"crc32w\", found 'crc32'"},
             {"sizeof(sect:aa)", "1/32 expecting quoted string, found 'aa'"},
             {"sizeof(group:\"g\")", "1/33 unexpected token: \"g\""},
             {"sizeof(foo)", "1/27 unexpected token: foo"},
             {"addressof(mem:mm;)", "1/37 unexpected token: ;"},
             {"defined(xx)", "1/28 expecting quoted string, found 'xx'"},
             {"exists \"x\"", "1/20 unexpected token: exists"},
             {"1 ? 2", "1/26 expecting COLON, found ';'"},
             {"1 ? 2 : ", "1/29 unexpected token: ;"},
             {"+1", "1/21 unexpected token: +"},
             {"1 +", "1/24 unexpected token: ;"},
             {"(", "1/21 unexpected token: ;"},
             {"\"a\" \"b\"", "1/24 unexpected token: \"b\""},
             {"1 2", "1/23 unexpected token: 2"},
             {"aa..bb", "1/23 unexpected char: '.'"},
             {"1k k", "1/24 unexpected token: k"},
         });
}

TEST_F(Parser, KeepsMemories)
{
  keep({
      {"memory aa { }", "memory(name=aa)<name@1/8>"},
      {"memory absolute { } memory ranged { } memory exec_priority { } memory crc32 { } memory "
       "crc32w { }",
       "memory(name=absolute)<name@1/8> memory(name=ranged)<name@1/28> "
       "memory(name=exec_priority)<name@1/46> memory(name=crc32)<name@1/71> "
       "memory(name=crc32w)<name@1/88>"},
      {"memory aa (tag = \"a\", tag = \"b\") { type = reserved ram; mau = 8; size = 1k; speed "
       "= 0x100000001; exec_priority = 0; write_mode = \"x\"; write_mode = \"y\"; }",
       "memory(name=aa type=1 reserved mau=8 size=1024 priority=1 exec_priority=0 "
       "write_mode=y)<name@1/8 reserved@1/43 memtype@1/52 mauSize@1/64 size@1/73 speed@1/85 "
       "exec_priority@1/115>"},
      {"memory aa { setuptime = 1; holdtime = 2; cycles = 3; area = 4; area = 5; read_ports = "
       "6; write_ports = 7; readwrite_ports = 8; write_unit = 9; type = blockram; }",
       "memory(name=aa type=4 write_unit=9 setuptime=1 holdtime=2 cycles=3 area=5 read_ports=6 "
       "write_ports=7 readwrite_ports=8)<name@1/8 memtype@1/151>"},
      {"memory aa { map (reserved); map bb (size = 2); type = nvram; fill; fill = [1, 2, 3] : "
       "4; }",
       "memory(name=aa type=3 fill=fill(values=[1, 2, 3] alignment=4)<alignment@1/88> "
       "mappings=[map(reserved)<map@1/13>, map(name=bb size=2)<map@1/29 size@1/45>])<name@1/8 "
       "map@1/13 memtype@1/55 fillSpec@1/62>"},
      {"memory aa { fill; }", "memory(name=aa fill=fill())<name@1/8 fillSpec@1/13>"},
      {"memory aa { fill = 0 : 4; type = rom; }",
       "memory(name=aa type=2 fill=fill(values=[0] alignment=4)<alignment@1/25>)<name@1/8 "
       "fillSpec@1/13 memtype@1/34>"},
  });
}

TEST_F(Parser, KeepsBuses)
{
  keep({
      {"bus aa { mau = 8; mau = 16; width = 32; address_width = 4; wishbone; wishbone; map "
       "(dest = bus:bb:cc); }",
       "bus(name=aa mau=16 width=32 address_width=4 wishbone mappings=[map(kind=1 "
       "destination=bb:cc)<map@1/80 destination@1/96>])<name@1/5 mauSize@1/10 busWidth@1/29 "
       "busAddressWidth@1/41 map@1/80>"},
  });
}

TEST_F(Parser, KeepsMappings)
{
  keep({
      {"bus aa { map mm (dest = space:ss, dest_dbits = 0..7, dest_offset = 1, src_dbits = 8 .. "
       "15, src_offset = 2, size = 3, bank = 4, dest_bank = 1k, priority = 1k, exec_priority = "
       "0, reserved, tag = \"t\"); }",
       "bus(name=aa mappings=[map(name=mm destination=ss dest_dbits=0..7 dest_offset=1 size=3 "
       "src_dbits=8..15 src_offset=2 bank=4 dest_bank=1024 reserved priority=1024 "
       "exec_priority=0)<map@1/10 destination@1/31 connectedDestinationLines@1/49 "
       "destinationOffset@1/69 connectedSourceLines@1/84 sourceOffset@1/106 size@1/116 "
       "bankNum@1/126 destinationBankNum@1/140 priority@1/154 exec_priority@1/174>])<name@1/5 "
       "map@1/10>"},
      {"bus aa { map (dest = bus:bb, bank = 1, bank = 0xFFFFFFFFFFFFFFFFFF, priority = "
       "0x100000001); }",
       "bus(name=aa mappings=[map(kind=1 destination=bb priority=1)<map@1/10 destination@1/26 "
       "bankNum@1/38 priority@1/79>])<name@1/5 map@1/10>"},
  });
}

TEST_F(Parser, KeepsArchitectures)
{
  keep({
      {"architecture aa (xx, yy = 2) extends bb (xx + 1, 3) { space ss { } bus cc { } "
       "endianness { big; little; } endianness { big; } space tt { } }",
       "architecture(name=aa parameters=[xx, yy=2] base=bb arguments=[(+ xx 1), 3] "
       "buses=[bus(name=cc)<name@1/72>] spaces=[space(name=ss)<name@1/61>, "
       "space(name=tt)<name@1/133>] endianness=[1, 2, 1])<name@1/14 base@1/38>"},
      {"architecture aa extends bb { }", "architecture(name=aa base=bb)<name@1/14 base@1/25>"},
  });
}

TEST_F(Parser, KeepsDerivatives)
{
  keep({
      {"derivative aa (xx = 1, yy) extends bb (yy) { core cc { } bus dd { } memory ee { } "
       "section_layout ::ff { } section_setup ::gg { } }",
       "derivative(name=aa parameters=[xx=1, yy] base=bb arguments=[yy] "
       "cores=[core(name=cc)<name@1/51>] buses=[bus(name=dd)<name@1/62>] "
       "memories=[memory(name=ee)<name@1/76>] layouts=[layout(space=ff "
       "statement=block())<section_layout@1/83 spaceName@1/100 statement@1/104>] "
       "setups=[setup(space=gg)<section_setup@1/107 spaceName@1/123>])<name@1/12 base@1/36>"},
      {"processor aa { derivative = bb (1, 2); } processor cc { }",
       "processor(name=aa derivative=bb arguments=[1, 2])<name@1/11 derivativeName@1/29> "
       "processor(name=cc)<name@1/52>"},
      {"derivative aa { core bb { architecture = cc (1, xx); endianness = (big, little); "
       "endianness = (big); import dd; import ee; copytable_space = ff:gg; space_id_offset = "
       "1k; start_address (symbol = \"entry\", run_addr = 0x100, bank = 1); } }",
       "derivative(name=aa cores=[core(name=bb architecture=cc arguments=[1, xx] "
       "endianness=[1, 2, 1] start=start(symbol=entry value=256 bank=1)<start_address@1/186 "
       "symbolName@1/195 value@1/215 bank@1/230> copy_core=ff copy_space=gg imports=[dd, ee] "
       "id_offset=1024)<name@1/22 archName@1/42 copyTableCoreName@1/142 "
       "copyTableSpaceName@1/145 startAddress@1/171>])<name@1/12>"},
  });
}

TEST_F(Parser, KeepsSpaces)
{
  keep({
      {"architecture aa { space bb (tag = \"t\") { mau = 8; id = 1; align = 4; page_size = 16 "
       "[0..3] | [8 .. 11]; page; page; direction = low_to_high; direction = high_to_low; "
       "address_literal_space = cc; map (reserved); map (size = 1); } }",
       "architecture(name=aa spaces=[space(name=bb id=1 mau=8 align=4 page_size=16 "
       "pages=[0..3, 8..11] page direction=2 literals=cc mappings=[map(reserved)<map@1/195>, "
       "map(size=1)<map@1/211 size@1/224>])<name@1/25 mauSize@1/42 id@1/51 alignment@1/59 "
       "pageSize@1/70 pageRestrictSections@1/105 locateDirection@1/129 "
       "address_literal_space@1/167 map@1/195>])<name@1/14>"},
      {"architecture aa { space bb { stack \"ss\" (min_size = 1k, grows = high_to_low, align = "
       "4, fixed, id = 2 * 3, tag = \"t\"); heap \"hh\" (min_size = 1, min_size = 2, id = 1, "
       "fixed, align = 1, align = 2); heap \"ii\" (grows = high_to_low); start_address (bank = "
       "1, bank = 2); start_address (symbol = \"a\"); reserved 0 .. 0xFF; reserved (tag = "
       "\"t\") (1) .. 2; } }",
       "architecture(name=aa spaces=[space(name=bb stacks=[stack(name=ss min_size=1024 grows=2 "
       "align=4 fixed id=(* 2 3))<stack@1/30 name@1/36 minimalSize@1/53 growDirection@1/65 "
       "alignment@1/78 fixed@1/89 id@1/102>] heaps=[heap(name=hh min_size=2 grows=1 align=2 "
       "fixed)<heap@1/120 name@1/125 minimalSize@1/143 id@1/165 fixed@1/167 alignment@1/174>, "
       "heap(name=ii grows=2)<heap@1/197 name@1/202 growDirection@1/216>] reserved=[0..255, "
       "(par 1)..2] start=start(symbol=a)<start_address@1/281 symbolName@1/290>)<name@1/25 "
       "start_address@1/230>])<name@1/14>"},
      {"architecture aa { space bb { copytable; direct_init; } space cc { copytable (align = "
       "4, copy_unit = 1, page, dest = ss, dest dd = ee, table { symbol = \"x\"; space = ::yy, "
       "cc:kk:zz|ww; }, table { }, tag = \"t\"); direct_init (align = 4, dest = ss, dest tt = "
       "uu); } }",
       "architecture(name=aa spaces=[space(name=bb copytable=copytable() "
       "direct_init=direct_init())<name@1/25 table@1/40>, space(name=cc "
       "copytable=copytable(align=4 copy_unit=1 dest=ss dests=[dd>ee] page "
       "tables=[table(symbol=x spaces=[space(name=yy)<spaceRef@1/166 spaceName@1/167>, "
       "space(cpu=cc core=kk name=zz|ww)<spaceRef@1/171 cpuName@1/171 coreName@1/174 "
       "spaceName@1/177>])<table@1/142>, table()<table@1/194>])<alignment@1/78 copyUnit@1/89 "
       "pageRestrictROMCopies@1/104 defaultCopyDestination@1/117 dd@1/126> "
       "direct_init=direct_init(align=4 dest=ss dests=[tt>uu])<alignment@1/223 name@1/241 "
       "tt@1/250>)<name@1/62 table@1/208>])<name@1/14>"},
      {"architecture aa { space bb { bank (stub:template = \"a\", stub:prefix = \"b\", "
       "stub:args:bank = \"c\", stub:args:run_addr = \"d\", stub:args:switch = \"e\", "
       "switch:template = \"f\", switch:prefix = \"g\", switch:args:bank = \"h\", space = cc); "
       "bank (stub:template = \"a\", stub:template = \"b\"); section_layout { } section_layout "
       "(direction = high_to_low, tag = \"t\") { } vector_table \"vv\" (size = 1) { } } }",
       "architecture(name=aa spaces=[space(name=bb vector_tables=[vector_table(name=vv "
       "size=1)<name@1/366 size@1/380>] banks=[bank(stub_template=a stub_bank=c stub_address=d "
       "stub_switch=e stub_prefix=b switch_template=f switch_bank=h switch_prefix=g "
       "space=cc)<bank@1/30 stub_template@1/52 stub_prefix@1/71 stub_arg_bank@1/93 "
       "stub_arg_address@1/119 stub_arg_switch@1/143 switch_template@1/166 switch_prefix@1/187 "
       "switch_arg_bank@1/211 space_name@1/224>, bank(stub_template=b)<bank@1/229 "
       "stub_template@1/251>] layouts=[layout(statement=block())<section_layout@1/278 "
       "statement@1/294>, layout(direction=2 statement=block())<section_layout@1/297 "
       "locateDirection@1/325 statement@1/350>])<name@1/25>])<name@1/14>"},
  });
}

TEST_F(Parser, KeepsSetups)
{
  keep({
      {"section_setup ::aa { } section_setup cc::aa|bb (tag = \"t\") { } section_setup :kk:aa "
       "{ } section_setup cc:kk:aa { }",
       "setup(space=aa)<section_setup@1/1 spaceName@1/17> setup(cpu=cc "
       "space=aa|bb)<section_setup@1/24 cpuName@1/38 spaceName@1/42> setup(core=kk "
       "space=aa)<section_setup@1/64 coreName@1/79 spaceName@1/82> setup(cpu=cc core=kk "
       "space=aa)<section_setup@1/89 cpuName@1/103 coreName@1/106 spaceName@1/109>"},
      {"section_setup ::aa { stack \"ss\" (fixed); heap \"hh\" (fixed); copytable; copytable "
       "(page); start_address (bank = 1); reserved 1 .. 2; prohibit_references_to ::bb, "
       "cc::dd|ee; prohibit_references_to :ff:gg; vector_table \"vv\" (size = 1) { } }",
       "setup(space=aa vector_tables=[vector_table(name=vv size=1)<name@1/217 size@1/231>] "
       "reserved=[1..2] stacks=[stack(name=ss fixed)<stack@1/22 name@1/28 fixed@1/34>] "
       "heaps=[heap(name=hh grows=1 fixed)<heap@1/42 name@1/47 fixed@1/53>] "
       "copytables=[copytable(), copytable(page)<pageRestrictROMCopies@1/83>] "
       "start=start(bank=1)<start_address@1/105 bank@1/113> "
       "prohibited=[space(name=bb)<spaceRef@1/157 spaceName@1/158>, space(cpu=cc "
       "name=dd|ee)<spaceRef@1/162 cpuName@1/162 spaceName@1/166>, space(core=ff "
       "name=gg)<spaceRef@1/197 coreName@1/197 spaceName@1/200>])<section_setup@1/1 "
       "spaceName@1/17 startAddress@1/90>"},
      {"section_setup ::aa { modify input (space = ::ss, copy) { select \"x\"; select; } "
       "modify input (attributes = +rw -xi +s) { } }",
       "setup(space=aa modifications=[modify(space=space(name=ss)<spaceRef@1/45 "
       "spaceName@1/46> selector=+{w}-{} selects=[select(name=x)<select@1/58 "
       "sectionName@1/65>, select()<select@1/70>]), "
       "modify(selector=+{rws}-{xi})])<section_setup@1/1 spaceName@1/17>"},
  });
}

TEST_F(Parser, KeepsVectorTables)
{
  keep({
      {"section_setup ::aa { vector_table \"vv\" (size = 4, vector_size = 2, vector_size = 3, "
       "fill = \"ff\", id_symbol_prefix = \"id\", run_addr = mem:mm:nn[0x10], template = "
       "\"t\", template_symbol = \"u\", vector_prefix = \"v\", no_inline, copy, tag = \"t\") { "
       "vector (id = 0, fill = \"sym\", tag = \"t\"); vector (id = [1, 2 .. 3, 9, 7 .. 12], id "
       "= 5, fill = loop[4], optional); vector (id = [0 .. 2147483647], fill = loop); vector "
       "(fill = [1, 2k]); } }",
       "setup(space=aa vector_tables=[vector_table(name=vv vector_size=3 size=4 "
       "id_symbol_prefix=id address=16 memory=mm:nn template=t template_symbol=u "
       "vector_prefix=v no_inline copy default=value(type=1 symbol=ff)<type@1/92 "
       "symbol_name@1/92> vectors=[vector(ids=0 value=value(type=1 symbol=sym)<type@1/264 "
       "symbol_name@1/264>)<value@1/264>, vector(ids=1..3,5,7..12 value=value(type=3 "
       "offset=4)<type@1/341 loop_offset@1/341> optional)<id@1/297 value@1/336 "
       "optional@1/354>, vector(ids=0..2147483647 value=value(type=3)<type@1/400>)<id@1/370 "
       "value@1/395>, vector(ids value=value(type=2 values=[1, "
       "2048])<type@1/418>)<value@1/418>])<name@1/35 size@1/49 vector_size@1/66 "
       "default_value@1/92 id_symbol_prefix@1/117 run_address@1/134 template_name@1/162 "
       "template_symbol_name@1/185 vector_name_prefix@1/206 "
       "default_inline@1/211>])<section_setup@1/1 spaceName@1/17>"},
      {"section_setup ::aa { vector_table \"vv\" (run_addr = 16) { } vector_table \"ww\" (fill "
       "= loop[1]) { } }",
       "setup(space=aa vector_tables=[vector_table(name=vv address=16)<name@1/35 "
       "run_address@1/52>, vector_table(name=ww default=value(type=3 offset=1)<type@1/91 "
       "loop_offset@1/91>)<name@1/73 default_value@1/86>])<section_setup@1/1 spaceName@1/17>"},
  });
}

TEST_F(Parser, KeepsStatements)
{
  keep({
      {"section_layout ::aa { \"sym_a\" := 1; \"sym_b\" += addressof(sect:\"a\"); \"c\" = 1; "
       "\"d\" -= 2; \"e\" *= 3; \"f\" /= 4; }",
       "layout(space=aa statement=block(of=[assign(symbol=sym_a op=2 value=1)<symbolName@1/23 "
       "op@1/32 value@1/35>, assign(symbol=sym_b op=3 value=addressof:0:a)<symbolName@1/37 "
       "op@1/45 value@1/48>, assign(symbol=c op=1 value=1)<symbolName@1/69 op@1/74 "
       "value@1/76>, assign(symbol=d op=4 value=2)<symbolName@1/78 op@1/82 value@1/86>, "
       "assign(symbol=e op=5 value=3)<symbolName@1/88 op@1/92 value@1/96>, assign(symbol=f "
       "op=6 value=4)<symbolName@1/98 op@1/102 value@1/106>]))<section_layout@1/1 "
       "spaceName@1/18 statement@1/22>"},
      {"section_layout ::aa { if (1) { } else { } if (aa) if (bb) select \"x\"; else select "
       "\"y\"; }",
       "layout(space=aa statement=block(of=[if(condition=1 true=block() "
       "false=block())<condition@1/27 trueStatement@1/31 falseStatement@1/40>, if(condition=aa "
       "true=if(condition=bb true=select(name=x)<select@1/59 sectionName@1/66> "
       "false=select(name=y)<select@1/76 sectionName@1/83>)<condition@1/55 trueStatement@1/59 "
       "falseStatement@1/76>)<condition@1/47 trueStatement@1/51>]))<section_layout@1/1 "
       "spaceName@1/18 statement@1/22>"},
      {"section_layout ::aa { reserved \"r\"; reserved \"r\" (size = 1k, fill = 0, attributes "
       "= rw, alloc_allowed = ranged); reserved \"s\" (alloc_allowed = absolute, size = 1, "
       "size = 2, attributes = r, attributes = w); }",
       "layout(space=aa statement=block(of=[reserved(name=r)<sectionName@1/32>, "
       "reserved(name=r size=1024 attributes={rw} fill=fill(values=[0]) absolute "
       "ranged)<sectionName@1/46 size@1/51 attributes@1/72 allowAllocRanged@1/105>, "
       "reserved(name=s size=2 attributes={w} absolute)<sectionName@1/123 "
       "allowAllocAbsolute@1/144 size@1/154 attributes@1/174>]))<section_layout@1/1 "
       "spaceName@1/18 statement@1/22>"},
      {"section_layout ::aa { stack \"s\"; stack \"s\" (size = 1, tag = \"x\"); heap \"h\" "
       "(size = 1, size = 2); copytable; memcopy \"m\" (memory = aa:bb, fill = 0); }",
       "layout(space=aa statement=block(of=[stack(name=s)<name@1/29>, stack(name=s "
       "size=1)<name@1/40 size@1/45>, heap(name=h size=2)<sectionName@1/72 size@1/77>, "
       "copytable()<copytable@1/98>, memcopy(name=m memory=aa:bb "
       "fill=fill(values=[0]))<sectionName@1/122 memName@1/122 "
       "fillSpec@1/138>]))<section_layout@1/1 spaceName@1/18 statement@1/22>"},
      {"section_layout ::aa { struct \"s\" { 1 : 4; \"sym\" : 1k; aa ? 1 : 2 : 3; } struct "
       "\"t\" { } }",
       "layout(space=aa statement=block(of=[struct(name=s members=[1:4, \"sym\":1024, (? aa 1 "
       "2):3])<sectionName@1/30>, struct(name=t)<sectionName@1/80>]))<section_layout@1/1 "
       "spaceName@1/18 statement@1/22>"},
      {"section_layout ::aa { select; select ref_tree \"x\" (attributes = +r -w +xfg, tag = "
       "\"t\", attributes = -b); select (tag = \"t\"); { select \"*\"; { } } }",
       "layout(space=aa statement=block(of=[select()<select@1/23>, select(name=x ref_tree "
       "selectors=[+{rx}-{w}, +{}-{b}])<select@1/31 referenceTree@1/38 sectionName@1/47>, "
       "select()<select@1/106>, block(of=[select(name=*)<select@1/128 sectionName@1/135>, "
       "block()])]))<section_layout@1/1 spaceName@1/18 statement@1/22>"},
      {"section_layout ::aa { section \"a\" (size = 1, blocksize = 2, overflow = \"b\", "
       "attributes = rw, fill = 1, tag = \"t\"); section \"a\" (size = 1) { select \"*\"; "
       "group gg (align = 4, attributes = r, attributes = w, load_addr, tag = \"t\") select "
       "\"x\"; { select \"y\"; } group { } } }",
       "layout(space=aa statement=block(of=[section(name=a overflow=b size=1 blocksize=2 "
       "attributes={rw} fill=fill(values=[1]) statement=block())<statement@1/23 "
       "sectionName@1/31 size@1/44 blockSize@1/59 overflowSectionName@1/72 attributes@1/77>, "
       "section(name=a size=1 statement=block(of=[select(name=*)<select@1/141 "
       "sectionName@1/148>, group(name=gg align=4 attributes={rw} load_addr "
       "statement=select(name=x)<select@1/228 sectionName@1/235>)<group@1/153 alignment@1/172 "
       "attributes@1/174 loadTimeGroup@1/206 statement@1/228>, "
       "block(of=[select(name=y)<select@1/242 sectionName@1/249>]), "
       "group(statement=block())<group@1/256 statement@1/263>]))<statement@1/116 "
       "sectionName@1/124 size@1/137>]))<section_layout@1/1 spaceName@1/18 statement@1/22>"},
  });
}

TEST_F(Parser, KeepsLayoutHeads)
{
  keep({
      {"section_layout cc:kk:ss|tt (direction = high_to_low) { }",
       "layout(cpu=cc core=kk space=ss|tt direction=2 statement=block())<section_layout@1/1 "
       "cpuName@1/16 coreName@1/19 spaceName@1/22 locateDirection@1/41 statement@1/55>"},
      {"section_layout { }", "layout(statement=block())<section_layout@1/1 statement@1/17>"},
  });
}

TEST_F(Parser, KeepsGroups)
{
  keep({
      {"section_layout ::aa { group (contiguous, ordered, clustered, overlay, copy, align = 1, "
       "attributes = r, attributes = wx, fill = 1, page, priority = 0xFFFFFFFF, "
       "allow_cross_references, tag = \"t\") { select; } group gg select \"x\"; group (nocopy, "
       "create_section \"s\", page = 2, page_size = 256 [0 .. 3] | [8 .. 11]) group { } }",
       "layout(space=aa statement=block(of=[group(contiguous clustered ordered overlay copy "
       "align=1 attributes={rwx} fill=fill(values=[1]) page cross priority=-1 "
       "statement=block(of=[select()<select@1/197>]))<group@1/23 contiguous@1/30 ordered@1/42 "
       "clustered@1/51 overlay@1/62 copy@1/71 alignment@1/86 attributes@1/88 paged@1/131 "
       "priority@1/147 crossReferences@1/160 statement@1/196>, group(name=gg "
       "statement=select(name=x)<select@1/216 sectionName@1/223>)<group@1/207 "
       "statement@1/216>, group(nocopy page page_num=2 page_size=256 pages=[0..3, 8..11] "
       "section=s statement=group(statement=block())<group@1/311 statement@1/318>)<group@1/228 "
       "nocopy@1/235 outputSectionName@1/258 paged@1/263 pageNum@1/271 pageAlign@1/285 "
       "statement@1/311>]))<section_layout@1/1 spaceName@1/18 statement@1/22>"},
      // The last page size counts, with its ranges.
      {"section_layout ::aa { group (page_size = 1 [0 .. 3], page_size = 2 [4 .. 5] | [6 .. 7], "
       "page_size = 3) { } group (page_size = 1 [0 .. 3], page_size = 2 [4 .. 5]) { } }",
       "layout(space=aa statement=block(of=[group(page_size=3 statement=block())<group@1/23 "
       "pageAlign@1/43 statement@1/105>, group(page_size=2 pages=[4..5] "
       "statement=block())<group@1/108 pageAlign@1/128 statement@1/164>]))<section_layout@1/1 "
       "spaceName@1/18 statement@1/22>"},
      {"section_layout ::aa { group (load_addr) { } group (load_addr = 0x100, run_addr = "
       "[0x100 .. 0x1FF] | [1 .. 2]) { } group (run_addr = mem:mm) { } group (run_addr = "
       "mem:mm:nn/oo[0x10]) { } }",
       "layout(space=aa statement=block(of=[group(load_addr statement=block())<group@1/23 "
       "loadTimeGroup@1/30 statement@1/42>, group(load_addr "
       "load=location(address=256)<address@1/64> run=location(ranges=[range(low=256 high=511), "
       "range(low=1 high=2)])<range@1/83> statement=block())<group@1/45 loadTimeGroup@1/52 "
       "loadAddress@1/64 runAddress@1/83 statement@1/112>, "
       "group(run=location(ranges=[range(memory=mm)])<memoryReference@1/133> "
       "statement=block())<group@1/115 runAddress@1/133 statement@1/142>, "
       "group(run=location(address=16 memory=mm:nn mapping=oo)<memoryReference@1/163 "
       "address@1/176> statement=block())<group@1/145 runAddress@1/163 "
       "statement@1/184>]))<section_layout@1/1 spaceName@1/18 statement@1/22>"},
      {"section_layout ::aa { group (run_addr = mem:mm/map1[0 .. 4] | [8 .. 12] | mem:nn | "
       "mem:oo/pp | mem:qq[1 .. ] | mem:rr/ss[1 .. 2]) { } group (run_addr = mem:mm[0 .. ], "
       "load_addr = mem:mm/pp | mem:nn) { } }",
       "layout(space=aa statement=block(of=[group(run=location(ranges=[range(memory=mm "
       "mapping=map1 low=0 high=4), range(low=8 high=12), range(memory=nn), range(memory=oo "
       "mapping=pp), range(memory=qq low=1), range(memory=rr mapping=ss low=1 "
       "high=2)])<memoryReference@1/41 address@1/53> statement=block())<group@1/23 "
       "runAddress@1/41 statement@1/132>, group(load_addr "
       "load=location(ranges=[range(memory=mm mapping=pp), "
       "range(memory=nn)])<memoryReference@1/180> run=location(ranges=[range(memory=mm "
       "low=0)])<memoryReference@1/153 address@1/160> statement=block())<group@1/135 "
       "runAddress@1/153 loadTimeGroup@1/168 loadAddress@1/180 "
       "statement@1/201>]))<section_layout@1/1 spaceName@1/18 statement@1/22>"},
  });
}

TEST_F(Parser, GroupsExpressions)
{
  const Row rows[] = {
      {"1+2*3", "(+ 1 (* 2 3))"},
      {"1-2-3", "(- (- 1 2) 3)"},
      {"aa?bb:cc?dd:ee", "(? aa bb (? cc dd ee))"},
      {"aa?bb?1:2:3", "(? aa (? bb 1 2) 3)"},
      {"1<<2+1", "(<< 1 (+ 2 1))"},
      {"1&2==2", "(& 1 (== 2 2))"},
      {"!aa==bb", "(== (! aa) bb)"},
      {"(1+2)*3", "(* (par (+ 1 2)) 3)"},
      {"--1", "(neg (neg 1))"},
      {"1--1", "(- 1 (neg 1))"},
      {"~-!1", "(~ (neg (! 1)))"},
      {"4k*2", "(* 4096 2)"},
      {"2m", "2097152"},
      {"0x7FFFFFFFFFFFFFFFg", "-1073741824"},
      {"0xFFFFFFFFFFFFFFFFFF", "9223372036854775807"},
      {"017", "15"},
      {"\"foo\"+1", "(+ \"foo\" 1)"},
      {"foo.bar+1", "(+ foo.bar 1)"},
      {"absolute+absolute(1)", "(+ absolute (absolute 1))"},
      {"absolute (1)", "(absolute 1)"},
      {"checksum(crc32w, 0, 1+4)", "(checksum:0 0 (+ 1 4))"},
      {"sizeof(sect:\"a\")", "sizeof:1:a"},
      {"sizeof(group:gg)+sizeof(mem:mm)", "(+ sizeof:2:gg sizeof:4:mm)"},
      {"addressof(sect:\"a\")+addressof(group:gg)", "(+ addressof:0:a addressof:1:gg)"},
      {"addressof(mem:cpu:mm)", "addressof:2:cpu:mm"},
      {"defined(\"x\")||exists(\"y\")", "(|| defined:x exists:y)"},
      {"max(1,2)/min(3,4)%5", "(% (/ (max 1 2) (min 3 4)) 5)"},
      {"1||2&&3|4^5&6==7>8>>9+10*11",
       "(|| 1 (&& 2 (| 3 (^ 4 (& 5 (== 6 (> 7 (>> 8 (+ 9 (* 10 11))))))))))"},
      {"11*10+9>>8<7!=6&5^4|3&&2||1",
       "(|| (&& (| (^ (& (!= (< (>> (+ (* 11 10) 9) 8) 7) 6) 5) 4) 3) 2) 1)"},
      {"1>=2<=3", "(<= (>= 1 2) 3)"},
      {"crc32w*crc32", "(* crc32w crc32)"},
  };
  for (const Row &row : rows)
    EXPECT_EQ(outcome("memory aa { area = " + row.text + "; }"),
              "memory(name=aa area=" + row.expected + ")<name@1/8>")
        << row.text;
}

TEST_F(Parser, KeepsPlacesOfExpressions)
{
  TextStream stream(
      "memory aa { area = -bb + (\"cc\" * 1k) - checksum(crc32w, 11, addressof(mem:dd))"
      " / sizeof(group:ee); }");
  const auto result = parse_target_file(stream);
  const TDMFileExpression &area = *result->memories.front()->area;
  EXPECT_EQ(dump_with_places(area),
            "(- (+ (neg bb<name@1/21>)<op@1/21> (par (* \"cc\"<name@1/27> "
            "1024<number@1/34>))<op@1/27>) (/ (checksum:0 11<number@1/57> "
            "addressof:2:dd<addressof@1/71 objType@1/71 objName@1/71>)<checksum@1/49 "
            "algo@1/49 start@1/57 end@1/61> sizeof:2:ee<sizeof@1/89 objType@1/89 "
            "objName@1/95>))");
  EXPECT_EQ(dump_with_places(*area.clone()), dump(area)); // a copy has no places
}

// A rule fails at the token behind the value. If there is no token, that is the failure.
TEST_F(Parser, ReportsWhatTheLexerRefuses)
{
  refuse("", "",
         {{"memory aa { type = rom; type = rom @", "1/37 unexpected char: '@'"},
          {"memory aa { size = \"\\n\"; }", "1/21 expecting ''\"'', found ''\\''"},
          {"memory aa { } // end", "1/21 unexpected char: EOF"}});
}

} // namespace
