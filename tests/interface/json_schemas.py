#!/usr/bin/env python3
"""Holds the JSON of `tdm map`, `check`, `layout`, `select` and `eval` against its schemas.

    json_schemas.py TDM ROOT

What they write of every example and of descriptions of the tests is valid by tools/tdm/VERB.schema.json:
tables and routes of all spaces and memories, all layouts, what they select of a list, expressions, and what is
wrong with a few broken files. The schemas leave nothing open: an object has all of its keys and no others,
but for those in OPTIONAL. `show` has a test of its own.

Without python3-jsonschema the schemas are not looked at, and a line says so.
"""
import json
import os
import subprocess
import sys
import tempfile
from pathlib import Path

sys.dont_write_bytecode = True
from show_json import innermost, open_objects, variants  # pylint: disable=wrong-import-position

# What a group, a selection, a route or all routes don't always have.
OPTIONAL = {"name", "address", "bank", "ranges", "align", "also", "unused"}

SECTIONS = """.text rx
.text.main rx
.data rwi
.bss rw
"no such place" p
"""

# A group that breaks a rule of the one around it ends the walk.
WALK_ENDS = """architecture arc
{
  bus b { mau = 8; width = 8; }
  space lin { id = 1; mau = 8; map (size = 1k, dest = bus:b);
    section_layout { select "a"; group (clustered) { group (ordered) select "b"; } } }
}
"""

BROKEN = {
    "main.tdm": '#include "inner.tdh"\n#define TWICE 2\n#include "missing.tdh"\n',
    "inner.tdh": "#define TWICE 1\n#define UNUSED\n@ memory m { mau = ; }\n",
    "empty.tdm": "",
}

EXPRESSIONS = ["1 + 2", "-9223372036854775807 - 1", '"sym" + sizeof(sect:".text")',
               'addressof(group:grp) + addressof(sect:"a")', 'exists(".text") && defined("sym")']


class Tool:
    def __init__(self, tdm, folder):
        self.tdm, self.folder = os.path.abspath(tdm), folder

    def __call__(self, *words, stdin=""):
        done = subprocess.run([self.tdm, *words], cwd=self.folder, input=stdin.encode(),
                              capture_output=True, check=False)
        if not done.stdout:
            sys.exit(f"tdm {' '.join(words)}: {done.stderr.decode()}")
        return json.loads(done.stdout)


def answers(tool, description, options):
    """(verb, words, what it writes) of all that is asked of a description."""
    def ask(verb, *words, stdin=""):
        form = ["--format", "json"] if verb == "check" else ["--json"]
        asked = [verb, *form, *options, description, *words]
        return verb, asked, tool(*asked, stdin=stdin)

    model = tool("show", "--json", *options, description)
    yield ask("check")
    yield ask("map")
    memories = list(model["memories"])
    spaces = []
    for processor in model["processors"]:
        memories += processor["memories"]
        for core in processor["cores"]:
            spaces += [space for space in core["spaces"] if space["kind"] != "non_alloc"]
    for memory in memories:
        yield ask("map", "--memory", memory["full_name"])
    for space in spaces:
        name = ["--space", space["full_name"]]
        yield ask("map", *name, "--at", "0")
        yield ask("layout", *name)
        yield ask("select", *name, stdin=SECTIONS)
    name = ["--space", spaces[0]["full_name"]]
    yield ask("map", *name, "--at", "0..64k", "--unit", "8")
    yield ask("layout", *name, "--exists", ".data")
    for expression in EXPRESSIONS:
        yield ask("eval", *name, "--symbol", "sym=-1", "--defined", "other", expression)


def all_answers(tdm, root):
    for description, options in dict(reversed(variants(root))).items():
        yield from answers(Tool(tdm, root / "examples"), description, options)
    own = Path(__file__).resolve().parent
    yield from answers(Tool(tdm, own), "layout.tdm", [])
    with tempfile.TemporaryDirectory() as folder:
        (Path(folder) / "ends.tdm").write_text(WALK_ENDS, encoding="utf-8")
        yield from answers(Tool(tdm, folder), "ends.tdm", [])
        for name, text in BROKEN.items():
            (Path(folder) / name).write_text(text, encoding="utf-8")
        words = ["check", "--format", "json", "--each", *sorted(BROKEN)]
        yield "check", words, Tool(tdm, folder)(*words)


def faults(tdm, root):
    schemas = {verb: json.loads((root / f"tools/tdm/{verb}.schema.json").read_text("utf-8"))
               for verb in ("check", "eval", "layout", "map", "select")}
    for verb, schema in schemas.items():
        for fault in open_objects(schema, OPTIONAL):
            yield f"{verb}: {fault}"
    try:
        import jsonschema  # pylint: disable=import-outside-toplevel
    except ImportError:
        print("skipped: the schemas, as python3-jsonschema is missing")
        return
    validators = {}
    for verb, schema in schemas.items():
        jsonschema.Draft7Validator.check_schema(schema)
        validators[verb] = jsonschema.Draft7Validator(schema)
    kinds = set()
    for verb, words, answer in all_answers(tdm, root):
        for error in validators[verb].iter_errors(answer):
            error = innermost(error)
            where = "".join(f"[{part!r}]" for part in error.absolute_path)
            yield f"tdm {' '.join(words)}: {where}: {error.message[:200]}"
        kinds |= set(kinds_in(answer)) if verb == "layout" else set()
    known = {item["properties"]["kind"]["const"]
             for item in schemas["layout"]["definitions"]["item"]["oneOf"]}
    if known - kinds:
        yield f"no layout has {sorted(known - kinds)}"


def kinds_in(layout):
    pending = list(layout["items"])
    while pending:
        item = pending.pop()
        yield item["kind"]
        pending += item.get("items", [])


def main():
    found = list(faults(sys.argv[1], Path(sys.argv[2]).resolve()))
    print("\n".join(found) or "in order")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
