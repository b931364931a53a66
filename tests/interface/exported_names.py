#!/usr/bin/env python3
"""The names that the library exports are those of its version script, and no others.

    exported_names.py LIBRARY SOURCE_DIR

Compares four lists: what `nm` finds in the library, with the version of each name; the nodes of
exports.map; the functions that the headers declare; and the functions that the C client calls. Of the
node for clients in C++, each name is a function of Exprlib or belongs to a class that is marked as
theirs; the list is the same whatever compiler made the library.
"""
import re
import subprocess
import sys
from pathlib import Path

HEADERS = {"TDM_C_4.0": ["tdm.h"], "TDM_C_INSPECT_1.0": ["tdm_inspect.h", "tdm_inspect_model.h", "tdm_inspect_layout.h",
                                                     "tdm_inspect_source.h", "tdm_inspect_overlap.h",
                                                     "tdm_inspect_route.h", "tdm_inspect_expression.h"]}


def without_comments(text):
    return re.sub(r"/\*.*?\*/|//[^\n]*", "", text, flags=re.S)


def listed(version_script):
    """{node: names} of the version script."""
    nodes = {}
    text = without_comments(version_script.read_text())
    for node, body in re.findall(r"(\S+)\s*\{(.*?)\}\s*[\w.]*\s*;", text, flags=re.S):
        names = body.split("global:")[-1].split("local:")[0]
        nodes[node] = set(re.findall(r"\b(\w+)\s*;", names))
    return nodes


def exported(library):
    """{(name, node)} of all that is defined and visible."""
    output = subprocess.run(["nm", "-D", "--defined-only", "--with-symbol-versions", library],
                            capture_output=True, text=True, check=True).stdout
    names = set()
    for line in output.splitlines():
        name, _, version = line.split()[-1].replace("@@", "@").partition("@")
        if name != version and line.split()[-2] != "A":  # the node itself
            names.add((name, version))
    return names


def declared(headers):
    text = "".join(without_comments(header.read_text()) for header in headers)
    return set(re.findall(r"\b(?:TDM|EXPRLIB)_API\b[^;]*?\b((?:tdm|exprlib)_\w+)\s*\(", text))


def client_names(source):
    """The classes and functions that the headers mark as meant for clients in C++."""
    text = "".join(without_comments(header.read_text()) for header in source.glob("src/**/*.h"))
    return set(re.findall(r"\bTDM_CLIENT_API\s+(?:void\s+)?(\w+)", text))


def owner(name):
    """The outermost class, or the function, that a mangled name belongs to."""
    text = subprocess.run(["c++filt", name], capture_output=True, text=True, check=True).stdout
    return re.match(r"(?:vtable for |typeinfo (?:name )?for )?(\w+)", text)[1]


def main():
    library, source = sys.argv[1], Path(sys.argv[2])
    interface = source / "src" / "interface"
    nodes = listed(interface / "exports.map")
    found = exported(library)
    client = "".join(file.read_text() for file in (source / "tests/interface").glob("c_*.c"))
    called = set(re.findall(r"\b(tdm_\w+)\s*\(", client))
    problems = []

    def compare(what, names, where, others):
        problems.extend(f"{name}: {what}, but not {where}" for name in sorted(names - others))

    for node, headers in HEADERS.items():
        functions = declared([interface / header for header in headers])
        compare("declared", functions, f"in node {node}", nodes.get(node, set()))
        compare(f"in node {node}", nodes.get(node, set()), "declared", functions)
        compare("exported function", functions, "called by the client in C", called)
    wanted = {(name, node) for node, names in nodes.items() for name in names}
    compare("listed", wanted, "exported", found)
    compare("exported", found, "listed", wanted)

    for_clients = nodes.get("TDM_C_CXX_4.0", set())
    exprlib = declared([source / "src/expressions/exprlib/exprlib.h"])
    compare("declared", exprlib, "in the node for clients", for_clients)
    owners = {owner(name) for name in for_clients - exprlib}
    compare("in the node for clients", owners, "marked as theirs", client_names(source))
    print("\n".join(map(str, problems)))
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
