#!/usr/bin/env python3
"""Fail when the tool takes long to begin with its work.

    start.py [--sanitized] TDM NOTHING

What TDM takes to tell its version, every run of it takes before it does anything: the library is
loaded and relocated, static objects are made. Counted are the instructions beyond those of NOTHING,
a program that only writes a line, so that the loader and the standard library of the machine don't
matter. A million is a quarter of a millisecond.
"""
import os
import shutil
import sys
import tempfile

from callgrind import instructions

MOST = 1_000_000
SKIPPED = 77


def main():
    arguments = sys.argv[1:]
    if "--sanitized" in arguments:
        print("skipped: sanitizers count among the instructions")
        return SKIPPED
    if shutil.which("valgrind") is None:
        print("skipped: valgrind is not installed")
        return SKIPPED
    tdm, nothing = arguments
    with tempfile.TemporaryDirectory() as work:
        counts = os.path.join(work, "callgrind")
        own = instructions(tdm, "--version", counts) - instructions(nothing, "", counts)
    print(f"{own} instructions of {MOST} to begin")
    return 1 if own > MOST else 0


if __name__ == "__main__":
    sys.exit(main())
