"""What Exprlib computes, told with Python's integers of any size and exact fractions.

A node of the model is folded as the library's is: in place, with open operands left where they
are. Integers are kept modulo 256 ** size, fractions and strings as bytes, doubles as floats.
"""
import math
from fractions import Fraction

(UNKNOWN, VOID, INT, UNSIGNED, DOUBLE, FRACT, STRING) = range(7)
INTEGERS = (UNKNOWN, VOID, INT, UNSIGNED)

(CONSTANT, VARIABLE, TRUE, FALSE, ABS, ADD, AND, COMPLEMENT, DIVIDE, LOGICAL_AND, LOGICAL_OR, MAX,
 REMAINDER, MIN, MULTIPLY, NEGATE, NOT, OR, SHIFT_LEFT, SHIFT_RIGHT, SHIFT_RIGHT_ARITHMETIC,
 SUBTRACT, XOR, EQUAL, NOT_EQUAL, LESS_EQUAL, GREATER_EQUAL, GREATER, LESS, CONDITIONAL, NOP, CAST,
 RELOCATION, INTERNAL, GUARD) = range(35)
USER = 300  # the user operator of the tests: has the value of its operand

(NO_ERROR, INTERNAL_ERROR, OVERFLOW, TOO_BIG, OUT_OF_MEMORY, FREE, UNKNOWN_OPERAND, UNKNOWN_TYPE,
 INCOMPATIBLE_TYPES, NO_VALUE, DIVIDE_BY_ZERO, CANNOT_CONVERT, DOMAIN_ERROR, FRACT_SATURATION,
 RELOCATION_ERROR, EVALUATION_ERROR, NOT_SUPPORTED) = range(17)

# The highest value type that an operator takes.
HIGHEST = {op: STRING for op in range(35)}
HIGHEST.update({op: FRACT for op in (ABS, ADD, MULTIPLY, NEGATE, SUBTRACT, CONDITIONAL)})
HIGHEST.update({op: DOUBLE for op in (DIVIDE, REMAINDER)})
BITS = (AND, OR, XOR)
LOGICAL = (LOGICAL_AND, LOGICAL_OR)
SHIFTS = (SHIFT_LEFT, SHIFT_RIGHT, SHIFT_RIGHT_ARITHMETIC)
COMPARISONS = (EQUAL, NOT_EQUAL, LESS_EQUAL, GREATER_EQUAL, GREATER, LESS)
HIGHEST.update({op: UNSIGNED for op in (*BITS, *LOGICAL, *SHIFTS, COMPLEMENT, NOT)})
PAIRS = {ADD, SUBTRACT, MULTIPLY, DIVIDE, REMAINDER, *BITS, *LOGICAL, *SHIFTS, *COMPARISONS}
SINGLE = (ABS, COMPLEMENT, NEGATE, NOT, CAST)


class Failure(Exception):
    """Carries an error code."""


class Unresolved(Exception):
    """A variable has no value: the operator above decides what that means."""


class Node:
    def __init__(self, op=CONSTANT, type=UNKNOWN, operands=(), variable=None):
        self.op, self.type, self.operands, self.variable = op, type, list(operands), variable
        self.width, self.value, self.mark = 0, 0, 0

    def become(self, type, width, value, mark):
        self.__init__(CONSTANT, type)
        self.width, self.value, self.mark = width, value, int(bool(mark))

    def copy(self, source, mark):
        self.__init__(source.op, source.type, source.operands, source.variable)
        self.width, self.value, self.mark = source.width, source.value, int(bool(mark))

    def __str__(self):
        if self.op == CONSTANT:
            value = self.value.hex() if self.type == FRACT else self.value
            return f'<{self.type}/{self.width} {value}{"@" if self.mark else ""}>'
        return f'op{self.op}:{self.type}{self.variable or ""}({", ".join(map(str, self.operands))})'


def text_of(value):
    return value.split(b'\0')[0]


def fraction(value):
    """The number that the bytes of a fract stand for."""
    return Fraction(int.from_bytes(value, 'big', signed=True), 1 << (8 * len(value) - 1))


