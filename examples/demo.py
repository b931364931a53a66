#!/usr/bin/env python3
"""Show what the library answers for the examples, and compare it with the data sheets.

    demo.py TDM [--quiet]

For each description of checks.txt: its model as a tree, and the addresses that its data sheet
knows, translated from the space of a core to memory. Ends with 0 when all of them agree; --quiet
prints the differences alone.
"""
import json
import os
import subprocess
import sys

HERE = os.path.dirname(os.path.abspath(__file__))


def run(*command):
    return subprocess.run(command, capture_output=True, text=True, check=False)


def checks():
    """(description, options, space, address, expected) of each line of checks.txt."""
    with open(os.path.join(HERE, "checks.txt"), encoding="utf-8") as lines:
        for line in lines:
            fields = line.split("#", 1)[0].split()
            if fields:
                name, options, space, address, expected = fields
                macros = [] if options == "-" else [f"-D{macro}" for macro in options.split(",")]
                yield name, macros, space, address.replace("@", ":"), expected


def reached(answer):
    """The routes of an answer, written as checks.txt writes them."""
    routes = []
    for route in answer["routes"]:
        at = route["address"]
        bit = f".{at['bit']}" if at["bit"] else ""
        mark = "!" if route["reserved"] else ""
        routes.append(f"{route['name'].split(':')[-1]}:{at['value']:#x}{bit}{mark}")
    return ",".join(routes) or "none"


def main():
    tdm, quiet = os.path.abspath(sys.argv[1]), "--quiet" in sys.argv
    seen, failures, translated = set(), 0, 0
    os.chdir(HERE)
    for name, macros, space, address, expected in checks():
        if (name, *macros) not in seen:
            seen.add((name, *macros))
            show = run(tdm, "check" if macros else "show", name, *macros)
            failures += show.returncode != 0
            if not quiet or show.returncode != 0:
                print(f"\n$ tdm {'check' if macros else 'show'} {' '.join([name, *macros])}")
                print(show.stdout + show.stderr)
        command = ["map", name, *macros, "--space", space, "--at", address]
        translated += 1
        found = run(tdm, *command, "--json")
        try:
            answer = reached(json.loads(found.stdout))
        except ValueError:
            answer = found.stdout + found.stderr
        if answer.lower() != expected.lower():
            failures += 1
            print(f"DIFFERENT: tdm {' '.join(command)}: expected {expected}, found {answer}")
        elif not quiet:
            print(f"{space} {address:>12}  ->  {answer}")
    if failures:
        print(f"\n{failures} differences")
    else:
        print(f"\n{len(seen)} descriptions, {translated} addresses: all as the data sheets say.")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
