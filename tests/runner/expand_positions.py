#!/usr/bin/env python3
"""Fills positions into expectations that name a token instead: authors of cases count no columns.

    expand_positions.py <case file>...      rewrites the files
    expand_positions.py --tokens <file>     lists the tokens of a file with their positions

An expected line `@size#2|text` becomes `error ["<case>.tdm" l/c] syntax error: text` at the second
token `size` of the main file; `#-1` is the last one, no number the first one, `<EOF>` the end.
`@!size|text` has no label, `@?size|text` is an unexpected error, `@valid` is what a file of
definitions without any architecture gives once its grammar is right. `at=@size#2` in any expected line
becomes `at=<case>.tdm l/c`. Macros and conditionals are not modelled.

The model. The lexer reads the characters of preprocessor tokens, each of which has a position. A
token of the language gets the position that the stream stands at when its scanning begins: that of
the preprocessor token which holds the first character *not yet fetched*. Characters are fetched
when the lexer looks at them, so what the token before has looked at beyond its own end decides:

  a word, a number, white space   one character, the one that ended it
  an operator that could be longer (= : + - * / ! < > | &) and 0   one, to decide
  a letter k, m, g                one behind it, to see whether it is a suffix
  strings, comments, other tokens  none

So in `size = 40;` the word has fetched the blank and the blank has fetched the `=`: `=` stands at
the blank behind it. `40` is right, since of its two characters only the first is fetched. The `;`,
fetched by the number, stands at what follows it.
"""
import re
import sys

PP_TOKEN = re.compile(r'''
    //[^\n]* | /\*.*?\*/ | "(?:\\.|[^"\\\n])*" | '(?:\\.|[^'\\\n])*'
  | \.?[0-9](?:[eE][+-]|[A-Za-z0-9_.])* | [A-Za-z_][A-Za-z0-9_]*
  | \.\.\. | \.\. | <<= | >>= | -> | \+\+ | -- | << | >> | <= | >= | == | != | && | \|\|
  | \*= | /= | %= | \+= | -= | &= | \^= | \|= | \#\# | <: | :> | <% | %> | %: | . | \n''',
                      re.X | re.S)
TWO_CHARACTER = set('=:+-*/!<>|&0')


def character_positions(text):
    """For each character the position of the preprocessor token that it belongs to."""
    positions, line, column = [], 1, 1
    for token in PP_TOKEN.findall(text):
        positions += [(line, column)] * len(token)
        newlines = token.count('\n')
        line += newlines
        column = len(token) - token.rfind('\n') if newlines else column + len(token)
    return positions, (line, 1)


def language_tokens(text):
    text = re.sub(r'(?m)^#.*$', '', text)  # a directive leaves its line end
    if not text.endswith('\n'):
        text += '\n'
    positions, end = character_positions(text)
    tokens, at, fetched = [], 0, 0
    number = re.compile(r'0[xX][0-9A-Fa-f]+|0[0-7]*|[1-9][0-9]*')
    word = re.compile(r'[A-Za-z_](?:[A-Za-z0-9_]|\.[A-Za-z_])*')
    operator = re.compile(r'\.\.|==|:=|\+=|-=|\*=|/=|!=|>=|<=|>>|<<|\|\||&&|.')
    while at < len(text):
        where = positions[fetched] if fetched < len(positions) else end
        first = text[at]
        seen = 1  # characters looked at
        if first in ' \t\f\n':
            stop = at + len(re.match(r'[ \t\f\n]+', text[at:]).group())
            seen = stop - at + 1
        elif text.startswith('//', at):
            stop = text.index('\n', at) + 1
        elif text.startswith('/*', at):
            stop = text.index('*/', at) + 2
        elif first == '"':
            stop = at + len(re.match(r'"(?:\\.|[^"\\\n])*"', text[at:]).group())
        else:
            if first in 'kKmMgG' and not re.match(r'[.0-9A-Za-z_]', text[at + 1:]):
                stop = at + 1
                seen = 2
            else:
                rule = number if first.isdigit() else word if word.match(first) else operator
                stop = rule.match(text, at).end()
                if rule is not operator:
                    seen = stop - at + 1
                elif first in TWO_CHARACTER:
                    seen = 2
        if first not in ' \t\f\n' and not text.startswith(('//', '/*'), at):
            tokens.append((text[at:stop], where))
        fetched = max(fetched, stop, at + seen)
        at = stop
    where = positions[fetched] if fetched < len(positions) else end
    return tokens + [('<EOF>', where)]


def find(tokens, text, number):
    found = [where for token, where in tokens if token == text]
    if not found:
        raise SystemExit(f'no token {text}')
    number = int(number or 1)
    return found[number - 1 if number > 0 else number]


REFERENCE = r'(".*?"|.+?)(?:#(-?\d+))?'


def expand(line, tokens, name):
    if line == '//= @valid':
        return f'//= error ["{name}" 0/0] syntax error: no architectures defined'
    match = re.match(r'(//= +)@([!?]?)' + REFERENCE + r'\|(?!\|)(.*)$', line)
    if match:
        label = {'': 'syntax error: ', '!': '', '?': 'TDM unexpected error: '}[match[2]]
        where = find(tokens, match[3], match[4])
        return f'{match[1]}error ["{name}" {where[0]}/{where[1]}] {label}{match[5]}'

    def place(at):
        where = find(tokens, at[1], at[2])
        return f'at={name} {where[0]}/{where[1]}'
    return re.sub(r'\bat=@([^\s#]+)(?:#(-?\d+))?', place, line) if line.startswith('//=') else line


def expand_file(path):
    name = path.rsplit('/', 1)[-1]
    lines = open(path, newline='').read().split('\n')
    begins = [i for i, line in enumerate(lines) if line.startswith('//---')] or [0]
    for begin, end in zip(begins, begins[1:] + [len(lines)]):
        main = []
        for line in lines[begin:end]:
            if line.startswith('//+++'):
                break
            if not line.startswith(('//---', '//!', '//=')):
                main.append(line)
        tokens = None
        for i in range(begin, end):
            if re.match(r'//= +@|//=.* at=@', lines[i]):
                try:
                    tokens = tokens or language_tokens('\n'.join(main).rstrip('\n') + '\n')
                    lines[i] = expand(lines[i], tokens, name)
                except (SystemExit, AttributeError, ValueError) as failure:
                    print(f'{path}:{i + 1}: {failure}')
    open(path, 'w', newline='').write('\n'.join(lines))


if __name__ == '__main__':
    if sys.argv[1] == '--tokens':
        for token, where in language_tokens(open(sys.argv[2]).read()):
            print(f'{where[0]}/{where[1]}\t{token}')
    else:
        for case in sys.argv[1:]:
            expand_file(case)
