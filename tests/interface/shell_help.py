#!/usr/bin/env python3
"""Manual page and completions know every option, and the shells take them. Help isn't too wide.

    shell_help.py TDM SCRIPT

SCRIPT makes them (tools/tdm/shell_help.py). zsh, fish and scdoc are asked where they are there.
"""
import json
import pathlib
import shutil
import subprocess
import sys
import tempfile

MOST_COLUMNS = 100

# (words in front of the cursor, what bash offers; None: names of files)
COMPLETIONS = (
    (["tdm", "ch"], ["check"]),
    (["tdm", "--v"], ["--version"]),
    (["tdm", "check", "--fo"], ["--format"]),
    (["tdm", "check", "chip.tdm", "--format", "s"], ["sarif"]),
    (["tdm", "explain", "--format", ""], ["text", "json", "markdown"]),
    (["tdm", "show", "--color", "a"], ["auto", "always"]),
    (["tdm", "map", "--space", ""], []),
    (["tdm", "map", "tdm.b"], ["tdm.bash"]),
    (["tdm", "show", "-I", ""], ["inner"]),
    (["tdm", "draw", "-o", "tdm.b"], ["tdm.bash"]),
)


def run(*command, cwd, text=None):
    return subprocess.run(command, cwd=cwd, input=text, capture_output=True, text=True, check=False)


def option_faults(tool, made):
    for verb in [tool, *tool["verbs"]]:
        for name in (name for option in verb["options"] for name in option["names"]):
            spelled = {"tdm.1.scd": f"*{name}*", "tdm.bash": name, "_tdm": f"{name}[",
                       "tdm.fish": f"-l {name[2:]}" if name[2:] else f"-s {name[1:]}"}
            for file, text in made.items():
                lines = text.splitlines()
                if file in ("tdm.bash", "tdm.fish") and verb is not tool:
                    lines = [line for line in lines if verb["name"] in line]
                if not any(spelled[file] in line for line in lines):
                    yield f"{file}: nothing of {verb['name']} {name}"


def width_faults(tdm, tool):
    for verb in tool["verbs"]:
        for line in run(tdm, verb["name"], "--help", cwd=".").stdout.splitlines():
            if len(line) > MOST_COLUMNS:
                yield f"tdm {verb['name']} --help: {len(line)} columns: {line}"


def completion_faults(directory):
    (pathlib.Path(directory) / "inner").mkdir()
    loaded = run("bash", "-c", "source ./tdm.bash && complete -p tdm", cwd=directory)
    if loaded.stdout != "complete -F _tdm tdm\n":
        yield f"bash: {loaded.stdout}{loaded.stderr}"
    for words, expected in COMPLETIONS:
        script = ('source ./tdm.bash; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _tdm; '
                  'printf "%s\\n" "${COMPREPLY[@]}"')
        found = run("bash", "-c", script, "bash", *words, cwd=directory).stdout.split()
        if found != expected:
            yield f"bash: {words} is completed by {found}"


def syntax_faults(directory):
    checks = {"bash": ["-n", "tdm.bash"], "zsh": ["-n", "_tdm"], "fish": ["--no-execute", "tdm.fish"]}
    for shell, arguments in checks.items():
        if shutil.which(shell) is None:
            continue
        done = run(shell, *arguments, cwd=directory)
        if done.returncode != 0 or done.stderr:
            yield f"{shell}: {done.stderr}"
    if shutil.which("scdoc") is not None:
        page = run("scdoc", cwd=directory, text=(pathlib.Path(directory) / "tdm.1.scd").read_text())
        if page.returncode != 0 or "--depfile" not in page.stdout.replace("\\", ""):
            yield f"scdoc: {page.stderr}"


def main():
    tdm, script = sys.argv[1:]
    tool = json.loads(run(tdm, "--dump-options", cwd=".").stdout)
    with tempfile.TemporaryDirectory() as directory:
        subprocess.run([sys.executable, script, tdm, directory], check=True)
        made = {path.name: path.read_text(encoding="utf-8")
                for path in pathlib.Path(directory).iterdir()}
        faults = [*option_faults(tool, made), *width_faults(tdm, tool), *completion_faults(directory),
                  *syntax_faults(directory)]
    print("\n".join(faults) or "manual and completions are complete")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
