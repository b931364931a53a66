#!/usr/bin/env python3
"""Fails when a message of the library appears in no expected output of the suite.

    message_coverage.py <root of the project> [--list]

Messages are the texts that are composed in a `throw new ...Exception(...)`, in a call of a helper
that throws or reports (HELPERS), and the rows of the preprocessor's catalogue. A text that is
composed of several literals counts as provoked when one expectation holds all of them in their
order; behind `?` literals are alternatives and each one counts. Expectations are the `//=` lines of
the cases and the literals of the unit tests.

EXCEPTIONS lists what no input can provoke, with the reason. An entry that gains a test must go.
"""
import pathlib
import re
import sys

HELPERS = r'(?:fail\w*|refuse\w*|reject\w*|report\w*|rule_error|repeat_error|set_last_error)'

# text (the literals joined by "..."): reason
EXCEPTIONS = {
    'could not allocate TDM file':
        'needs an input stream that fails while it is read, and the one stream that there is reports'
        ' such failures as messages of the preprocessor',
    'internal error with range in group address':
        'the grammar makes no range without a memory and without two bounds',
}
# numbers of the catalogue that end the process or that nothing reports
NUMBER_EXCEPTIONS = {
    600: 'an internal check: ends the process, and no input leads there',
    992: 'an internal check: ends the process, and no input leads there',
}

LITERAL = r'"(?:[^"\\\n]|\\.)*"'
CODE = re.compile(r'//[^\n]*|/\*.*?\*/|' + LITERAL + r"|'(?:[^'\\]|\\.)+'", re.S)
PLACES = re.compile(r'\b(?:place_of|place|location\w*|at|at_key|find)\s*\((?:[^()]|\([^()]*\))*\)')


def read(path):
    """The text of a source without its comments, adjacent literals made one."""
    text = CODE.sub(lambda m: ' ' if m[0].startswith(('//', '/*')) else m[0],
                    path.read_text(errors='replace'))
    return re.sub(r'(?<!\\)"\s*\n\s*"', '', text)


def unescape(literal):
    return re.sub(r'\\(.)', lambda m: {'n': '\n', 't': '\t', '0': '\0'}.get(m[1], m[1]), literal[1:-1])


def arguments_at(text, begin):
    """The text between the parenthesis at `begin` and the one that closes it."""
    depth, at = 0, begin
    pattern = re.compile(LITERAL + r"|'(?:[^'\\]|\\.)+'|[()]|.", re.S)
    while at < len(text):
        token = pattern.match(text, at)[0]
        depth += (token == '(') - (token == ')')
        at += len(token)
        if depth == 0:
            return text[begin + 1:at - 1]
    return ''


def constants_of(texts):
    named = re.compile(r'\bconst\w*\s[\w:\s*]*?\b(\w+)(?:\[\])?\s*=\s*(' + LITERAL + r')\s*;')
    return {m[1]: m[2] for text in texts.values() for m in named.finditer(text) if m[2].count(' ') > 2}


def split_arguments(text):
    parts, depth, begin = [], 0, 0
    for token in re.finditer(LITERAL + r"|'(?:[^'\\]|\\.)+'|[()\[\]{},]", text):
        depth += (token[0] in '([{') - (token[0] in ')]}')
        if token[0] == ',' and depth == 0:
            parts.append(text[begin:token.start()])
            begin = token.end()
    return parts + [text[begin:]]


def messages_of(text, constants):
    """Lists of literals, one for each message that the source composes."""
    call = re.compile(r'\bthrow\s+new\s+[\w:]+\s*(\()|\b\w+Exception(\()(?=")|\b' + HELPERS + r'\s*(\()')
    for match in call.finditer(text):
        parts = split_arguments(arguments_at(text, match.end() - 1))
        if len(parts) > 1:  # a lone word is the key of a place
            parts = [p for p in parts if not re.fullmatch(r'\s*"\w+"\s*', p)]
        arguments = PLACES.sub('', ','.join(parts))
        bare = re.sub(LITERAL, '', arguments)
        found = [m[0] if m[0].startswith('"') else constants.get(m[0])
                 for m in re.finditer(LITERAL + r'|\b[A-Za-z_]\w*', arguments)]
        literals = [unescape(l) for l in found if l]
        literals = [l for l in literals if len(re.findall(r'[A-Za-z]', l)) > 1]
        if '?' in bare:
            yield from ([l] for l in literals)
        elif literals:
            yield literals


def evidence_of(root):
    for path in sorted((root / 'tests').rglob('*')):
        if path.suffix == '.tdm':
            yield from (l[4:] for l in path.read_text(errors='replace').split('\n') if l.startswith('//='))
        elif path.suffix in ('.cpp', '.c', '.h') and 'runner' not in path.parts:
            yield from (unescape(l) for l in re.findall(LITERAL, read(path)))


def check_numbers(root, texts, faults):
    catalogue = [t for p, t in texts.items() if 'catalogue' in p.name]
    rows = {int(m[2]): m[1] for t in catalogue for m in re.finditer(r"'([EWI])',\s*(\d{3})\b", t)}
    seen = set()
    for path in (root / 'tests' / 'cases').rglob('*.tdm'):
        seen |= {int(n) for n in re.findall(r'(?m)^//=\s+[EWI](\d{3})\b', path.read_text(errors='replace'))}
    for path in (root / 'tests' / 'interface').glob('c_*.c'):
        seen |= {int(n) for n in re.findall(r'"[EWI](\d{3}) ', path.read_text(errors='replace'))}
    for number in sorted(set(rows) - seen - set(NUMBER_EXCEPTIONS)):
        faults.append(f'no case provokes message {rows[number]}{number}')
    for number in sorted(set(NUMBER_EXCEPTIONS) & seen):
        faults.append(f'message {number} is provoked and must leave the exceptions')
    if not rows:
        faults.append('no catalogue of messages was found')
    return len(rows)


def main():
    root = pathlib.Path(sys.argv[1])
    texts = {p: read(p) for p in sorted((root / 'src').rglob('*')) if p.suffix in ('.cpp', '.h')}
    constants = constants_of(texts)
    evidence = '\n'.join(evidence_of(root))
    faults, count, excused = [], 0, set()
    for path, text in texts.items():
        for literals in messages_of(text, constants):
            count += 1
            name = '...'.join(literals)
            provoked = re.search('.*'.join(map(re.escape, literals)), evidence)
            if name in EXCEPTIONS:
                excused.add(name)
                if provoked:
                    faults.append(f'"{name}" is provoked and must leave the exceptions')
            elif not provoked:
                faults.append(f'{path.relative_to(root)}: no test provokes "{name}"')
            if '--list' in sys.argv:
                print(f'{"+" if provoked else "-"} {path.relative_to(root)}: {name}')
    faults += [f'the exception "{name}" is no message' for name in EXCEPTIONS if name not in excused]
    if len(EXCEPTIONS) > 10:
        faults.append('more than ten exceptions')
    count += check_numbers(root, texts, faults)
    for fault in faults:
        print(fault)
    print(f'{count} messages, {len(faults)} faults')
    return 1 if faults or not count else 0


if __name__ == '__main__':
    sys.exit(main())
