#!/usr/bin/env python3
"""Fail when a parse takes more instructions than were recorded.

    guard.py [--update] [--sanitized] PROGRAM CONFIGURATION

PROGRAM parses the file that it is given, whole (bench/parse.cpp). Of each profile of the generator
a text of 100 kB is parsed under callgrind, which counts instructions: the same number on every run,
whatever else the machine does. More than 3 % above the number in instructions.json is a failure.
Numbers belong to one CONFIGURATION, a compiler with its version and the kind of build; for others
the guard says that nothing is recorded, and is skipped. --update writes the numbers as they are now;
do that when a change is worth what it costs, and as well when one makes something faster.
"""
import argparse
import json
import os
import shutil
import sys
import tempfile

from callgrind import instructions

HERE = os.path.dirname(os.path.abspath(__file__))
RECORD = os.path.join(HERE, "instructions.json")
sys.path.insert(0, os.path.join(HERE, "..", "..", "bench"))
import gen_tdm  # noqa: E402

SIZE = 100_000
ALLOWED = 1.03
SKIPPED = 77


def measured(program):
    """Instructions by profile. The generator has no randomness but its seed."""
    counts = {}
    # A fixed place, since the length of a name is copied and hashed too.
    with tempfile.TemporaryDirectory(prefix="tdm_guard_", dir="/tmp") as work:
        for profile in gen_tdm.PROFILES:
            place = os.path.join(work, profile)
            gen_tdm.generate(profile, place, gen_tdm.count_for(profile, SIZE))
            counts[profile] = instructions(program, os.path.join(place, "main.tdm"),
                                           os.path.join(work, "callgrind"))
    return counts


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("--update", action="store_true")
    parser.add_argument("--sanitized", action="store_true")
    parser.add_argument("program")
    parser.add_argument("configuration")
    args = parser.parse_args()
    if args.sanitized:
        print("skipped: sanitizers count among the instructions")
        return SKIPPED
    if shutil.which("valgrind") is None:
        print("skipped: valgrind is not installed")
        return SKIPPED
    with open(RECORD, encoding="ascii") as text:
        record = json.load(text)
    before = record.get(args.configuration, {})
    if not before and not args.update:
        print(f"skipped: nothing is recorded for {args.configuration}")
        return SKIPPED

    now = measured(args.program)
    slower = False
    for profile, count in now.items():
        old = before.get(profile)
        change = f"{100 * (count / old - 1):+.1f} %" if old else "new"
        above = old is None or count > old * ALLOWED
        slower = slower or above
        print(f"{profile:12} {count:12} recorded {old or '-':>12} {change}"
              f"{'   ABOVE THE LIMIT' if above and not args.update else ''}")
    if args.update:
        record[args.configuration] = now
        with open(RECORD, "w", encoding="ascii") as text:
            json.dump(record, text, indent=2)
            text.write("\n")
        return 0
    return 1 if slower else 0


if __name__ == "__main__":
    sys.exit(main())
