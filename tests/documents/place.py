#!/usr/bin/env python3
"""Runs the example `place` on its example program, and compares what it shows.

    place.py PLACE PROGRAM_DIR [--update]

PROGRAM_DIR holds the object files of examples/c/program. Tables are compared with the files of
TABLES, which --update writes anew; FAILURES are calls that end with 1 and a message.
"""
import pathlib
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
OBJECTS = ("startup.o", "main.o", "uart.o")

# (file with the table, words before the objects)
TABLES = (
    ("examples/c/program/rp2040.txt", ["examples/rp2040/rp2040.tdm"]),
    ("examples/c/program/atmega328p.txt", ["examples/atmega328p/atmega328p.tdm"]),
    ("examples/c/program/mbc1.txt", ["examples/gameboy_mbc1/mbc1.tdm"]),
    ("tests/documents/place/load_address.txt", ["tests/documents/place/load_address.tdm"]),
)

CHIP = "examples/rp2040/rp2040.tdm"
# (words, with *.o for the objects; the message, or what it begins with where it ends in "...")
FAILURES = (
    ([CHIP, "*.o", "missing.o"], "missing.o: No such file or directory"),
    ([CHIP, "README.md"], "README.md: is no ELF object file"),
    ([CHIP, "examples"], "examples: is no ELF object file"),
    ([CHIP, "{place}"], "{place}: is no ELF object file"),
    ([CHIP, "{cut}"], "{cut}: the table of its sections is damaged"),
    (["missing.tdm", "*.o"], "..."),
    (["tests/documents/place/contradiction.tdm", "*.o"],
     '["./tests/documents/place/contradiction.tdm" 8/22] syntax error: '
     "trying to set ordered restriction for clustered group"),
    (["tests/documents/place/unreachable.tdm", "*.o"],
     '["./tests/documents/place/unreachable.tdm" 6/33] syntax error: absolute location in memory '
     "for group does not map to space rp2040:core1:linear"),
    (["-D", "HEAP_SIZE=256k", CHIP, "*.o"],
     "no room in rp2040:core0:linear for (heap) heap"),
    (["-D", "STACK_SIZE=1M * 1M * 1M", CHIP, "*.o"],
     "the size of (stack) stack is out of range"),
    (["-D", "FLASH_KB=32768", CHIP, "*.o"],
     "./examples/rp2040/rp2040.tdm:19: #error the XIP window shows 16 MB of flash at the most"),
)


def run(place, words, objects, cut=""):
    words = [text for word in words
             for text in (objects if word == "*.o" else [word.format(place=place, cut=cut)])]
    return subprocess.run([place, *words], capture_output=True, text=True, cwd=ROOT, check=False)


def table_faults(place, objects, update):
    for name, words in TABLES:
        found = run(place, [*words, "*.o"], objects)
        if update:
            (ROOT / name).write_text(found.stdout, encoding="utf-8")
        expected = (ROOT / name).read_text(encoding="utf-8")
        if (found.returncode, found.stdout, found.stderr) != (0, expected, ""):
            yield (f"{name}: expected\n{expected}"
                   f"found {found.returncode}\n{found.stdout}{found.stderr}")


def failure_faults(place, objects, cut):
    for words, message in FAILURES:
        found = run(place, words, objects, cut)
        expected = "place: " + message.format(place=place, cut=cut)
        agrees = (found.stderr.startswith(expected[:-3]) if message.endswith("...")
                  else found.stderr == expected + "\n")
        if not agrees or found.returncode != 1 or found.stdout or found.stderr.count("\n") != 1:
            yield (f"{words}: expected 1 {expected}\n"
                   f"found {found.returncode} {found.stderr}{found.stdout}")


def main():
    place = sys.argv[1]
    objects = [str(pathlib.Path(sys.argv[2]) / name) for name in OBJECTS]
    faults = list(table_faults(place, objects, sys.argv[3:] == ["--update"]))
    with tempfile.TemporaryDirectory() as folder:
        cut = pathlib.Path(folder) / "cut.o"
        cut.write_bytes(pathlib.Path(objects[1]).read_bytes()[:300])
        faults += failure_faults(place, objects, str(cut))
    print("\n".join(faults) or "place shows what it should")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
