#!/usr/bin/env python3
"""Fails on an #include that points to a later floor of src/, and on a circle of files.

    include_direction.py <root of the project>

A file includes from its own floor and from those before it. The tools may include the installed
headers, <tdm_c/...>, and their own files alone; so may the examples and the cases' runner. A library
of its own inside a floor includes nothing but its own files.
"""
import pathlib
import re
import sys

FLOORS = ['common', 'preprocessor', 'language', 'expressions', 'mapping', 'layout', 'model',
          'interface']
APART = ['expressions/exprlib/']
CLIENTS = ['tools', 'examples', 'tests/runner']
INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]', re.M)
RAW_STRING = re.compile(r'R"\((.*?)\)"', re.S)  # descriptions include files of their own
SOURCES = {'.h', '.hpp', '.c', '.cpp'}


def files_below(folder):
    return sorted(p for p in folder.rglob('*') if p.suffix in SOURCES)


def includes_of(path):
    text = RAW_STRING.sub(lambda raw: '\n' * raw[0].count('\n'), path.read_text(errors='replace'))
    for match in INCLUDE.finditer(text):
        yield text.count('\n', 0, match.start()) + 1, match[1] == '"', match[2]


def check_floors(root, faults):
    """Gives the graph of the files, for the search for circles."""
    graph = {}
    for number, floor in enumerate(FLOORS):
        for path in files_below(root / 'src' / floor):
            name = path.relative_to(root / 'src').as_posix()
            graph[name] = []
            for line, quoted, target in includes_of(path):
                where = f'{path.relative_to(root)}:{line}'
                if not quoted:
                    continue
                if not (root / 'src' / target).exists():
                    faults.append(f'{where}: {target} is no file of src/')
                    continue
                graph[name].append(target)
                if FLOORS.index(target.split('/')[0]) > number:
                    faults.append(f'{where}: {floor} includes {target}, which is of a later floor')
                if any(name.startswith(f) and not target.startswith(f) for f in APART):
                    faults.append(f'{where}: includes {target}, which is of the rest of the project')
    return graph


def find_circle(graph):
    done = set()
    for start in graph:
        stack, path = [(start, iter(graph[start]))], [start]
        while stack and start not in done:
            for target in stack[-1][1]:
                if target in path:
                    return path[path.index(target):] + [target]
                if target not in done:
                    path.append(target)
                    stack.append((target, iter(graph.get(target, []))))
                    break
            else:
                done.add(path.pop())
                stack.pop()
    return None


def check_clients(root, faults):
    for folder in CLIENTS:
        for path in files_below(root / folder):
            for line, quoted, target in includes_of(path):
                where = f'{path.relative_to(root)}:{line}'
                if quoted and (root / 'src' / target).exists():
                    faults.append(f'{where}: {target} is of the inside of the library')
                if quoted and not ((path.parent / target).exists() or (root / folder / target).exists()):
                    faults.append(f'{where}: {target} is no file of {folder}/')


def main():
    root = pathlib.Path(sys.argv[1])
    faults = []
    graph = check_floors(root, faults)
    circle = find_circle(graph)
    if circle:
        faults.append('a circle: ' + ' -> '.join(circle))
    check_clients(root, faults)
    for fault in faults:
        print(fault)
    print(f'{len(graph)} files, {len(faults)} faults')
    return 1 if faults or not graph else 0


if __name__ == '__main__':
    sys.exit(main())
