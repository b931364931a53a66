#!/usr/bin/env python3
"""Makes the manual page and the completions of shells from the options of the tool.

    shell_help.py TDM DIRECTORY

`TDM --dump-options` gives verbs, options and help texts as JSON; what comes out in DIRECTORY is
tdm.1.scd (the source of the page, for scdoc), tdm.bash, _tdm (zsh) and tdm.fish.
"""
import json
import pathlib
import re
import subprocess
import sys


def choices(option):
    """The words that a value is one of; none if it is free."""
    return option["value"].split("|") if re.fullmatch(r"[a-z]+(\|[a-z]+)+", option["value"] or "") \
        else []


def flat(text):
    return " ".join(text.split())


def is_file(option):
    return option["value"] in ("FILE", "FILE|-", "LIST|-")


def named(verb):
    return [option for option in verb["options"] if option["names"]]


def positional(verb):
    return next((option for option in verb["options"] if not option["names"]), None)


# --- the manual page

def escaped(text):
    """As text of scdoc, which takes _ and * for marks, and a few characters at the start of a line."""
    return re.sub(r"([\\_*#])", r"\\\1", text)


def spelled(option):
    value = f" {option['value']}" if option["value"] else ""
    return ", ".join(f"*{escaped(name)}*{escaped(value)}" for name in option["names"])


def synopsis(verb):
    words = ["*tdm*", f"*{verb['name']}*", "[options]"]
    for free in (option for option in verb["options"] if not option["names"]):
        text = escaped(free["value"]) + ("..." if free["repeated"] else "")
        words.append(text if free["required"] else f"[{text}]")
    return " ".join(words)


def footer(text):
    """Prose, then examples as they are typed."""
    lines, prose, examples = text.splitlines(), [], []
    for line in lines:
        if line.startswith("  "):
            examples.append(line.strip())
        elif not re.fullmatch(r"Examples?:", line):
            prose.append(line)
    if prose:
        yield escaped(" ".join(prose))
        yield ""
    if examples:
        yield "```"
        yield from examples
        yield "```"
        yield ""


def options_of(verb):
    for option in verb["options"]:
        if option["names"]:
            yield spelled(option)
        else:
            yield f"_{escaped(option['value'])}_"
        yield "\t" + escaped(flat(option["does"])) + (" (required)" if option["required"] and option["names"] else "")
        yield ""


def manual(tool):
    lines = [f'tdm(1) "tdm {tool["version"]}"', "", "# NAME", "",
             "tdm - checks target descriptions and answers questions about them", "", "# SYNOPSIS", ""]
    for verb in tool["verbs"]:
        lines += [synopsis(verb) + "++"]
    lines[-1] = lines[-1].removesuffix("++")
    lines += ["", "# DESCRIPTION", "", escaped(tool["does"]), ""]
    examples, _, exit_codes = tool["footer"].partition("\nExit codes:\n")
    lines += [*footer(examples), "# OPTIONS", "", *options_of(tool)]
    for verb in tool["verbs"]:
        lines += [f"# TDM {verb['name'].upper()}", "", synopsis(verb), "", escaped(verb["does"]) + ".",
                  "", *options_of(verb), *footer(verb["footer"])]
    lines += ["# EXIT STATUS", ""]
    for line in exit_codes.splitlines():
        code, meaning = line.split(maxsplit=1)
        lines += [f"*{code}*", "\t" + escaped(meaning), ""]
    return "\n".join(lines).rstrip() + "\n"


# --- bash

BASH = r"""# Completion for tdm in bash, made from the options of the tool.

_tdm()
{
  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD-1]} verb= word
  COMPREPLY=()
  for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
    case $word in
      -*) ;;
      *) verb=$word; break ;;
    esac
  done
  case $verb:$previous in
@VALUES@
  esac
  local options
  case $verb in
@OPTIONS@
  esac
  if [[ $current == -* || -z $verb ]]; then
    mapfile -t COMPREPLY < <(compgen -W "$options" -- "$current")
  elif [[ $verb != explain ]]; then
    compopt -o filenames 2>/dev/null
    mapfile -t COMPREPLY < <(compgen -f -- "$current")
  fi
}
complete -F _tdm tdm
"""


def bash_value(verb, option):
    pattern = "|".join(f"{verb['name']}:{name}" for name in option["names"])
    words = choices(option)
    if words:
        action = f'mapfile -t COMPREPLY < <(compgen -W "{" ".join(words)}" -- "$current")'
    elif option["value"] == "DIR":
        action = 'compopt -o filenames 2>/dev/null; ' \
                 'mapfile -t COMPREPLY < <(compgen -d -- "$current")'
    elif is_file(option):
        action = 'compopt -o filenames 2>/dev/null; ' \
                 'mapfile -t COMPREPLY < <(compgen -f -- "$current")'
    else:
        action = ":"
    return f"    {pattern}) {action}; return ;;"


