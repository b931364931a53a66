#!/usr/bin/env python3
"""What `tdm explain` says of the messages is true, and complete.

    messages.py TDM DOCUMENT

Runs the examples of all messages in front of a description that is in order: what provokes a
message provokes that one alone, and the mended text none at all. Every message but the faults of
the library itself has an example. DOCUMENT is what `tdm explain --format markdown` gives.
"""
import json
import os
import pathlib
import shlex
import subprocess
import sys
import tempfile

BASE = """architecture arc1 { endianness { little; } bus bus1 { mau = 8; width = 8; }
  space lin { id = 1; mau = 8; map (size = 0x100, dest = bus:bus1); } }
"""


def run(tdm, *words, cwd=None):
    environment = {key: value for key, value in os.environ.items() if not key.endswith("PARSERINC")}
    return subprocess.run([tdm, *words], cwd=cwd, env=environment, capture_output=True, text=True,
                          timeout=60, check=False)


def found_by(tdm, example):
    """The numbers that an example provokes, notes among them, and the code that the tool ends with."""
    words, name, contents = ["check", "example.tdm"], "example.tdm", {}
    lines = example.splitlines(keepends=True)
    if lines[0].startswith("$ tdm "):
        words = shlex.split(lines.pop(0)[len("$ tdm "):])
    for line in lines:
        if line.startswith("--- "):
            name = line[4:].strip()
        else:
            contents[name] = contents.get(name, "") + line
    with tempfile.TemporaryDirectory() as root:
        for name, text in {"base.tdm": BASE, **contents}.items():
            path = pathlib.Path(root, name)
            path.parent.mkdir(exist_ok=True)
            path.write_text(text, encoding="utf-8")
        words = [words[0], "--format", "json", *words[1:], "base.tdm"]
        done = run(tdm, *words, cwd=root)
    findings = json.loads(done.stdout)["descriptions"][0]["findings"]
    # What stops the parse besides, a pragma or a conditional that swallows the description, has no
    # number.
    numbers = {finding["number"] for finding in findings} - {None}
    notes = {note["number"] for finding in findings for note in finding["notes"]}
    return numbers, notes, done


def faults(tdm, message):
    number, provoking = message["number"], message["provoked_by"]
    if number.startswith("S"):
        if provoking is not None:
            yield f"{number}: has an example, which no description can provoke"
        return
    if provoking is None:
        yield f"{number}: has no example"
        return
    numbers, notes, done = found_by(tdm, provoking)
    if (notes if number.startswith("I") else numbers) != {number}:
        yield f"{number}: its example provokes {sorted(numbers)}\n{done.stdout}{done.stderr}"
    numbers, notes, done = found_by(tdm, message["mended"])
    if numbers | notes or done.returncode != 0:
        yield f"{number}: mended, it still gives\n{done.stdout}{done.stderr}"


def main():
    tdm, document = os.path.abspath(sys.argv[1]), pathlib.Path(sys.argv[2])
    found = []
    messages = json.loads(run(tdm, "explain", "--format", "json").stdout)["messages"]
    for message in messages:
        found += faults(tdm, message)
        alone = run(tdm, "explain", message["number"][1:])
        if alone.returncode != 0 or not alone.stdout.startswith(message["number"] + ", "):
            found.append(f"{message['number']}: explain says\n{alone.stdout}{alone.stderr}")
    if document.read_text(encoding="utf-8") != run(tdm, "explain", "--format", "markdown").stdout:
        found.append(f"{document}: isn't what tdm explain --format markdown gives")
    print("\n".join(found) or f"{len(messages)} messages are explained")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
