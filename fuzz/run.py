#!/usr/bin/env python3
"""Runs the fuzz targets, the time split between them, and tells what each did.

    run.py BUILD_DIR SECONDS [--only TARGET,...] [--log] [--keep]

Each target begins with its committed corpus, the cases of the suite and the examples, and keeps what it
finds of interest in BUILD_DIR/found/TARGET for the next run. An input that breaks something is left in
BUILD_DIR/broken and named; the exit code is then 1. --log adds a line for each target to LOG.md. --keep
writes the smallest set of short inputs that reaches what has been reached back to the corpora, which are
texts with an input a line (see replay.cpp).
"""
import argparse
import datetime
import os
import pathlib
import re
import shutil
import subprocess
import sys

HERE = pathlib.Path(__file__).resolve().parent
ROOT = HERE.parent

# Target: corpus, longest input, longest input that is kept, share of the time.
TARGETS = {
    "preprocess": ("preprocess", 600, 400, 2),
    "parse": ("descriptions", 1500, 0, 3),
    "ask": ("descriptions", 1500, 1500, 3),
    "pattern": ("patterns", 200, 60, 1),
    "exprlib": ("exprlib", 600, 100, 1),
    "mapping": ("mapping", 200, 100, 1),
}


def escaped(text):
    return "".join(chr(b) if 32 <= b < 127 and b != 92 else {10: "\\n", 92: "\\\\"}.get(b, f"\\x{b:02x}") for b in text)


def unescaped(line):
    return re.sub(rb"\\(x..|.)", lambda m: bytes([int(m[1][1:], 16)]) if m[1][:1] == b"x" else
                  b"\n" if m[1] == b"n" else m[1], line)


def unpack(corpus, folder):
    """The inputs of a corpus as files, for libFuzzer."""
    folder.mkdir(parents=True, exist_ok=True)
    packed = HERE / "corpus" / f"{corpus}.txt"
    for number, line in enumerate(packed.read_bytes().splitlines() if packed.exists() else []):
        (folder / f"corpus{number}").write_bytes(unescaped(line))


def keep(build, target):
    """Writes the corpus anew, from itself and from what has been found."""
    corpus, _, longest, _ = TARGETS[target]
    if longest == 0:
        return
    kept = build / "kept" / target
    if kept.exists():
        shutil.rmtree(kept)
    kept.mkdir(parents=True)
    unpack(corpus, build / "corpus" / corpus)
    folders = [kept, build / "corpus" / corpus, build / "found" / target]
    if corpus in ("descriptions", "preprocess"):
        folders.append(seeds(build))
    subprocess.run([str(w) for w in [build / "bin" / f"fuzz_{target}", "-merge=1", f"-max_len={longest}", *folders]],
                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, check=True)
    inputs = sorted(path.read_bytes() for path in kept.iterdir())
    inputs = [text for text in inputs if len(text) <= longest]
    (HERE / "corpus" / f"{corpus}.txt").write_text("".join(escaped(text) + "\n" for text in inputs))


def write(folder, name, text):
    folder.mkdir(parents=True, exist_ok=True)
    (folder / name).write_text(text)


def seeds_of_cases(folder):
    """The inputs of the suite's cases, each with the files that it includes."""
    number = 0
    for path in sorted(ROOT.glob("tests/cases/**/*.tdm")):
        common = ""
        for part in re.split(r"^//---.*\n", path.read_text(errors="replace"), flags=re.M):
            main, *files = re.split(r"^(?=//\+\+\+ )", part, flags=re.M)
            text = "\n".join(l for l in main.splitlines() if not re.match(r"//[!=]", l)) + "\n"
            if number == 0 or text.strip():
                write(folder, f"case{number}", text + "".join(files) + common)
                number += 1
            else:
                common += "".join(files)


def seeds(build):
    """What every parsing target begins with besides its corpus."""
    folder = build / "seeds"
    if not folder.exists():
        seeds_of_cases(folder)
        for path in sorted(ROOT.glob("examples/**/*.td[mh]")):
            write(folder, f"example_{path.parent.name}_{path.name}", path.read_text())
        for number, text in enumerate(re.findall(r"```tdm\n(.*?)```", (ROOT / "docs/language.md").read_text(), re.S)):
            write(folder, f"docs{number}", text)
    return folder


def run(build, target, seconds):
    corpus, longest, _, _ = TARGETS[target]
    unpack(corpus, build / "corpus" / corpus)
    found, broken = build / "found" / target, build / "broken"
    found.mkdir(parents=True, exist_ok=True)
    broken.mkdir(exist_ok=True)
    folders = [found, build / "corpus" / corpus]
    if corpus in ("descriptions", "preprocess"):
        folders.append(seeds(build))
    command = [build / "bin" / f"fuzz_{target}", f"-max_total_time={seconds}", f"-max_len={longest}",
               "-timeout=20", "-rss_limit_mb=3000", "-print_final_stats=1", "-verbosity=1", "-entropic=0",
               # Leaks are looked for once, at the end.
               "-detect_leaks=0", f"-artifact_prefix={broken}/{target}-"]
    if corpus in ("descriptions", "preprocess"):
        command.append(f"-dict={build}/tdm.dict")
    environment = dict(os.environ, ASAN_OPTIONS="detect_leaks=1:detect_stack_use_after_return=0:"
                       "quarantine_size_mb=16:malloc_context_size=4",
                       UBSAN_OPTIONS="print_stacktrace=1:halt_on_error=1")
    done = subprocess.run([str(word) for word in command + [f for f in folders if f.exists()]],
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT, env=environment, cwd=broken)
    output = done.stdout.decode(errors="replace")
    (build / f"{target}.txt").write_text(output)
    executed = re.findall(r"stat::number_of_executed_units:\s*(\d+)", output)
    covered = re.findall(r"cov: (\d+)", output)
    took = re.findall(r"in (\d+) second", output)
    return {"executed": int(executed[-1]) if executed else 0, "seconds": int(took[-1]) if took else seconds,
            "covered": int(covered[-1]) if covered else 0,
            "finding": "" if done.returncode == 0 else (re.findall(r"SUMMARY: (.*)|does not hold: (.*)", output) or [("?", "")])[0]}


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("build", type=pathlib.Path)
    parser.add_argument("seconds", type=int)
    parser.add_argument("--only", default=",".join(TARGETS))
    parser.add_argument("--log", action="store_true")
    parser.add_argument("--keep", action="store_true")
    arguments = parser.parse_args()
    build = arguments.build.resolve()
    targets = arguments.only.split(",")
    shares = sum(TARGETS[target][3] for target in targets)
    lines, failed = [], False
    for target in targets:
        result = run(build, target, max(5, arguments.seconds * TARGETS[target][3] // shares))
        speed = result["executed"] // max(result["seconds"], 1)
        finding = "none" if not result["finding"] else "".join(result["finding"])
        failed |= bool(result["finding"])
        lines.append(f"| {datetime.date.today()} | {target} | {result['executed']:,} | {result['seconds']:,} |"
                     f" {speed:,} | {finding} |")
        print(lines[-1], flush=True)
    if arguments.log:
        with open(HERE / "LOG.md", "a") as log:
            log.write("\n".join(lines) + "\n")
    if arguments.keep:
        for target in targets:
            keep(build, target)
    if failed:
        print(f"inputs that broke something: {build}/broken", file=sys.stderr)
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
