// The table of examples: for each message that a description can provoke, a text that provokes it and
// no other, and one that doesn't. The suite runs them all, in front of a description that is in order.
#include "message_texts.h"

#include <algorithm>
#include <iterator>

namespace tool {

namespace {

// clang-format off
constexpr MessageExample examples[] = {
{901,
R"(#define FLASH_KB 32768
#if FLASH_KB > 16384
#error the window shows 16 MB at the most
#endif
)",
R"(#define FLASH_KB 16384
#if FLASH_KB > 16384
#error the window shows 16 MB at the most
#endif
)"},
{904,
R"(#define quoted(name) # nam
)",
R"(#define quoted(name) # name
)"},
{907,
R"(#define nothing()
nothing(1)
)",
R"(#define nothing()
nothing()
)"},
{911,
R"(#define BANKS 0
#if 4096 / BANKS > 1024
#endif
)",
R"(#define BANKS 0
#if BANKS != 0 && 4096 / BANKS > 1024
#endif
)"},
{914,
R"(#if 09 == 9
#endif
)",
R"(#if 9 == 9
#endif
)"},
{916,
R"(#define defined 1
)",
R"(#define is_defined 1
)"},
{917,
R"(#define __FILE__ "chip.tdm"
)",
R"(#define CHIP_FILE "chip.tdm"
)"},
{918,
R"(#undef __LINE__
)",
R"(#undef LINE
)"},
{919,
R"($ tdm check -I . example.tdm
#define CORE <core.tdm
#include CORE
--- core.tdm
// what the cores share
)",
R"($ tdm check -I . example.tdm
#define CORE <core.tdm>
#include CORE
--- core.tdm
// what the cores share
)"},
{920,
R"(#define window(base, length)
window(0)
)",
R"(#define window(base, length)
window(0, 16)
)"},
{921,
R"(#include core.tdm
--- core.tdm
// what the cores share
)",
R"(#include "core.tdm"
--- core.tdm
// what the cores share
)"},
{923,
R"(#ifdef "LARGE"
#endif
)",
R"(#ifdef LARGE
#endif
)"},
{924,
R"(#ifndef
#endif
)",
R"(#ifndef LARGE
#endif
)"},
{925,
R"(#undef "LARGE"
)",
R"(#undef LARGE
)"},
{926,
R"(#line "chip.in"
)",
R"(#line 10 "chip.in"
)"},
{927,
R"(#if '\x' == 'A'
#endif
)",
R"(#if '\x41' == 'A'
#endif
)"},
{928,
R"(#ifdef LARGE
)",
R"(#ifdef LARGE
#endif
)"},
{929,
R"(#if 16uu > 8
#endif
)",
R"(#if 16u > 8
#endif
)"},
{930,
R"(#define window(base)
window((0)
)",
R"(#define window(base)
window((0))
)"},
{931,
R"(#define window(1) 0
)",
R"(#define window(base) 0
)"},
{932,
R"(#if (1 + 1
#endif
)",
R"(#if (1 + 1)
#endif
)"},
{933,
R"(#line 10 chip
)",
R"(#line 10 "chip.in"
)"},
{934,
R"(#"core.tdm"
--- core.tdm
// what the cores share
)",
R"(#include "core.tdm"
--- core.tdm
// what the cores share
)"},
{935,
R"(#define window(base)
window(0, 16)
)",
R"(#define window(base)
window((0, 16))
)"},
{936,
R"(#inlcude "core.tdm"
--- core.tdm
// what the cores share
)",
R"(#include "core.tdm"
--- core.tdm
// what the cores share
)"},
{937,
R"(#else
#endif
)",
R"(#ifdef LARGE
#else
#endif
)"},
{938,
R"(#if 0
This part doesn't count.
#endif
)",
R"(#if 0
This part does not count.
#endif
)"},
{939,
R"(/* what the cores share
)",
R"(/* what the cores share */
)"},
{940,
R"(#include "core.tdm
--- core.tdm
// what the cores share
)",
R"(#include "core.tdm"
--- core.tdm
// what the cores share
)"},
{941,
R"(#if 0
"data
#endif
)",
R"(#if 0
"data"
#endif
)"},
{943,
R"($ tdm check -D 2BANKS example.tdm
#ifdef BANKS2
#endif
)",
R"($ tdm check -D BANKS2 example.tdm
#ifdef BANKS2
#endif
)"},
{944,
R"(#if 0x > 8
#endif
)",
R"(#if 0x10 > 8
#endif
)"},
{945,
R"(#if 0
"\u12"
#endif
)",
R"(#if 0
"\u00E9"
#endif
)"},
{946,
R"(#define BANKS 2
#define BANKS() 2
)",
R"(#define BANKS 2
#undef BANKS
#define BANKS() 2
)"},
{947,
R"(#define joined(a, b) a b ##
)",
R"(#define joined(a, b) a ## b
)"},
{948,
R"(#include "core.tdm"
)",
R"(#include "core.tdm"
--- core.tdm
// what the cores share
)"},
{950,
R"(#if 16f > 8
#endif
)",
R"(#if 16 > 8
#endif
)"},
{951,
R"(#define joined(a, a) a
)",
R"(#define joined(a, b) a
)"},
{952,
R"(#if defined(
#endif
)",
R"(#if defined(LARGE)
#endif
)"},
{953,
R"(#define joined(a, b) ## a b
)",
R"(#define joined(a, b) a ## b
)"},
{954,
R"(#define
)",
R"(#define LARGE
)"},
{955,
R"(#define n1 0 + 0 + 0 + 0 + 0 +
#define n2 n1 n1 n1 n1 n1 n1 n1 n1 n1 n1
#define n3 n2 n2 n2 n2 n2 n2 n2 n2 n2 n2
#define n4 n3 n3 n3 n3 n3 n3 n3 n3 n3 n3
#define n5 n4 n4 n4 n4 n4 n4 n4 n4 n4 n4
#define n6 n5 n5 n5 n5 n5 n5 n5 n5 n5 n5
#define n7 n6 n6 n6 n6 n6 n6 n6 n6 n6 n6
#define n8 n7 n7 n7 n7 n7 n7 n7 n7 n7 n7
#if n8 0
#endif
)",
R"(#define n1 0 + 0 + 0 + 0 + 0 +
#define n2 n1 n1 n1 n1 n1 n1 n1 n1 n1 n1
#if n2 0
#endif
)"},
{956,
R"(#include "example.tdm"
)",
R"(#ifndef EXAMPLE
#define EXAMPLE
#include "example.tdm"
#endif
)"},
{957,
R"(#include "a.tdm"
#include "a.tdm"
#include "a.tdm"
#include "a.tdm"
--- a.tdm
#include "b.tdm"
#include "b.tdm"
#include "b.tdm"
#include "b.tdm"
--- b.tdm
#include "c.tdm"
#include "c.tdm"
#include "c.tdm"
#include "c.tdm"
--- c.tdm
#include "d.tdm"
#include "d.tdm"
#include "d.tdm"
#include "d.tdm"
--- d.tdm
#include "e.tdm"
#include "e.tdm"
#include "e.tdm"
#include "e.tdm"
--- e.tdm
#include "f.tdm"
#include "f.tdm"
#include "f.tdm"
#include "f.tdm"
--- f.tdm
#include "g.tdm"
#include "g.tdm"
#include "g.tdm"
#include "g.tdm"
--- g.tdm
#include "h.tdm"
#include "h.tdm"
#include "h.tdm"
#include "h.tdm"
--- h.tdm
// 65,536 times
)",
R"(#include "a.tdm"
--- a.tdm
// once
)"},
{969,
R"(#define IS_LARGE defined(LARGE)
#if IS_LARGE
#endif
)",
R"(#ifdef LARGE
#define IS_LARGE 1
#else
#define IS_LARGE 0
#endif
#if IS_LARGE
#endif
)"},
{971,
R"(#if '\q' == 'q'
#endif
)",
R"(#if 'q' == 'q'
#endif
)"},
{972,
R"(#define BANKS 2
#define BANKS 4
)",
R"(#define BANKS 2
#undef BANKS
#define BANKS 4
)"},
{973,
R"(#pragma nomisrac
)",
R"(// no pragma
)"},
{974,
R"(#ifdef LARGE
#endif LARGE
)",
R"(#ifdef LARGE
#endif // LARGE
)"},
{975,
R"(#define OFFSET-1
)",
R"(#define OFFSET -1
)"},
{976,
R"(#if 0
"what??!"
#endif
)",
R"(#if 0
"what?\?!"
#endif
)"},
{977,
R"(#if 0
"\18"
#endif
)",
R"(#if 0
"\22"
#endif
)"},
{978,
R"(#define joined(a, b) a ## b
#if joined(4, /) 2 == 2
#endif
)",
R"(#define joined(a, b) a ## b
#if joined(4, 2) == 42
#endif
)"},
{979,
R"(/* the cores /* and what they share */
)",
R"(/* the cores, and what they share */
)"},
{980,
R"(#warning the sizes are those of the prototype
)",
R"(// The sizes are those of the prototype.
)"},
{981,
R"(#define BANKS 2
#define BANKS 4
)",
R"(#define BANKS 2
)"},
{982,
R"($ tdm check boards
--- boards/small.tdm
// the small board
)",
R"($ tdm check boards/small.tdm
--- boards/small.tdm
// the small board
)"},
};
// clang-format on

static_assert(std::is_sorted(std::begin(examples), std::end(examples),
                             [](const MessageExample &left, const MessageExample &right) {
                               return left.number < right.number;
                             }));

} // namespace

const MessageExample *message_example(int number)
{
  const MessageExample *found =
      std::lower_bound(std::begin(examples), std::end(examples), number,
                       [](const MessageExample &row, int wanted) { return row.number < wanted; });
  return found != std::end(examples) && found->number == number ? found : nullptr;
}

} // namespace tool
