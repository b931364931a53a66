#!/usr/bin/env python3
"""What the preprocessor leaves of a description means what the description means.

    preprocessed.py TDM DESCRIPTION...

Reads each description as it is, and what `tdm preprocess` makes of it, with line markers and
without; the JSON of the model must be the same, but for the names of files. With markers lines are
the same, too; columns follow from the lengths of macros.
"""
import json
import subprocess
import sys
import tempfile
from pathlib import Path


def output(*command):
    return subprocess.run(command, capture_output=True, text=True, check=True).stdout


def model(tdm, file, left_out):
    def without(record):
        return {key: value for key, value in record.items() if key not in left_out}
    return json.loads(output(tdm, "show", "--json", file), object_hook=without)


def main():
    tdm, *descriptions = sys.argv[1:]
    different = 0
    with tempfile.TemporaryDirectory() as directory:
        text = Path(directory, "text.tdm")
        for file in descriptions:
            for option, left_out in ("--color=auto", ["files", "file", "column"]), ("-P", ["files", "location"]):
                text.write_text(output(tdm, "preprocess", option, file), encoding="utf-8")
                if model(tdm, str(text), left_out) != model(tdm, file, left_out):
                    print(f"{file}: another model behind tdm preprocess {option}")
                    different += 1
    return 1 if different or not descriptions else 0


if __name__ == "__main__":
    sys.exit(main())
