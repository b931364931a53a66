#!/usr/bin/env python3
"""Folds random trees with the library and with the model, and compares every node.

    random_trees.py LIBRARY [TREES] [SEED]

Values have 1 to 33 bytes. Each tree is folded up to three times, while more and more of its
variables get values. Fails as well if an error code that evaluation can set was never seen.
"""
import ctypes
import math
import random
import sys
from ctypes import (POINTER, byref, c_char_p, c_double, c_int32, c_size_t, c_uint16, c_uint32,
                    c_void_p)

sys.dont_write_bytecode = True
from model import *

SIZES = [1, 2, 3, 4, 4, 5, 8, 8, 9, 10, 10, 16, 16, 20, 33]  # bytes of a value
TYPES = [UNKNOWN, VOID, *[INT] * 5, *[UNSIGNED] * 4, DOUBLE, DOUBLE, *[FRACT] * 3, STRING]

STRING_LINKS = 2 * ctypes.sizeof(c_void_p)  # stand before the characters of a string
FOLDS = ctypes.CFUNCTYPE(ctypes.c_int, c_void_p, c_void_p)
HOOK = ctypes.CFUNCTYPE(None, c_uint32, c_void_p)


class Operator(ctypes.Structure):
    _fields_ = [('code', ctypes.c_ssize_t), ('function', FOLDS), ('closure', c_void_p)]


class Context(ctypes.Structure):
    _fields_ = [('error', c_int32), ('value_size', c_uint32), ('payload_size', c_uint32),
                ('live_nodes', c_int32), ('operator_count', c_uint32),
                ('operators', POINTER(Operator)), ('evaluator', FOLDS), ('hook', HOOK),
                ('strings', c_void_p)]


class Header(ctypes.Structure):
    _fields_ = [('context', c_void_p), ('link', c_void_p), ('op', c_int32), ('type', c_int32),
                ('width', c_uint16), ('mark', c_int32), ('references', c_int32), ('step', c_uint32)]


class Row(ctypes.Structure):
    _fields_ = [('value', c_void_p), ('second', c_void_p), ('third', c_void_p)]


class Table(ctypes.Structure):
    _fields_ = [('rows', POINTER(Row)), ('count', c_uint32)]


ARGUMENTS = {
    'make_context': [c_void_p, c_uint32, c_uint32], 'end_context': [c_void_p], 'eval': [c_void_p],
    'child': [c_void_p, c_uint32], 'release': [c_void_p], 'become': [c_void_p, c_void_p],
    'make_integer': [c_void_p, c_void_p, c_int32, c_char_p, c_size_t, c_uint16],
    'make_double': [c_void_p, c_void_p, c_double],
    'make_fract': [c_void_p, c_void_p, c_char_p, c_size_t],
    'make_string_constant': [c_void_p, c_void_p, c_char_p, c_size_t],
    'make_variable': [c_void_p, c_void_p, c_int32, c_void_p, c_uint32],
    'make_cast': [c_void_p, c_void_p, c_int32, c_void_p],
    'make_relocation': [c_void_p, c_void_p, c_void_p, c_void_p],
    'make_operator_of': [c_void_p, c_void_p, c_int32, c_uint32, c_void_p],
}


class Library:
    def __init__(self, path):
        library = ctypes.CDLL(path)
        for name, arguments in ARGUMENTS.items():
            function = getattr(library, 'exprlib_' + name)
            function.argtypes = arguments
            setattr(self, name, function)
        self.child.restype = c_void_p


