#!/usr/bin/env python3
"""Holds `tdm show --json` against its schema, a golden file, and a second spelling of one text.

    show_json.py [--update] TDM ROOT

Every example, in every variant that examples/checks.txt names, is valid by tools/tdm/show.schema.json,
which leaves nothing open: an object has all of its keys and no others. One example is compared with
golden/. Two descriptions that mean the same, twice/plain.tdm and twice/other.tdm, give the same but
for places and files. --update writes the golden file anew.

Without python3-jsonschema the schema is not looked at, and a line says so.
"""
import json
import os
import subprocess
import sys
from pathlib import Path

GOLDEN = ("atmega328p/atmega328p.tdm", "atmega328p.json")


class Show:
    def __init__(self, tdm, root):
        self.tdm, self.examples = os.path.abspath(tdm), root / "examples"

    def __call__(self, description, *options):
        """What it writes; the names of files stand there as they are given."""
        done = subprocess.run([self.tdm, "show", "--json", *options, description],
                              cwd=self.examples, capture_output=True, check=False)
        if done.returncode:
            sys.exit(f"{description} {' '.join(options)}: {done.stderr.decode()}")
        return done.stdout.decode()


def variants(root):
    """Each description with each set of definitions that the checks of the examples have."""
    found = {}
    for line in (root / "examples/checks.txt").read_text("utf-8").splitlines():
        if line and not line.startswith("#"):
            file, definitions = line.split()[:2]
            found[file, definitions] = [] if definitions == "-" else [
                word for name in definitions.split(",") for word in ("-D", name)]
    own = Path(__file__).resolve().parent
    for file in ("inspect.tdm", "twice/plain.tdm"):
        found[str(own / file), "-"] = []
    return [(file, options) for (file, _), options in found.items()]


def open_objects(schema, optional, path="schema"):
    """Objects of the schema that take any key, or can do without one that isn't optional."""
    if isinstance(schema, dict):
        if "properties" in schema:
            left_out = set(schema["properties"]) - set(schema.get("required", []))
            if schema.get("additionalProperties") is not False or left_out - optional:
                yield f"{path}: takes more or less than it says: {sorted(left_out)}"
        for key, inner in schema.items():
            yield from open_objects(inner, optional, f"{path}.{key}")
    elif isinstance(schema, list):
        for index, inner in enumerate(schema):
            yield from open_objects(inner, optional, f"{path}[{index}]")


def innermost(error):
    while error.context:
        error = max(error.context, key=lambda inner: len(inner.absolute_path))
    return error


def schema_faults(show, root):
    schema = json.loads((root / "tools/tdm/show.schema.json").read_text("utf-8"))
    yield from open_objects(schema, {"origins"})
    try:
        import jsonschema  # pylint: disable=import-outside-toplevel
    except ImportError:
        print("skipped: the schema, as python3-jsonschema is missing")
        return
    jsonschema.Draft7Validator.check_schema(schema)
    validator = jsonschema.Draft7Validator(schema)
    for file, options in variants(root):
        for more in ([], ["--origin"]):
            for error in validator.iter_errors(json.loads(show(file, *options, *more))):
                error = innermost(error)
                where = "".join(f"[{part!r}]" for part in error.absolute_path)
                yield f"{file} {' '.join(options + more)}: {where}: {error.message[:200]}"


def without_places(value):
    if isinstance(value, dict):
        return {key: without_places(inner) for key, inner in value.items()
                if key not in ("origins", "location", "files")}
    return [without_places(inner) for inner in value] if isinstance(value, list) else value


def spelling_faults(show):
    folder = Path(__file__).resolve().parent / "twice"
    texts = [json.dumps(without_places(json.loads(show(str(folder / name)))), indent=1).splitlines()
             for name in ("plain.tdm", "other.tdm")]
    for number, (plain, other) in enumerate(zip(*texts)):
        if plain != other:
            yield f"twice/: line {number + 1}: {plain.strip()} and {other.strip()}"
            return
    if len(texts[0]) != len(texts[1]):
        yield f"twice/: {len(texts[0])} and {len(texts[1])} lines"


def golden_faults(show, update):
    example, name = GOLDEN
    file = Path(__file__).resolve().parent / "golden" / name
    found = show(example)
    if update:
        file.parent.mkdir(exist_ok=True)
        file.write_text(found, encoding="utf-8")
    expected = file.read_text(encoding="utf-8").splitlines()
    lines = found.splitlines()
    for number in range(max(len(expected), len(lines))):
        pair = [text[number] if number < len(text) else "<end>" for text in (expected, lines)]
        if pair[0] != pair[1]:
            yield f"golden/{name}:{number + 1}: expected {pair[0].strip()}, found {pair[1].strip()}"
            return


def main():
    words = [word for word in sys.argv[1:] if word != "--update"]
    root = Path(words[1]).resolve()
    show = Show(words[0], root)
    faults = [*golden_faults(show, "--update" in sys.argv), *spelling_faults(show),
              *schema_faults(show, root)]
    print("\n".join(faults) or "in order")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
