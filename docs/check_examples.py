#!/usr/bin/env python3
"""Runs the examples of the documents, so that they can't go stale.

    check_examples.py TDM [--update]

A block marked ```tdm is a complete description: `tdm check` must take it, and the layouts of all its
spaces must walk to their end. A block marked ```tdm-map
holds addresses in the description before it, in the columns space, address and expected of
examples/checks.txt; ```tdm-back the same for addresses of memories and the spaces that they are seen
in, with the bank, if there is one, in front of the address. A block marked ```console is a part of a transcript, with files and commands
in the form of tests/interface/transcripts.py; the blocks of a document go on from one another, and
--update writes anew what the commands print. Runs of the documents' own programs are check_programs.py's.
The C program of README.md must be examples/c/translate.c to the letter, its commands `tdm ...` must
work, and what one of them writes must be what is there.
"""
import json
import os
import pathlib
import re
import shlex
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
BLOCK = re.compile(r"^```(\S*)\n(.*?)^```$", re.M | re.S)

sys.dont_write_bytecode = True
sys.path[:0] = [str(ROOT / "examples"), str(ROOT / "tests" / "interface")]
from demo import reached  # pylint: disable=wrong-import-position
from transcripts import play  # pylint: disable=wrong-import-position


def run(*command):
    return subprocess.run(command, capture_output=True, text=True, check=False)


def seen_in(answer):
    """The spaces of an answer, written as documents write them."""
    routes = []
    for route in answer["routes"]:
        at = route["address"]
        bank = f"{at['bank']}:" if at["bank"] is not None else ""
        bit = f".{at['bit']}" if at["bit"] else ""
        if route["kind"] == "space":
            routes.append(f"{route['name'].split(':')[-1]}:{bank}{at['value']:#x}{bit}"
                          f"{'!' if route['reserved'] else ''}")
    return ",".join(routes) or "none"


def is_run_of_programs(transcript):
    return re.search(r"^\$ \./", transcript, re.M) is not None


def map_faults(tdm, description, table, where, back):
    for row in table.splitlines():
        name, address, expected = row.split()
        found = run(tdm, "map", description, "--memory" if back else "--space", name, "--at",
                    address, "--json")
        try:
            answer = (seen_in if back else reached)(json.loads(found.stdout))
        except ValueError:
            answer = found.stdout + found.stderr
        if answer.lower() != expected.lower():
            yield f"{where}: {name} {address}: expected {expected}, found {answer}"


def walk_faults(tdm, description, where):
    shown = json.loads(run(tdm, "show", "--json", description).stdout)
    for processor in shown["processors"]:
        for core in processor["cores"]:
            for space in core["spaces"]:
                if space["full_name"].startswith("::"):
                    continue
                found = run(tdm, "select", description, "--space", space["full_name"], "--sections",
                            os.devnull)
                if found.returncode != 0:
                    yield f"{where}: {found.stdout}{found.stderr}"


def document_faults(tdm, document, description):
    """Descriptions are written to the file of that name, one after the other."""
    text = document.read_text(encoding="utf-8")
    for block in BLOCK.finditer(text):
        where = f"{document.relative_to(ROOT)}:{text.count(chr(10), 0, block.start()) + 1}"
        if block[1] == "tdm":
            pathlib.Path(description).write_text(block[2], encoding="utf-8")
            found = run(tdm, "check", description)
            if found.returncode != 0:
                yield f"{where}: {found.stdout}{found.stderr}"
            else:
                yield from walk_faults(tdm, description, where)
        elif block[1] in ("tdm-map", "tdm-back"):
            yield from map_faults(tdm, description, block[2], where, block[1] == "tdm-back")


def transcript_faults(tdm, document, update):
    text = document.read_text(encoding="utf-8")
    found = []
    with tempfile.TemporaryDirectory() as root:
        def played(block):
            if block[1] != "console" or is_run_of_programs(block[2]):
                return block[0]
            now = "".join(line + "\n" for line in
                          play(block[2].splitlines(), tdm, os.path.realpath(root)))
            if now != block[2] and not update:
                line = text.count("\n", 0, block.start()) + 1
                found.append(f"{document.relative_to(ROOT)}:{line}: now it is\n{now}")
            return f"```console\n{now}```"
        new = BLOCK.sub(played, text)
    if update and new != text:
        document.write_text(new, encoding="utf-8")
    return found


def readme_faults(tdm, folder):
    text = (ROOT / "README.md").read_text("utf-8")
    for command in re.findall(r"^    tdm (.*)$", text, re.M):
        words = shlex.split(command)
        written = words[-1] if "-o" in words[-2:-1] else None
        if written:
            words[-1] = os.path.join(folder, "written")
        found = subprocess.run([tdm, *words], capture_output=True, text=True, check=False, cwd=ROOT)
        if found.returncode != 0:
            yield f"README.md: tdm {command}: {found.stdout}{found.stderr}"
        elif written and pathlib.Path(words[-1]).read_bytes() != (ROOT / written).read_bytes():
            yield f"README.md: tdm {command}: {written} is another one"
    programs = [block[2] for block in BLOCK.finditer(text) if block[1] == "c"]
    if programs != [(ROOT / "examples/c/translate.c").read_text("utf-8")]:
        yield "README.md: the C program isn't examples/c/translate.c"


def main():
    tdm = os.path.abspath(sys.argv[1])
    with tempfile.TemporaryDirectory() as folder:
        faults = list(readme_faults(tdm, folder))
        description = os.path.join(folder, "example.tdm")
        for document in sorted((ROOT / "docs").glob("*.md")):
            faults += document_faults(tdm, document, description)
            faults += transcript_faults(tdm, document, "--update" in sys.argv[2:])
    print("\n".join(faults) or "all examples of the documents hold")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