def bash(tool):
    values = [bash_value(verb, option) for verb in tool["verbs"] for option in named(verb)
              if option["value"]]
    first = [verb["name"] for verb in tool["verbs"]] + \
            [name for option in named(tool) for name in option["names"]]
    options = [f'    "") options="{" ".join(first)}" ;;']
    for verb in tool["verbs"]:
        names = [name for option in named(verb) for name in option["names"]]
        options.append(f'    {verb["name"]}) options="{" ".join(names)}" ;;')
    return BASH.replace("@VALUES@", "\n".join(values)).replace("@OPTIONS@", "\n".join(options))


# --- zsh

def zsh_quoted(text):
    return "'" + text.replace("'", "'\\''") + "'"


def zsh_spec(option):
    does = re.sub(r"([\[\]:\\])", r"\\\1", flat(option["does"]))
    value = ""
    if option["value"]:
        words = choices(option)
        action = "(" + " ".join(words) + ")" if words else \
            "_files -/" if option["value"] == "DIR" else "_files" if is_file(option) else " "
        value = ":" + re.sub(r"([:\\])", r"\\\1", option["value"]) + ":" + action
    return [zsh_quoted(("*" if option["value"] else "") + name + f"[{does}]" + value)
            for name in option["names"]]


def zsh(tool):
    lines = ["#compdef tdm", "# Completion for tdm in zsh, made from the options of the tool.", "",
             "local -a verbs", "verbs=("]
    lines += ["  " + zsh_quoted(f"{verb['name']}:{verb['does']}") for verb in tool["verbs"]]
    lines += [")", "if (( CURRENT == 2 )); then", "  if [[ $PREFIX == -* ]]; then"]
    general = " ".join(spec for option in named(tool) for spec in zsh_spec(option))
    lines += [f"    _arguments {general}", "  else", "    _describe verb verbs", "  fi", "  return",
              "fi", "local verb=$words[2]", "(( CURRENT-- ))", "shift words", "case $verb in"]
    for verb in tool["verbs"]:
        specs = [spec for option in named(verb) for spec in zsh_spec(option)]
        free = positional(verb)
        if free:
            specs.append(zsh_quoted("*:" + free["value"] + ":" + ("_files" if is_file(free) else " ")))
        lines += [f"  {verb['name']})", "    _arguments \\", *(f"      {spec} \\" for spec in specs[:-1]),
                  f"      {specs[-1]}", "    ;;"]
    return "\n".join(lines + ["esac"]) + "\n"


# --- fish

def fish_quoted(text):
    return "'" + text.replace("\\", "\\\\").replace("'", "\\'") + "'"


def fish_option(option, condition):
    words = [f"complete -c tdm -n {fish_quoted(condition)}"]
    for name in option["names"]:
        words.append(f"-l {name[2:]}" if name.startswith("--") else f"-s {name[1:]}")
    if option["value"]:
        values = choices(option)
        words.append("-x" if values or not (is_file(option) or option["value"] == "DIR") else "-r")
        if values:
            words.append(f"-a {fish_quoted(' '.join(values))}")
        elif option["value"] == "DIR":
            words[-1] = "-x -a '(__fish_complete_directories)'"
    return " ".join(words) + " -d " + fish_quoted(flat(option["does"]))


def fish(tool):
    lines = ["# Completion for tdm in fish, made from the options of the tool.", "complete -c tdm -e"]
    for option in named(tool):
        lines.append(fish_option(option, "__fish_use_subcommand"))
    for verb in tool["verbs"]:
        lines.append(f"complete -c tdm -f -n __fish_use_subcommand -a {verb['name']} "
                     f"-d {fish_quoted(verb['does'])}")
        condition = f"__fish_seen_subcommand_from {verb['name']}"
        lines += [fish_option(option, condition) for option in named(verb)]
        free = positional(verb)
        if free and not is_file(free):
            lines.append(f"complete -c tdm -f -n {fish_quoted(condition)}")
    return "\n".join(lines) + "\n"


def main():
    tdm, directory = sys.argv[1], pathlib.Path(sys.argv[2])
    dump = subprocess.run([tdm, "--dump-options"], capture_output=True, check=True).stdout
    tool = json.loads(dump)
    directory.mkdir(parents=True, exist_ok=True)
    for name, make in (("tdm.1.scd", manual), ("tdm.bash", bash), ("_tdm", zsh), ("tdm.fish", fish)):
        (directory / name).write_text(make(tool), encoding="utf-8")


if __name__ == "__main__":
    main()
