#!/usr/bin/env python3
"""The stable interface is what was promised: each declaration of tdm.h and tdm_types.h, compared with a
stored list.

    stable_interface.py COMPILER INCLUDE_DIR LIST [--update]

What the preprocessor leaves of the headers is cut into declarations: functions with their parameters,
records with their members in order, enumerations with their values. A line that goes or changes
breaks clients that are built already; a new line is new interface, and is entered with --update.
Sizes and offsets of the records are pinned in the library itself.
"""
import re
import subprocess
import sys
from pathlib import Path

HEADERS = ("tdm_types.h", "tdm.h")


def declarations(compiler, include):
    source = "".join(f"#include <tdm_c/{header}>\n" for header in HEADERS)
    text = subprocess.run([compiler, "-x", "c", "-std=c99", "-E", "-I", include, "-"], input=source,
                          capture_output=True, text=True, check=True).stdout
    own, lines = False, []
    for line in text.splitlines():
        marker = re.match(r'# \d+ "(.*?)"', line)
        if marker:
            own = Path(marker[1]).name in HEADERS
        elif own:
            lines.append(line)
    text = re.sub(r"__attribute__\s*\(\(.*?\)\)\)", "", " ".join(lines))
    text = re.sub(r"\s+", " ", text)
    depth, start, found = 0, 0, []
    for at, c in enumerate(text):
        depth += (c == "{") - (c == "}")
        if c == ";" and depth == 0:
            found.append(text[start:at + 1].strip())
            start = at + 1
    return found


def main():
    compiler, include, stored = sys.argv[1:4]
    present = declarations(compiler, include)
    if "--update" in sys.argv:
        Path(stored).write_text("\n".join(present) + "\n")
        return 0
    expected = Path(stored).read_text().splitlines()
    faults = [f"gone or changed: {line}" for line in expected if line not in set(present)]
    faults += [f"not in the list: {line}" for line in present if line not in set(expected)]
    if len(present) < 200:
        faults.append(f"only {len(present)} declarations found")
    print("\n".join(faults) or f"{len(present)} declarations as promised")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
