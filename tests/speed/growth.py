#!/usr/bin/env python3
"""Fail when a parse grows faster than its text.

    growth.py [--sanitized] [--tool TDM] PROGRAM

PROGRAM parses the file that it is given, whole (bench/parse.cpp). Each shape below is a list that a
description may hold any number of. Twice as many entries may take little more than twice the
instructions, as callgrind counts them; what goes through a whole list for each of its entries takes
visibly more. The counts are as small as that allows. TDM checks a description of many messages.
"""
import argparse
import os
import shutil
import sys
import tempfile

from callgrind import instructions

LIMIT = 2.1
SKIPPED = 77

HEAD = "architecture a { bus b { mau = 8; width = 8; }\n"
CORE = "core c { architecture = a; }"
LINEAR = "space lin { id = 1; mau = 8; map (size = 1G, dest = bus:b); }\n"


def memory(size, maps):
    return f"memory mem1 {{ mau = 8; type = ram; size = {size}; {maps} }}\n"


def spaces(count):
    return "".join(f"space x{i} {{ id = {i + 2}; mau = 8; "
                   f"map (size = 16, src_offset = {i * 16}, dest_offset = {i * 16}, dest = bus:b); }}\n"
                   for i in range(count))


def copy_destinations(count):
    """Pairs of a copy table, each with the place of its source."""
    pairs = "".join(f", dest x{i} = x0" for i in range(count))
    return (f"{HEAD}{spaces(count)}space lin {{ id = 1; mau = 8; map (size = 1, dest = bus:b); "
            f"copytable (page{pairs}); }} }}\nderivative d {{ {CORE} }}\n")


def named_mappings(count):
    """Places of groups in mappings of one memory."""
    maps = "".join(f"map m{i} (size = 16, src_offset = {i * 16}, dest_offset = {i * 16}, "
                   "dest = bus:c:b);\n" for i in range(count))
    groups = "".join(f"group (run_addr = mem:mem1/m{i}) {{ }}\n" for i in range(count))
    return (f"{HEAD}{LINEAR}}}\nderivative d {{ {CORE} {memory('1G', maps)} }}\n"
            f"section_layout ::lin {{ {groups} }}\n")


def clone_of_banks(count):
    """A space that stands for another one and all banks of that."""
    maps = "".join(f"map (size = 16, dest_offset = {i * 16}, dest = bus:b, bank = {i});\n"
                   for i in range(count))
    return (f"{HEAD}space banked {{ id = 1; mau = 8; bank (space = banked); {maps} }}\n"
            "space two { id = 2; mau = 8; map (size = 4, src_offset = 1G, dest = bus:b); } }\n"
            f"derivative d {{ {CORE} {memory('1G', 'map (size = 1G, dest = bus:c:b);')} }}\n"
            "section_layout ::banked|two { }\n")


def clone_of_mapped_space(count):
    """A space that stands for one and, last, for another that this is mapped to."""
    maps = "".join(f"map (size = 16, src_offset = {i * 16}, dest_offset = {i * 32}, dest = bus:b);\n"
                   for i in range(count))
    return (f"{HEAD}space low {{ id = 1; mau = 8; {maps} }}\n"
            "space above { id = 2; mau = 8; map (size = 1G, dest = space:low); } }\n"
            f"derivative d {{ {CORE} {memory('1G', 'map (size = 1G, dest = bus:c:b);')} }}\n"
            "section_layout ::above|low { }\n")


def clone_of_many(count):
    """A space that stands for many."""
    names = "|".join(f"x{i}" for i in range(count))
    return (f"{HEAD}{spaces(count)}}}\n"
            f"derivative d {{ {CORE} {memory('1G', 'map (size = 1G, dest = bus:c:b);')} }}\n"
            f"section_layout ::{names} {{ }}\n")


def many_clones(count):
    """Spaces that each stand for two."""
    layouts = "".join(f"section_layout ::x{i}|x{i + 1} {{ }}\n" for i in range(count - 1))
    return f"{HEAD}{spaces(count)}}}\nderivative d {{ {CORE} }}\n{layouts}"


def messages_of_one_file(count):
    """Each in another reading of it."""
    return "#include HEADER\n" * count, "#warning\n"


def groups_of_a_header(count):
    """Comments and skipped groups of a text that is included again."""
    return "#include HEADER\n" * 2, "/*a*/\n" * count + "#ifdef X\n#endif\n" * count


SHAPES = [(copy_destinations, 1500), (named_mappings, 1000), (clone_of_banks, 400),
          (clone_of_mapped_space, 400), (clone_of_many, 250), (many_clones, 1000)]
TOOL_SHAPES = [(messages_of_one_file, 1000), (groups_of_a_header, 600)]


def write(path, text):
    """The text, or one and the header that it includes."""
    if isinstance(text, tuple):
        text, header = text
        write(f"{path}.header", header)
        text = f'#define HEADER "{path}.header"\n{text}'
    with open(path, "w", encoding="ascii") as file:
        file.write(text)


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("--sanitized", action="store_true")
    parser.add_argument("--tool")
    parser.add_argument("program")
    args = parser.parse_args()
    if args.sanitized:
        print("skipped: sanitizers count among the instructions")
        return SKIPPED
    if shutil.which("valgrind") is None:
        print("skipped: valgrind is not installed")
        return SKIPPED
    faster = False
    with tempfile.TemporaryDirectory(prefix="tdm_growth_") as work:
        runs = [(args.program, (), 0, shape, count) for shape, count in SHAPES]
        if args.tool:
            runs += [(args.tool, ("check",), 1, shape, count) for shape, count in TOOL_SHAPES]
        for program, options, code, shape, count in runs:
            taken = []
            for entries in (count, 2 * count):
                path = os.path.join(work, f"{shape.__name__}_{entries}.tdm")
                write(path, shape(entries))
                taken.append(instructions(program, path, f"{path}.counts", *options, code=code))
            ratio = taken[1] / taken[0]
            faster = faster or ratio > LIMIT
            print(f"{shape.__name__:22} {count:5} {taken[0]:12} {2 * count:5} {taken[1]:12} "
                  f"{ratio:.2f}{'   ABOVE THE LIMIT' if ratio > LIMIT else ''}")
    return 1 if faster else 0


if __name__ == "__main__":
    sys.exit(main())
