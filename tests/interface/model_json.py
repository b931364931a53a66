#!/usr/bin/env python3
"""What `tdm show --json` writes of a description with something in every part.

    model_json.py TDM DESCRIPTION

Values are compared at the places of a table. Every key of the output has a value somewhere that is
more than nothing, so that none of them was forgotten. Without --origin the output is the same, but
for the origins.
"""
import json
import re
import subprocess
import sys

CORE = "processors[0].cores[0]"
SPACE = CORE + ".spaces[0]"
STATEMENTS = SPACE + ".layouts[0].statements"
RAM = "processors[0].memories[0]"

VALUES = {
    "processors[0].buses[0].outgoing": [10, 12],
    "processors[0].parameters": [{"name": "kib", "text": "1024", "value": 1024},
                                 {"name": "half", "text": "1024 / 2", "value": 512}],
    CORE + ".imports": ["cpu1:cor2"],
    CORE + ".symbols.assigned": ["a", "b"],
    CORE + ".symbols.required": [{"name": "reset"}, {"prefix": "_v", "count": 2}],
    CORE + ".referenced_sections": ["t", "in", ".data", "one", "two", "three"],
    CORE + ".groups": ["g1", "g2", "g3", "g4"],
    CORE + ".buses[0].address_width_bits": 24,
    "processors[0].cores[1].space_id_offset": 10,
    RAM + ".exec_priority": 5,
    RAM + ".mappings[0].priority": -1,
    RAM + ".mappings[1].reserved": True,
    RAM + ".mappings[1].source": {"bus": "cpu1:cor1:bus1"},
    RAM + ".mappings[1].destination": {"memory": "cpu1:ram1"},
    SPACE + ".kind": "defined",
    SPACE + ".mappings[0].name": "low",
    SPACE + ".mappings[0].destination_lines": {"low": 0, "high": 7, "width": 16},
    SPACE + ".mappings[0].exec_priority": 3,
    SPACE + ".mappings[1].destination_bank": 4,
    SPACE + ".mappings[1].destination_interval.low":
        {"value": 0x20000, "bit": 0, "mau_bits": 8, "bank": 4},
    SPACE + ".start_address.symbol": "_start",
    SPACE + ".stacks[0].direction": "high_to_low",
    SPACE + ".copy_table.copy_unit": 2,
    SPACE + ".copy_table.destinations[1]":
        {"source": "cpu1:cor1:two", "destination": "cpu1:cor1:lin"},
    SPACE + ".copy_table.sub_tables[0]":
        {"symbol": "_part", "spaces": ["cpu1:cor1:lin", "cpu1:cor1:two"]},
    SPACE + ".banks.numbers": [3],
    SPACE + ".vector_tables[0].vectors[1].ids": [{"low": 1, "high": 1}, {"low": 3, "high": 5}],
    SPACE + ".vector_tables[0].vectors[1].value.numbers": [1, 2, 3],
    SPACE + ".prohibited_spaces": [2, 11],
    SPACE + ".input_modifications[0].selector": {"with": "w", "without": "xp", "file": None},
    STATEMENTS + "[0].kind": "assignment",
    STATEMENTS + "[0].value": {"text": "1 + 2", "value": 3},
    STATEMENTS + "[3].condition": {"text": 'exists(".data")', "value": None},
    STATEMENTS + "[1].operator": ":=",
    STATEMENTS + "[3].then.statements[0].attributes": "rxp",
    STATEMENTS + "[3].else.allows_absolute": True,
    STATEMENTS + "[4].then.kind": "copytable",
    STATEMENTS + "[5].statement.statements[1].load_time": True,
    STATEMENTS + "[7].memory": "cpu1:ram1",
    STATEMENTS + "[9].members[1].size": 2,
    STATEMENTS + "[10].create_section": "out",
    STATEMENTS + "[10].statement.statements[1].statement.selectors[1]":
        {"with": "b", "without": "s", "file": None},
    STATEMENTS + "[11].run_address.mapping": 15,
    STATEMENTS + "[12].load_address.ranges[2].memory": "cpu1:ram1",
    "processors[0].cores[2].spaces[3].members": ["cpu1:cor3:more", "cpu1:cor3:other"],
    STATEMENTS + "[10].origins.group": "inspect.tdm:68:3",
}

# What no description can give, or not this one.
EMPTY = {"file", "problems", "wishbone", "write_mode", "setup_time", "hold_time", "cycles", "area",
         "write_ports", "page_restrict_sections", "inline", "bit"}


def at(document, path):
    for key in re.findall(r"[^.\[\]]+", path):
        document = document[int(key) if isinstance(document, list) else key]
    return document


def keys_of(value, filled, keys):
    """All keys below, and those that have a value somewhere."""
    for key, inner in value.items() if isinstance(value, dict) else enumerate(value):
        if isinstance(key, str):
            keys.add(key)
            if inner not in (None, False, 0, "", [], {}):
                filled.add(key)
        if isinstance(inner, (dict, list)):
            keys_of(inner, filled, keys)


def without_origins(value):
    if isinstance(value, dict):
        return {key: without_origins(inner) for key, inner in value.items() if key != "origins"}
    return [without_origins(inner) for inner in value] if isinstance(value, list) else value


def main():
    tdm, description = sys.argv[1:]

    def show(*options):
        return json.loads(subprocess.run([tdm, "show", "--json", *options, description],
                                         capture_output=True, check=True).stdout)

    whole, plain = show("--origin"), show()
    problems = []
    for path, expected in VALUES.items():
        try:
            value = at(whole, path)
        except (KeyError, IndexError, TypeError) as failure:
            value = repr(failure)
        if path.endswith("origins.group"):
            value = value.rsplit("/", 1)[-1]
        elif isinstance(value, (dict, list)):
            value = without_origins(value)
        if value != expected:
            problems.append(f"{path}: {value}, expected {expected}")
    keys, filled = set(), set()
    keys_of(plain, filled, keys)
    problems += [f"{key}: empty everywhere" for key in sorted(keys - filled - EMPTY)]
    if without_origins(whole) != plain or "origins" in keys:
        problems.append("--origin changes more than the origins")
    print("\n".join(problems) or f"{len(keys)} keys")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
