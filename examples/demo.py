#!/usr/bin/env python3
"""Show what the library answers for the examples: ./dev demo runs this.

    demo.py TDM

For each chip of checks.txt: that its description is in order, its model as a tree, and the
addresses that its data sheet knows, translated and compared with what is expected. Ends with 0
when all of them agree.
"""
import os
import shlex
import subprocess
import sys

HERE = os.path.dirname(os.path.abspath(__file__))


def run(*command):
    return subprocess.run(command, capture_output=True, text=True, check=False)


def checks():
    """(description, options, space, address, expected) of each line of checks.txt."""
    with open(os.path.join(HERE, "checks.txt"), encoding="utf-8") as lines:
        for line in lines:
            line = line.split("#", 1)[0].strip()
            if line:
                fields = [field.strip() for field in line.split("|")]
                yield fields[0], shlex.split(fields[1]), *fields[2:5]


def main():
    tdm, seen, failures = os.path.abspath(sys.argv[1]), set(), 0
    os.chdir(HERE)
    for chip, options, space, address, expected in checks():
        if (chip, *options) not in seen:
            seen.add((chip, *options))
            print(f"\n== {chip} {' '.join(options)}".rstrip())
            result = run(tdm, "show", chip, *options)
            print(result.stdout + result.stderr, end="")
            failures += result.returncode != 0
        result = run(tdm, "map", chip, *options, "--space", space, "--at", address)
        print(f"\n$ tdm map {chip} {' '.join(options + ['--space', space, '--at', address])}")
        print(result.stdout + result.stderr, end="")
        if expected not in result.stdout:
            print(f"   NOT as expected: {expected}")
            failures += 1
    print(f"\n{failures} differences" if failures else "\nAll as the data sheets say.")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