def is_minus_one(value):
    return value[0] == 0x80 and not any(value[1:])


def negated_fract(value):
    if is_minus_one(value):
        return b'\x7f' + b'\xff' * (len(value) - 1)
    return (-int.from_bytes(value, 'big') % 256 ** len(value)).to_bytes(len(value), 'big')


def product_of_fracts(a, b):
    """Each bit of b adds its share of a, cut to the size."""
    size = max(len(a), len(b))
    if is_minus_one(a) or is_minus_one(b):
        return negated_fract(b if is_minus_one(a) else a).ljust(size, b'\0')
    bits = 8 * size - 1
    x, y = (int(abs(fraction(value)) * (1 << bits)) for value in (a, b))
    total = sum(x >> (bits - bit) for bit in range(bits) if y >> bit & 1)
    negative = (fraction(a) < 0) != (fraction(b) < 0)
    return (-total % 256 ** size if negative else total).to_bytes(size, 'big')


class Model:
    def __init__(self, size):
        self.size, self.mask = size, 256 ** size - 1
        self.error, self.rows, self.reported, self.under_way = NO_ERROR, [None] * 4, [], []

    # ---- Reading constants

    def number(self, node):
        """The value of an integer."""
        negative = node.type == INT and node.value >> (8 * self.size - 1)
        return node.value - (self.mask + 1) if negative else node.value

    def signed(self, value):
        return value - (self.mask + 1) if value >> (8 * self.size - 1) else value

    def low_32_bits(self, node):
        value = node.value if node.type == UNSIGNED else self.signed(node.value)
        return (value + 2 ** 31) % 2 ** 32 - 2 ** 31

    def fits_32_bits(self, node):
        return self.size <= 4 or -2 ** 31 <= self.signed(node.value) < 2 ** 31

    def is_negative(self, node):
        if node.type == FRACT:
            return node.value[0] > 127
        return node.type in (INT, DOUBLE) and (self.number(node) < 0)

    @staticmethod
    def is_zero(node):
        if node.type == FRACT:
            return not any(node.value)
        return text_of(node.value) == b'' if node.type == STRING else node.value == 0

    def order(self, a, b):
        """One of < = > and ?, which a NaN leads to."""
        if self.is_negative(a) != self.is_negative(b):
            return '<' if self.is_negative(a) else '>'
        x, y = a.value, b.value
        if a.type == STRING:
            x, y = text_of(x), text_of(y)
        elif a.type == FRACT:
            x, y = fraction(x), fraction(y)
        return '<' if x < y else '>' if x > y else '=' if x == y else '?'

    # ---- Folding

    def eval(self, node):
        """The result of exprlib_eval(): 0 or 1, and `error`."""
        try:
            self.fold(node)
            return 0
        except Failure as failure:
            self.error = failure.args[0]
        except Unresolved:
            self.error = NO_VALUE
        return 1

    def fold(self, node):
        if node.op == CONSTANT:
            return
        if node in self.under_way:
            raise Failure(INTERNAL_ERROR)
        self.under_way.append(node)
        try:
            self.fold_operator(node)
        finally:
            self.under_way.pop()

    def operand(self, node, number=0):
        try:
            self.fold(node.operands[number])
        except Unresolved:
            pass
        return node.operands[number]

    def fold_operator(self, node):
        op = node.op
        if op == USER:
            if self.eval(node.operands[0]):
                raise Failure(self.error)
            return node.copy(node.operands[0], node.operands[0].mark)
        if op == VARIABLE:
            return self.fold_variable(node)
        if op in PAIRS and not self.compatible(*node.operands):
            raise Failure(INCOMPATIBLE_TYPES)
        if node.type > HIGHEST.get(op, -1):
            raise Failure(UNKNOWN_OPERAND)
        if op in (TRUE, FALSE):
            return node.become(INT, self.size, self.mask if op == TRUE else 0, node.mark)
        if op in (NOP, INTERNAL):
            raise Failure(INTERNAL_ERROR)
        if op == RELOCATION:
            return self.fold_relocation(node)
        if op == CONDITIONAL:
            return self.fold_conditional(node)
        if op == GUARD:
            return self.fold_guard(node)
        a = self.operand(node)
        if op in SINGLE:
            return self.fold_single(node, a) if a.op == CONSTANT else None
        return self.fold_pair(node, a, self.operand(node, 1))

    def fold_variable(self, node):
        value = self.rows[node.variable]
        if value is None:
            raise Unresolved
        self.fold(value)
        if value.op != CONSTANT:
            raise Failure(INTERNAL_ERROR)
        node.copy(value, value.mark)

    def fold_relocation(self, node):
        """The evaluator of the tests folds the child, and adds nothing."""
        if self.eval(node.operands[0]):
            raise Failure(RELOCATION_ERROR)
        if node.operands[0].op != CONSTANT:
            raise Failure(INTERNAL_ERROR)
        node.copy(node.operands[0], node.operands[0].mark)

    def fold_conditional(self, node):
        condition = self.operand(node)
        takes_else = condition.op == CONSTANT and self.is_zero(condition)
        chosen = self.operand(node, 2 if takes_else else 1)
        node.copy(chosen, condition.mark or chosen.mark)

    def fold_guard(self, node):
        condition = self.operand(node)
        if condition.op == CONSTANT and condition.type in INTEGERS and condition.value == 0:
            value = self.operand(node, 1)
            return node.copy(value, condition.mark or value.mark)
        number = self.operand(node, 2)
        known = number.op == CONSTANT and number.type in INTEGERS
        if known and number.value >> 64:
            self.error = OVERFLOW
        self.reported.append((number.value % 2 ** 32 if known else 0, self.error))
        raise Failure(EVALUATION_ERROR)

    @staticmethod
    def compatible(a, b):
        return a.type == b.type or (a.type in INTEGERS and b.type in INTEGERS)

    def check_column(self, node, operand):
        if operand.type > HIGHEST[node.op]:
            raise Failure(UNKNOWN_OPERAND)

    def fold_single(self, node, a):
        if node.op == CAST:
            return self.cast(node, a)
        self.check_column(node, a)
        if node.op == NOT:
            return node.become(INT, self.size, int(self.is_zero(a)), a.mark)
        if node.op == COMPLEMENT:
            return node.become(a.type, a.width, ~a.value & self.mask, a.mark)
        if node.op == ABS and not self.is_negative(a):
            return node.copy(a, a.mark)
        value = (negated_fract(a.value) if a.type == FRACT else
                 -a.value if a.type == DOUBLE else -a.value & self.mask)
        return node.become(a.type, a.width, value, a.mark)

    def fold_pair(self, node, a, b):
        op, is_open = node.op, a.op != CONSTANT or b.op != CONSTANT
        mark, width = a.mark or b.mark, max(a.width, b.width)
        type = a.type if a.type == b.type else INT
        if op in BITS or op in LOGICAL:
            if is_open or {a.type, b.type} - {INT, UNSIGNED}:
                raise Failure(UNKNOWN_TYPE)
            x, y = a.value, b.value
            if op in LOGICAL:
                truth = (x and y) if op == LOGICAL_AND else (x or y)
                return node.become(INT, width, int(bool(truth)), mark)
            return node.become(type, width, {AND: x & y, OR: x | y, XOR: x ^ y}[op], mark)
        if is_open or (op in SHIFTS and a.type not in (INT, UNSIGNED)):
            return None
        if op in (DIVIDE, REMAINDER):
            if self.is_zero(b):
                raise Failure(DIVIDE_BY_ZERO)
            if a.type == b.type == FRACT:
                raise Failure(NOT_SUPPORTED)
        if not self.compatible(a, b):
            raise Failure(INCOMPATIBLE_TYPES)
        self.check_column(node, a)
        if op in SHIFTS:
            return node.become(a.type, a.width, self.shifted(op, a, b), mark)
        if op in (MAX, MIN):
            return node.copy(b if self.order(a, b) == ('<' if op == MAX else '>') else a, mark)
        if op in COMPARISONS:
            order = self.order(a, b)
            truth = {EQUAL: order == '=', NOT_EQUAL: order != '=', LESS_EQUAL: order in '<=',
                     GREATER_EQUAL: order in '>=', GREATER: order == '>', LESS: order == '<'}[op]
            return node.become(INT, self.size, int(truth), mark)
        if a.type == DOUBLE:
            if op == REMAINDER:
                raise Failure(NOT_SUPPORTED)
            x, y = a.value, b.value
            value = (x + y if op == ADD else x - y if op == SUBTRACT else
                     x * y if op == MULTIPLY else x / y)
            return node.become(DOUBLE, a.width if op == DIVIDE else width, value, mark)
        if a.type == FRACT:
            return node.become(FRACT, width, self.fracts(op, a.value, b.value), mark)
        if op == MULTIPLY:
            width = min(a.width * b.width, 8 * self.size)
        return node.become(type, width, self.integers(op, a, b) & self.mask, mark)

    def shifted(self, op, a, b):
        count = self.low_32_bits(b)
        if count < 0:
            raise Failure(NOT_SUPPORTED)
        if not self.fits_32_bits(b):
            self.error = OVERFLOW
        count = min(count, 8 * self.size)
        if op == SHIFT_LEFT:
            return a.value << count & self.mask
        value = a.value if op == SHIFT_RIGHT else self.signed(a.value)
        return value >> count & self.mask

    def integers(self, op, a, b):
        x, y = self.number(a), self.number(b)
        if op in (ADD, SUBTRACT, MULTIPLY):
            return x + y if op == ADD else x - y if op == SUBTRACT else x * y
        if all(self.fits_32_bits(n) and (n.type != UNSIGNED or self.low_32_bits(n) >= 0)
               for n in (a, b)):
            x, y = self.low_32_bits(a), self.low_32_bits(b)
        quotient = abs(x) // abs(y) * (1 if (x < 0) == (y < 0) else -1)
        return quotient if op == DIVIDE else x - quotient * y

    @staticmethod
    def fracts(op, a, b):
        if op == MULTIPLY:
            if is_minus_one(a) and is_minus_one(b):
                raise Failure(OVERFLOW)
            return product_of_fracts(a, b)
        size = max(len(a), len(b))
        x, y = (int.from_bytes(value.ljust(size, b'\0'), 'big') for value in (a, b))
        return ((x + y if op == ADD else x - y) % 256 ** size).to_bytes(size, 'big')

    # ---- Casts

    def cast(self, node, a):
        target = node.type
        if a.type not in (INT, UNSIGNED, DOUBLE, FRACT):
            raise Failure(UNKNOWN_TYPE)
        if a.type == target or (a.type in INTEGERS and target in INTEGERS):
            return node.become(target, a.width, a.value, a.mark)
        if target == DOUBLE:
            value = self.number(a) if a.type != FRACT else fraction(a.value[:20])
            return node.become(DOUBLE, 64, float(value), a.mark)
        if a.type != DOUBLE or target == STRING or math.isnan(a.value):
            raise Failure(CANNOT_CONVERT)
        convert = self.fract_of if target == FRACT else self.integer_of
        return node.become(target, 8 * self.size, convert(a.value, target), a.mark)

    def integer_of(self, number, target):
        limit = (self.mask + 1) * (2 if target == UNSIGNED else 1)
        if abs(number) > limit or (target == UNSIGNED and number < 0):
            raise Failure(CANNOT_CONVERT)
        return math.trunc(number) & self.mask

    def fract_of(self, number, _target):
        """The nearest number of the size, halves away from 0."""
        unit = 1 << (8 * self.size - 1)
        magnitude = abs(Fraction(max(-1, min(number, 1))))
        steps = math.floor(magnitude * unit + Fraction(1, 2))
        if steps == unit and number != -1:
            self.error = FRACT_SATURATION
        steps = -steps if number < 0 else min(steps, unit - 1)
        return steps.to_bytes(self.size, 'big', signed=True)
