#!/usr/bin/env python3
"""Compiles the programs of the documents and runs them, so that they can't go stale.

    check_programs.py CC CXX INCLUDE_DIR LIBRARY_DIR [--update] [FLAG...]

In a document that has programs, a block ```c or ```cpp is a whole one, and its first line names its
file: `/* NAME: ...` or `// NAME: ...`. It is compiled as a client's, with all warnings as errors and
with the further flags. A block ```tdm whose first line is `// NAME` is a file beside it. Blocks
```console with `$ ./NAME` are transcripts of runs, in the form of tests/interface/transcripts.py; --update
writes anew what the programs print. README.md has a program with a test of its own.
"""
import pathlib
import re
import subprocess
import sys
import tempfile

sys.dont_write_bytecode = True
from check_examples import BLOCK, ROOT, is_run_of_programs  # pylint: disable=wrong-import-position
from transcripts import play  # pylint: disable=wrong-import-position

LANGUAGES = {"c": ["-std=c99"], "cpp": ["-std=c++20", "-Wshadow"]}
NAME = re.compile(r"(?:/\*|//) ([\w.]+)")


def compile_program(compiler, language, flags, source):
    include, library, *further = flags
    done = subprocess.run(
        [compiler, *LANGUAGES[language], "-Wall", "-Wextra", "-pedantic", "-Werror", *further,
         f"-I{include}", str(source), f"-L{library}", f"-Wl,-rpath,{library}", "-ltdm_c", "-o",
         str(source.with_suffix(""))], capture_output=True, text=True, check=False)
    return done.stdout + done.stderr


def document_faults(document, compilers, flags, update):
    text = document.read_text(encoding="utf-8")
    found = []
    with tempfile.TemporaryDirectory() as folder:
        root = pathlib.Path(folder).resolve()

        def looked_at(block):
            where = f"{document.relative_to(ROOT)}:{text.count(chr(10), 0, block.start()) + 1}"
            name = NAME.match(block[2])
            if block[1] in (*LANGUAGES, "tdm") and name:
                (root / name[1]).write_text(block[2], encoding="utf-8")
            if block[1] in LANGUAGES:
                said = (compile_program(compilers[block[1]], block[1], flags, root / name[1])
                        if name else "a program without a name\n")
                if said:
                    found.append(f"{where}: {said}")
            elif block[1] == "console" and is_run_of_programs(block[2]) and not found:
                now = "".join(line + "\n" for line in play(block[2].splitlines(), None, str(root)))
                if now != block[2] and not update:
                    found.append(f"{where}: now it is\n{now}")
                return f"```console\n{now}```"
            return block[0]

        new = BLOCK.sub(looked_at, text)
    if update and new != text:
        document.write_text(new, encoding="utf-8")
    return found


def main():
    words = [word for word in sys.argv[1:] if word != "--update"]
    compilers, flags = {"c": words[0], "cpp": words[1]}, words[2:]
    faults = []
    for document in sorted((ROOT / "docs").glob("*.md")):
        faults += document_faults(document, compilers, flags, "--update" in sys.argv)
    print("\n".join(faults) or "all programs of the documents hold")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
