#!/usr/bin/env python3
"""Tells which part of each floor of the library the inputs that are kept in the repository reach.

    coverage.py BUILD_DIR [--missing FLOOR]

BUILD_DIR is built with clang and -DTDM_COVERAGE=ON. The texts are the corpora of the targets that read
descriptions, the cases of the suite and the examples; the other corpora add programs and patterns. --missing
prints the lines of a floor that no text reaches.
"""
import argparse
import collections
import os
import pathlib
import shutil
import subprocess
import sys

import run

ROOT = run.ROOT
FLOORS = ("common", "preprocessor", "language", "expressions", "mapping", "layout", "model", "interface")
TEXTS = (("preprocess", "preprocess"), ("parse", "descriptions"), ("ask", "descriptions"))
OTHERS = (("pattern", "patterns"), ("exprlib", "exprlib"), ("mapping", "mapping"))


def execute(build, name, *arguments):
    environment = dict(os.environ, LLVM_PROFILE_FILE=str(build / "profiles" / f"{name}-%p.profraw"))
    subprocess.run([str(word) for word in (build / "bin" / name, *arguments)], env=environment, check=True,
                   stdout=subprocess.DEVNULL)


def reached(build):
    """What the profiles that have been written so far say: by file the counts of lines and branches."""
    profile = build / "profiles" / "all.profdata"
    subprocess.run(["llvm-profdata", "merge", "-sparse", "-o", profile,
                    *(build / "profiles").glob("*.profraw")], check=True)
    first, *others = [build / "bin" / f"fuzz_{target}" for target, _ in TEXTS + OTHERS]
    objects = [f"-object={program}" for program in (*others, build / "lib" / "libtdm_c.so")]
    report = subprocess.run(["llvm-cov", "export", "-format=lcov", f"-instr-profile={profile}", first, *objects,
                             ROOT / "src"], check=True, stdout=subprocess.PIPE).stdout.decode()
    files = collections.defaultdict(lambda: ({}, {}))
    for record in report.splitlines():
        kind, _, rest = record.partition(":")
        if kind == "SF":
            lines, branches = files[pathlib.Path(rest).resolve().relative_to(ROOT / "src")]
        elif kind == "DA":
            number, count = (int(n) for n in rest.split(",")[:2])
            lines[number] = lines.get(number, 0) + count
        elif kind == "BRDA":
            *place, taken = rest.split(",")
            # A branch of a template occurs with each of its types.
            branches[tuple(place)] = branches.get(tuple(place), 0) + (int(taken) if taken != "-" else 0)
    return files


def of_floor(files, floor, kind):
    counts = [count for path, both in files.items() if path.parts[0] == floor for count in both[kind].values()]
    return f"{100 * sum(c > 0 for c in counts) / len(counts):.1f} %"


def missing(files, floor):
    for path, (lines, _) in sorted(files.items()):
        if path.parts[0] != floor:
            continue
        text = (ROOT / "src" / path).read_text().splitlines()
        for number in sorted(number for number, count in lines.items() if count == 0):
            print(f"{path}:{number}: {text[number - 1]}")


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("build", type=pathlib.Path)
    parser.add_argument("--missing", choices=FLOORS)
    arguments = parser.parse_args()
    build = arguments.build.resolve()
    shutil.rmtree(build / "profiles", ignore_errors=True)
    shutil.rmtree(build / "seeds", ignore_errors=True)
    seeds = run.seeds(build)
    for target, corpus in TEXTS:
        execute(build, f"fuzz_{target}", "--corpus", run.HERE / "corpus" / f"{corpus}.txt")
        execute(build, f"fuzz_{target}", seeds)
    execute(build, "case_runner", ROOT / "tests" / "cases")
    texts = reached(build)
    if arguments.missing:
        return missing(texts, arguments.missing)
    for target, corpus in OTHERS:
        execute(build, f"fuzz_{target}", "--corpus", run.HERE / "corpus" / f"{corpus}.txt")
    everything = reached(build)
    print("| Floor | Lines, from texts | Branches | Lines, all corpora | Branches |\n|---|---|---|---|---|")
    for floor in FLOORS:
        print(f"| {floor} | " + " | ".join(of_floor(files, floor, kind) for files in (texts, everything)
                                           for kind in (0, 1)) + " |")
    return 0


if __name__ == "__main__":
    sys.exit(main())
