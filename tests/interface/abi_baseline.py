#!/usr/bin/env python3
"""The binary interface in C is what was promised: the built library against a stored description.

    abi_baseline.py LIBRARY INCLUDE_DIR SOURCE_DIR [--update]

abidw reads functions and types out of the debug information. Of what it finds stays what a client in C
is compiled with: the functions of the nodes for C, the records and enumerations that the headers
define, and what these reach. Handles are opaque. The rest is ours to change, and would make the
description a hundred times as large. Types are named by how C writes them, so that two builds describe
the same thing by the same text.

abidiff then has the word. What the stored description lacks is new interface and no fault; --update
enters it. Without the tools or debug information there is nothing to compare: exit code 77.
"""
import re
import shutil
import subprocess
import sys
import tempfile
import xml.etree.ElementTree as ElementTree
from pathlib import Path

from exported_names import listed

NODES = ("TDM_C_4.0", "TDM_C_INSPECT_1.0")
TYPES = {"type-decl", "typedef-decl", "class-decl", "union-decl", "enum-decl", "pointer-type-def",
         "qualified-type-def", "array-type-def", "function-type"}
RECORDS = {"class-decl", "union-decl", "enum-decl"}


def c_headers(include, scratch):
    """Records of other headers, those for clients in C++, are opaque to clients in C."""
    for header in Path(include).glob("tdm_c/tdm*.h"):
        shutil.copy(header, scratch)
    return scratch


def described(library, include, names):
    """The root element of what abidw says of the library."""
    with tempfile.TemporaryDirectory() as scratch:
        kept = Path(scratch) / "names"
        kept.write_text("[abi_whitelist]\n" + "".join(f"  {name}\n" for name in sorted(names)))
        text = subprocess.run(
            ["abidw", "--headers-dir", c_headers(include, scratch), "--drop-private-types",
             "--load-all-types", "--no-show-locs", "--no-comp-dir-path", "--type-id-style", "hash",
             "--kmi-whitelist", kept, library],
            capture_output=True, text=True, check=True).stdout
    return ElementTree.fromstring(text)


class Pruner:
    """Collects elements for a description of its own, with readable ids."""

    def __init__(self, root, records):
        self.records = records
        self.types = {e.get("id"): e for e in root.iter() if e.tag in TYPES}
        self.names = {}  # id of abidw -> name
        self.kept = {}  # name -> element

    def name(self, id):
        if id not in self.names:
            self.names[id] = self.spelled(self.types[id])
        return self.names[id]

    def spelled(self, element):
        target = element.get("type-id")
        if element.tag == "pointer-type-def":
            return self.name(target) + "*"
        if element.tag == "qualified-type-def":
            return self.name(target) + " const" * (element.get("const") == "yes")
        if element.tag == "array-type-def":
            return self.name(target) + "".join(f"[{e.get('length')}]" for e in element)
        if element.tag == "function-type":
            return "(" + ", ".join(self.name(e.get("type-id")) for e in element) + ")"
        return {"typedef-decl": "typedef "}.get(element.tag, "") + element.get("name")

    def keep_type(self, id):
        name = self.name(id)
        if name in self.kept:
            return
        element = self.types[id]
        if element.tag == "class-decl" and name not in self.records:
            element = ElementTree.Element("class-decl", {  # a handle, however much is known of it
                "name": name, "is-struct": "yes", "visibility": "default",
                "is-declaration-only": "yes", "id": id})
        self.kept[name] = element  # before what it reaches, which may be itself
        for part in [element, *element.iter()]:
            if part.get("type-id"):
                self.keep_type(part.get("type-id"))

    def renamed(self, element):
        for part in element.iter():
            for key in ("type-id", "id", "naming-typedef-id"):
                if part.get(key) in self.types:
                    part.set(key, self.name(part.get(key)))
        # A range of an array has an id without anyone asking for it.
        for part in element.iter("subrange"):
            part.set("id", f"range {part.get('length')}")
        return element


def pruned(root, names, records):
    """A description of these functions and records alone."""
    pruner = Pruner(root, records)
    functions = {e.get("name"): e for e in root.iter("function-decl") if e.get("name") in names}
    for element in root.iter():
        if element.tag in RECORDS and element.get("name") in records and len(element):
            pruner.keep_type(element.get("id"))
    for part in (part for function in functions.values() for part in function):
        pruner.keep_type(part.get("type-id"))
    corpus = ElementTree.Element("abi-corpus", {**root.attrib, "path": Path(root.get("path")).name})
    symbols = ElementTree.SubElement(corpus, "elf-function-symbols")
    symbols.extend(e for e in root.iter("elf-symbol") if e.get("name") in names)
    unit = ElementTree.SubElement(corpus, "abi-instr", {"address-size": "64", "path": "tdm_c",
                                                        "language": "LANG_C99"})
    unit.extend(pruner.renamed(pruner.kept[name]) for name in sorted(pruner.kept))
    unit.extend(pruner.renamed(functions[name]) for name in sorted(functions))
    ElementTree.indent(corpus, " ")
    return corpus


def defined(include):
    """Names of the records and enumerations that the headers define, or a typedef of them names."""
    text = "".join(header.read_text() for header in Path(include).glob("tdm_c/tdm*.h"))
    return set(re.findall(r"\b(?:struct|enum)\s+(\w+)\s*\{", text))


def main():
    library, include, source = sys.argv[1:4]
    stored = Path(source) / "tests/interface/abi_baseline.xml"
    if not shutil.which("abidw") or ".debug_info" not in subprocess.run(
            ["readelf", "-SW", library], capture_output=True, text=True, check=True).stdout:
        print("no abidw or no debug information: nothing compared")
        return 77
    nodes = listed(Path(source) / "src/interface/exports.map")
    names = set().union(*(nodes[node] for node in NODES))
    records = defined(include)
    root = described(library, include, names)
    symbols = {e.get("name") for e in root.iter("elf-symbol")}
    if not names & symbols <= {e.get("name") for e in root.iter("function-decl")}:
        print("some functions have no debug information, an optimiser shared their code: nothing compared")
        return 77
    if "--update" in sys.argv:
        ElementTree.ElementTree(pruned(root, names, records)).write(stored)
        return 0

    promised = ElementTree.parse(stored).getroot()
    if promised.get("architecture") != root.get("architecture"):
        print(f"the stored description is for {promised.get('architecture')}: nothing compared")
        return 77
    old_names = {e.get("name") for e in promised.iter("function-decl")}
    records &= {e.get("name") for e in root.iter() if e.tag in RECORDS}
    old_records = {e.get("name") for e in promised.iter() if e.tag in RECORDS}
    for name in sorted((names - old_names) | (records - old_records)):
        print(f"new, not in the stored description: {name}")
    with tempfile.NamedTemporaryFile(suffix=".xml") as present:
        corpus = pruned(root, names & old_names, records & old_records)
        present.write(ElementTree.tostring(corpus))
        present.flush()
        return subprocess.run(["abidiff", "--non-reachable-types", stored, present.name]).returncode


if __name__ == "__main__":
    sys.exit(main())