class Trees:
    """A context with nodes that are made twice: for the library and for the model."""

    def __init__(self, library, chance, size):
        self.library, self.chance, self.model, self.reported = library, chance, Model(size), []
        self.handle = c_void_p()
        assert library.make_context(byref(self.handle), size, chance.choice([0, 0, 40])) == 0
        self.context = ctypes.cast(self.handle, POINTER(Context)).contents
        self.rows = (Row * 4)()
        self.table = Table(self.rows, 4)
        self.context.hook = self.hook = HOOK(
            lambda number, _: self.reported.append((number, self.context.error)))
        self.context.evaluator = self.evaluator = FOLDS(lambda _, child: library.eval(child))
        self.operator = Operator(USER, FOLDS(self.user_operator), None)
        self.context.operators, self.context.operator_count = ctypes.pointer(self.operator), 1

    def user_operator(self, node, _closure):
        child = self.library.child(node, 0)
        return self.library.eval(child) or self.library.become(node, child)

    def end(self):
        for row in self.rows:
            self.library.release(row.value)
        assert self.context.live_nodes == 0 and not self.context.strings
        self.library.end_context(self.handle)

    def made(self, function, *arguments):
        node = c_void_p()
        assert function(self.handle, byref(node), *arguments) == 0
        return node.value

    # ---- Making

    def any_integer(self):
        chance, bits = self.chance, 8 * self.model.size
        near_power = (1 << chance.randrange(bits)) + chance.randrange(-2, 3)
        near_tie = ((2 ** 53 + 1) << chance.randrange(bits)) + chance.randrange(2)  # of doubles
        value = chance.choice([0, 1, 2, 3, 7, 8, 31, 32, 33, 63, 64, 65, 127, 255, 256,
                               near_power, near_power, near_power, near_tie,
                               chance.getrandbits(bits) >> chance.randrange(bits)])
        return (-value if chance.random() < .25 else value) & self.model.mask

    def any_double(self):
        chance, size = self.chance, self.model.size
        small = math.ldexp(1, -min(8 * size, 53))
        halves = chance.getrandbits(min(8 * size, 53)) * small  # half a step of a fract at a time
        limit = math.ldexp(chance.choice([.5, 1, 1.5, 2, 2.5]), 8 * size)
        value = chance.choice([0.0, .5, 1.0, 1.5, 1 - small, math.inf, math.nan, chance.random(),
                               halves, halves, halves - small / 2, halves + small / 2, limit,
                               math.ldexp(chance.random(), chance.randrange(-60, 8 * size + 4))])
        return -value if chance.random() < .5 else value

    def any_fract(self):
        size = self.chance.choice([1, 2, 3, self.model.size,
                                   self.chance.randrange(1, self.context.payload_size + 1)])
        return self.chance.choice([bytes(size), b'\x80' + bytes(size - 1), b'\xff' * size,
                                   b'\x7f' + b'\xff' * (size - 1), self.chance.randbytes(size),
                                   self.chance.randbytes(1) + bytes(size - 1),
                                   bytes(size - 1) + self.chance.randbytes(1),
                                   (bytes(18) + self.chance.randbytes(22))[:size]])

    def constant(self, type):
        node, library = Node(CONSTANT, type), self.library
        if type in INTEGERS:
            node.value = self.any_integer()
            node.width = self.chance.choice([0, 1, 8, 16, 32, 64, 300])
            number = node.value.to_bytes(self.model.size, 'little')
            handle = self.made(library.make_integer, type, number, len(number), node.width)
        elif type == DOUBLE:
            node.value, node.width = self.any_double(), 64
            handle = self.made(library.make_double, node.value)
        elif type == FRACT:
            node.value = self.any_fract()
            node.width = 8 * len(node.value)
            handle = self.made(library.make_fract, node.value, len(node.value))
        else:
            node.value = self.chance.choice([b'', b'a', b'abc', b'abd', b'\xff', b'ab\0c',
                                             b'x' * self.chance.randrange(70)])
            handle = self.made(library.make_string_constant, node.value, len(node.value))
        node.mark = header(handle).mark = int(self.chance.random() < .1)
        return node, handle

    def variable(self, type):
        number = self.chance.randrange(4)
        handle = self.made(self.library.make_variable, type, byref(self.table), number)
        return Node(VARIABLE, type, (), number), handle

    def above(self, op, type, children):
        """The operator over the children, whose references it takes."""
        handles = [handle for _, handle in children]
        if op == CAST:
            handle = self.made(self.library.make_cast, type, *handles)
        elif op == RELOCATION:
            handle = self.made(self.library.make_relocation, None, *handles)
        else:
            array = (c_void_p * len(handles))(*handles)
            handle = self.made(self.library.make_operator_of, op, len(handles), array)
        for child in handles:
            self.library.release(child)
        if op != CAST:
            type = children[0][0].type if children else UNKNOWN
        return Node(op, type, [node for node, _ in children]), handle

    def tree(self, depth, type):
        """A tree whose value is mostly of the type."""
        chance = self.chance
        if chance.random() < .03:
            type = chance.randrange(7)
        if depth == 0 or chance.random() < .15:
            return self.variable(type) if chance.random() < .15 else self.constant(type)
        below = lambda *types: self.tree(depth - 1, chance.choice(types))
        if chance.random() < .03:
            op = chance.choice([NOP, INTERNAL, 35, 51, 52, 255, 256, -1])
        else:
            op = chance.choice([op for op in (*range(TRUE, GUARD + 1), USER)
                                if op not in (NOP, INTERNAL) and HIGHEST.get(op, STRING) >= type])
        if op == CAST or chance.random() < .08:
            return self.above(CAST, type, [below(*range(7), DOUBLE, DOUBLE, FRACT)])
        if op in (TRUE, FALSE):
            return self.above(op, UNKNOWN, [])
        if op in SHIFTS:
            return self.above(op, type, [below(type), below(UNKNOWN, INT, INT, UNSIGNED)])
        if op == CONDITIONAL:
            condition = below(INT, UNSIGNED, DOUBLE, FRACT)
            return self.above(op, type, [condition, below(type), below(type)])
        if op == GUARD:
            zero = Node(CONSTANT, INT), self.made(self.library.make_integer, INT, b'\0', 1, 0)
            if chance.random() < .3:
                self.library.release(zero[1])
                zero = below(UNKNOWN, INT, UNSIGNED, DOUBLE)
            return self.above(op, type, [zero, below(type), below(INT)])
        types = (type, type, INT, UNSIGNED) if type in INTEGERS else (type,)
        single = op in SINGLE or op in (RELOCATION, USER)
        return self.above(op, type, [below(*types) for _ in range(1 if single else 2)])

    def resolve(self, number):
        """Gives the variable a value, if that hangs on no variable in turn."""
        type = self.chance.choice([INT, INT, UNSIGNED, DOUBLE, FRACT, STRING])
        node, handle = self.tree(self.chance.randrange(2), type)
        if self.model.rows[number] is None and not has_variable(node):
            self.model.rows[number], self.rows[number].value = node, handle
        else:
            self.library.release(handle)

    # ---- Comparing

    def payload(self, handle, node):
        place = handle + ctypes.sizeof(Header)
        if node.type == DOUBLE:
            return c_double.from_address(place).value
        if node.type == FRACT:
            return ctypes.string_at(place, node.width // 8)
        if node.type == STRING:
            string = c_void_p.from_address(place).value + STRING_LINKS
            length = c_size_t.from_address(string + ctypes.sizeof(c_void_p)).value
            return ctypes.string_at(c_void_p.from_address(string).value, length)
        return int.from_bytes(ctypes.string_at(place, self.model.size), 'little')

    def difference(self, node, handle):
        """What is different at the first node that is not as it should be, or None."""
        found = header(handle)
        if (found.op, found.type, found.mark) != (node.op, node.type, node.mark):
            return f'op, type, mark {found.op} {found.type} {found.mark} for {node}'
        if found.link or found.step:
            return f'still under way: {node}'
        if node.op == CONSTANT:
            value = self.payload(handle, node)
            same = value == node.value and str(value) == str(node.value)  # -0.0 is not 0.0
            same = same or value != value and node.value != node.value
            same = same and found.width == node.width
            return None if same else f'{value}/{found.width} for {node}'
        for number, operand in enumerate(node.operands):
            child = self.library.child(handle, number)
            if not child:
                return f'no operand {number} of {node}'
            different = self.difference(operand, child)
            if different:
                return different
        return None

    def folded(self, node, handle):
        """Folds both; gives the code, or what is different."""
        self.model.error = NO_ERROR
        results = self.library.eval(handle), self.model.eval(node)
        codes = self.context.error, self.model.error
        reported = self.reported, self.model.reported
        if any(found != expected for found, expected in (results, codes, reported)):
            return f'result {results}, code {codes}, reported {reported}'
        for row, value in zip(self.rows, self.model.rows):
            if value is not None and self.difference(value, row.value):
                return self.difference(value, row.value)
        return self.difference(node, handle) or codes[1]


def header(handle):
    return ctypes.cast(handle, POINTER(Header)).contents


def has_variable(node):
    return node.op == VARIABLE or any(map(has_variable, node.operands))


def compare(library, seed, seen):
    chance = random.Random(seed)
    trees = Trees(library, chance, chance.choice(SIZES))
    for number in range(4):
        if chance.random() < .3:
            trees.resolve(number)
    node, handle = trees.tree(chance.randrange(1, 5), chance.choice(TYPES))
    before = str(node)
    for _ in range(3):
        outcome = trees.folded(node, handle)
        if isinstance(outcome, str):
            return f'seed {seed}, {trees.model.size} bytes: {outcome}\n  {before}\n  {node}'
        seen.add(outcome)
        trees.resolve(chance.randrange(4))
    library.release(handle)
    trees.end()
    return None


def main():
    library = Library(sys.argv[1])
    count = int(sys.argv[2]) if len(sys.argv) > 2 else 20000
    first = int(sys.argv[3]) if len(sys.argv) > 3 else 1
    seen = set()
    for seed in range(first, first + count):
        fault = compare(library, seed, seen)
        if fault:
            sys.exit(fault)
    # Evaluation has no use for some codes: two belong to building trees, two to nothing at all.
    missing = set(range(17)) - {TOO_BIG, OUT_OF_MEMORY, FREE, DOMAIN_ERROR} - seen
    if missing and count >= 20000:
        sys.exit(f'never seen: {sorted(missing)}')
    print(f'{count} trees, codes {sorted(seen)}')


main()
