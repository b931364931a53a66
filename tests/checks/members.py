#!/usr/bin/env python3
"""Fails when a member of a class of the model has no reader that a client in C could call.

    members.py <library, with its debug information> <root of the project>

Takes the members of the classes that the headers of the model's floors declare from the debug
information, through `pahole`, with those of the structures that they hold by value. Each has to
stand in members.txt, and each reader there has to be of a member that there is, and to be declared
by the installed headers. Says so and skips (exit code 77) where there is no pahole, or nothing
that it could read.
"""
import pathlib
import re
import shutil
import subprocess
import sys

# The floors that hold the model, and what every object of it has.
HEADERS = re.compile(r'/src/(?:(?:mapping|layout|model)/\w+|common/(?:tdm_object|source_location))\.h$')
# Members of structures in namespaces are asked for by name: types that a member may have.
NAMESPACED = re.compile(r'\btdm::(\w+)|\b(?:struct|class) (\w+)\s')

SKIPPED = 77


def members_of(output):
    """[(class, member, type, header)] of what pahole writes."""
    found, header, scopes = [], '', []
    for line in output.splitlines():
        if place := re.match(r'\s*/\* <[0-9a-f]+> (\S+):\d+ \*/$', line):
            header = place[1]
        elif line.endswith('{'):
            opened = re.match(r'\s*(?:struct|class|union) (\w+)', line)
            scopes.append((opened[1] if opened else '', header))
        elif re.match(r'\s*\}', line):
            if scopes:
                scopes.pop()
        elif scopes and scopes[-1][0]:
            member = re.match(r'\s*([^/\s].*?)\s+(\w+)(?:\[\d+\])*(?: __attribute__\S+)?;?\s+/\*\s+\d+\s+\d+ \*/$', line)
            if member:
                name = '::'.join(scope for scope, _ in scopes if scope)
                found.append((name, member[2], member[1], scopes[-1][1]))
    return found


def run_pahole(pahole, library, *options):
    # Its complaints are of what it can't tell of C++, templates above all.
    result = subprocess.run([pahole, '--show_decl_info', *options, library], text=True,
                            errors='replace', stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
    return members_of(result.stdout)


def model_members(pahole, library):
    """{(class, member)}, each class once whatever number of units knows it."""
    found, asked = set(), set()
    listed = run_pahole(pahole, library)
    known = {name.split('::')[-1] for name, _, _, _ in listed}
    while listed:
        wanted = set()
        for name, member, kind, header in listed:
            if HEADERS.search(header):
                found.add((name, member))
                wanted |= {a or b for a, b in NAMESPACED.findall(kind + ' ')}
        wanted -= known | asked
        asked |= wanted
        # One at a time: of several it forgets some.
        listed = [member for one in sorted(wanted) for member in run_pahole(pahole, library, '-C', one)]
    return found


class Headers:
    """What the headers of the C interface declare."""

    def __init__(self, source):
        text = ''.join(path.read_text() for path in
                       [source / 'src/common/tdm_types.h', *sorted(source.glob('src/interface/tdm*.h'))])
        declaration = re.compile(r'(/\*\*(?:[^*]|\*(?!/))*\*/\s*)?TDM_API\b([^;]*?\b(tdm_\w+)\s*\([^;]*);')
        # With the comment, which names the record that a list holds.
        self.functions = {m[3]: (m[1] or '') + m[2] for m in declaration.finditer(text)}
        self.records = {}
        for record in re.finditer(r'typedef struct (\w+) \{(.*?)\n\} \1;', text, re.S):
            body = re.sub(r'/\*.*?\*/', '', record[2], flags=re.S)
            self.records[record[1]] = set(re.findall(r'(\w+);', body))

    def has(self, reader):
        function, _, field = reader.partition('.')
        if function not in self.functions:
            return False
        records = re.findall(r'\btdm_\w+', self.functions[function])
        return not field or any(field in self.records.get(record, ()) for record in records)


def table(path):
    """{subject: words behind it}"""
    rows = {}
    for number, line in enumerate(path.read_text().splitlines(), 1):
        words = line.split()
        if not words or words[0].startswith('#'):
            continue
        if words[0] in rows or len(words) < 2:
            sys.exit(f'{path}:{number}: a second line for {words[0]}, or one without a reader')
        rows[words[0]] = words[1:]
    return rows


def main():
    library, source = sys.argv[1], pathlib.Path(sys.argv[2])
    if not pathlib.Path(library).is_file():
        sys.exit(f'there is no {library}')
    pahole = shutil.which('pahole')
    if pahole is None:
        print('skipped: there is no pahole (Debian package dwarves)')
        return SKIPPED
    found = model_members(pahole, library)
    if not found:
        print('skipped: no debug information of the model in', library)
        return SKIPPED
    rows = table(source / 'tests/checks/members.txt')
    headers = Headers(source)
    problems, used = [], set()
    for name, member in sorted(found):
        parts = name.split('::')
        subjects = [f'{name}::{member}'] + ['::'.join(parts[:n]) for n in range(len(parts), 0, -1)]
        row = next((subject for subject in subjects if subject in rows), None)
        if row is None:
            problems.append(f'{name}::{member} has no reader')
        used.add(row)
    for subject, words in rows.items():
        if words[0] == 'internal:':  # may be gone: how things are done differs between builds
            continue
        if subject not in used:
            problems.append(f'{subject} stands in the table, but there is no such member')
        problems += [f'{subject}: the headers have no {reader}' for reader in words
                     if not headers.has(reader)]
    print('\n'.join(problems) or f'{len(found)} members')
    return 1 if problems else 0


if __name__ == '__main__':
    sys.exit(main())
