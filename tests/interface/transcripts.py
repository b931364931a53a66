#!/usr/bin/env python3
"""Runs the command-line tool as written down in transcripts, and compares all that it says.

    transcripts.py [--update] TDM TRANSCRIPT...

A transcript is a session of a user, `#` in front of remarks:

    --- dir/chip.tdm         a file, up to the next line that begins so, or with `$`
    $ tdm check dir/chip.tdm a command, `< FILE` may end it; what it writes follows, errors and
                             all, then (`$ ./NAME` runs a program that is there)
    [1]                      the code that it ended with, unless that is 0

`$ cat NAME` shows a file that a command wrote.

Commands run in an empty directory with the files alone; in them and in the output, @DIR@ stands for
its name, and @EXAMPLES@ for the examples of the project. `$ cd NAME` changes into a directory below
it. --update writes the output into the transcript as the new expectation.
"""
import os
import re
import shlex
import subprocess
import sys
import tempfile
from pathlib import Path


# A file, a command, a remark; but not the line marker of a preprocessor.
BEGINS = r"--- |\$ |# (?!\d+ \")"

EXAMPLES = str(Path(__file__).resolve().parents[2] / "examples")


def run(tdm, command, directory, root):
    """What the command writes, and ends with."""
    arguments = [word.replace("@DIR@", root).replace("@EXAMPLES@", EXAMPLES)
                 for word in shlex.split(command)]
    given = b""
    if "<" in arguments[-2:-1]:
        given = Path(directory, arguments[-1]).read_bytes()
        arguments = arguments[:-2]
    environment = {key: value for key, value in os.environ.items() if not key.endswith("PARSERINC")}
    program = tdm if arguments[0] == "tdm" else os.path.join(directory, arguments[0])
    done = subprocess.run([program] + arguments[1:], cwd=directory, input=given,
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT, env=environment,
                          timeout=60, check=False)
    output = done.stdout.decode("utf-8", "replace").replace(root, "@DIR@")
    output = output.replace(EXAMPLES, "@EXAMPLES@")
    return output.splitlines() + ([f"[{done.returncode}]"] if done.returncode else [])


def play(lines, tdm, root):
    """The transcript as it comes out now."""
    result, directory, at = [], root, 0
    while at < len(lines):
        line = lines[at]
        at += 1
        result.append(line)
        if line.startswith("--- "):
            content = []
            while at < len(lines) and not re.match(BEGINS, lines[at]):
                content.append(lines[at])
                at += 1
            result += content
            file = Path(root, line[4:].strip())
            file.parent.mkdir(parents=True, exist_ok=True)
            text = "\n".join(content).replace("\\t", "\t").replace("\\r", "\r")
            file.write_text(text + "\n", encoding="utf-8", newline="")
        elif line.startswith("$ cd "):
            directory = os.path.join(root, line[5:].strip())
        elif line.startswith("$ cat "):
            while at < len(lines) and not re.match(BEGINS, lines[at]):
                at += 1
            result += Path(directory, line[6:].strip()).read_text(encoding="utf-8").splitlines()
        elif line.startswith("$ "):
            while at < len(lines) and not re.match(BEGINS, lines[at]):
                at += 1
            result += run(tdm, line[2:], directory, root)
    return result


def main():
    arguments = sys.argv[1:]
    update = "--update" in arguments
    tdm, *transcripts = [word for word in arguments if word != "--update"]
    different = 0
    for name in transcripts:
        expected = Path(name).read_text(encoding="utf-8").splitlines()
        with tempfile.TemporaryDirectory() as root:
            actual = play(expected, os.path.abspath(tdm), os.path.realpath(root))
        if actual == expected:
            continue
        if update:
            Path(name).write_text("\n".join(actual) + "\n", encoding="utf-8")
            continue
        different += 1
        first = next((i for i, pair in enumerate(zip(expected, actual)) if pair[0] != pair[1]),
                     min(len(expected), len(actual)))
        print(f"{name}:{first + 1}:")
        print("".join(f"  expected {line}\n" for line in expected[first:first + 8]), end="")
        print("".join(f"  found    {line}\n" for line in actual[first:first + 8]), end="")
    return 1 if different else 0


if __name__ == "__main__":
    sys.exit(main())
