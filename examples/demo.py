#!/usr/bin/env python3
"""Show what the library answers for the examples, and compare it with the data sheets.

    demo.py TDM [--quiet]

For each description of checks.txt: its model as a tree, and the addresses that its data sheet
knows, translated from the space of a core to memory. For each folder with a list of sections: how
the layout of a space begins, and which selection takes which section; all of them have to go where
the remarks of the list say. Ends with 0 when everything agrees; --quiet prints the differences
alone.
"""
import glob
import json
import os
import re
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


def sections(name):
    """{section: (space, where)} of a list, with None for one that nothing is to take."""
    found = {}
    with open(name, encoding="utf-8") as lines:
        for line in lines:
            words = re.match(r"([^\s#]+)[^#]*(?:# *(\S+) +(\S+))?", line)
            if words:
                found[words[1]] = (words[2], words[3]) if words[2] else None
    return found


def in_bank(place):
    """The bank of an address or range as it stands in front of it."""
    return "" if place["bank"] is None else f"{place['bank']}:"


def where(selection):
    """The innermost location around a selection, written as the lists of sections write it."""
    for item in reversed(selection["within"]):
        if "address" in item:
            return f"{in_bank(item)}0x{item['address']:X}"
        if "ranges" in item:
            return "|".join(f"{in_bank(r)}0x{r['low']:X}..0x{r['high']:X}" for r in item["ranges"])
    return "anywhere"


def placed(tdm, name, section_list, space):
    """{section: (space, where)} as the selections of a space take them."""
    found = run(tdm, "select", name, "--space", space, "--sections", section_list, "--json")
    if found.returncode != 0:
        print(found.stderr)
        return {}
    return {section["name"]: (space, where(selection))
            for selection in json.loads(found.stdout)["selections"]
            for section in selection["sections"]}


def show_space(tdm, quiet, name, section_list, space):
    """Shows how the layout of a space begins, and its selections. The number of failures."""
    failures = 0
    for verb, length in (["layout"], 12), (["select", "--sections", section_list], None):
        command = [verb[0], name, "--space", space, *verb[1:]]
        answer = run(tdm, *command)
        lines = answer.stdout.splitlines()
        failures += answer.returncode != 0 or len(lines) < 2
        if not quiet or answer.returncode != 0:
            cut = ["..."] if length and len(lines) > length else []
            print(f"\n$ tdm {' '.join(command)}")
            print("\n".join(lines[:length] + cut))
            print(answer.stderr, end="")
    return failures


def select_all(tdm, quiet):
    """Runs all lists of sections. The number of sections, and of failures."""
    count, failures = 0, 0
    for section_list in sorted(glob.glob("*/sections.txt")):
        name = glob.glob(os.path.join(os.path.dirname(section_list), "*.tdm"))[0]
        expected = sections(section_list)
        spaces = list(dict.fromkeys(place[0] for place in expected.values() if place))
        for space in spaces:
            failures += show_space(tdm, quiet or space != spaces[0], name, section_list, space)
        found = [placed(tdm, name, section_list, space) for space in spaces]
        for section, place in expected.items():
            count += 1
            places = [taken[section] for taken in found if section in taken]
            if places != ([place] if place else []):
                failures += 1
                print(f"DIFFERENT: {section_list}: {section}: expected {place}, found {places}")
    return count, failures


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
    selected, failed = select_all(tdm, quiet)
    failures += failed
    if failures:
        print(f"\n{failures} differences")
    else:
        print(f"\n{len(seen)} descriptions, {translated} addresses: all as the data sheets say.")
        print(f"{selected} sections: all where their lists say.")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
