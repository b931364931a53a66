"""What a figure must be and what is aimed at, and the table that sets measurements beside it.

A figure that is above its `must` is a fault; the `goal` is what the design was made for. Others'
figures are measured in the same run, on the same text or the same names.
"""
from collections import namedtuple

Goal = namedtuple("Goal", "must goal")

GOALS = {
    # Whole parses: instructions for each byte of text, start-up taken off.
    "memories": Goal(190, 150),
    "layouts": Goal(136, 120),
    "comments": Goal(102, 90),
    "includes": Goal(254, 150),
    "macros": Goal(5013, 3000),
    "processor": Goal(200_000, 100_000),
    "one entry, instructions": Goal(6_000_000, 3_500_000),
    "one entry, peak": Goal(8, 5),
    "peak": Goal(178, 89),
    "kept": Goal(89, 44.5),
    # Processor seconds, over those of others on the same text.
    "cpu / cpp": Goal(1.0, 0.6),
    "cpu / clang": Goal(None, 1.0),
    "cpu / clang, macros": Goal(None, 0.5),
    "cpu / clang, includes": Goal(None, 0.5),
    "cpu / ld.lld": Goal(None, 0.3),
    # Exponents: 1 grows with the text.
    "growth of time": Goal(1.08, 1.05),
    "growth of peak": Goal(None, 1.05),
    "growth of instructions": Goal(None, 1.02),
    # Inside a process: instructions for one unit.
    "address forward to memory": Goal(5000, 1500),
    "interval forward to memory": Goal(10_000, 4000),
    "address backward to buses": Goal(5000, 2000),
    "address backward to spaces": Goal(5000, 2000),
    "growth of translation": Goal(None, 0.2),
    "pattern, another array": Goal(255, 100),
    "pattern, the array unchanged": Goal(20, 2),
    "plain name, the array unchanged": Goal(20, 10),
    "walk": Goal(300, 150),
    "query": Goal(200, 60),
    "growth of queries": Goal(None, 0.2),
}


def number(value):
    if value is None:
        return "-"
    if value >= 1_000_000:
        return f"{value / 1e6:.2f}M"
    if value >= 100:
        return f"{value:,.0f}"
    return f"{value:.2f}".rstrip("0").rstrip(".") if value >= 10 else f"{value:.2f}"


class Table:
    """Rows of figure, must, goal and others' figures, printed as they come."""

    def __init__(self):
        self.rows = []

    def add(self, what, key, figure, others=None):
        goal = GOALS.get(key, Goal(None, None))
        if figure is None:
            state = "not measured"
        elif goal.goal is not None and figure <= goal.goal:
            state = "goal met"
        elif goal.must is not None and figure > goal.must:
            state = "ABOVE MUST"
        elif goal.goal is None:
            state = ""
        else:
            state = "must met" if goal.must is not None else "above goal"
        peers = ", ".join(f"{name} {number(value)}" for name, value in (others or {}).items())
        row = (what, number(figure), number(goal.must), number(goal.goal), state, peers)
        if not self.rows:
            self.show(("", "here", "must", "goal", "state", "others"))
        self.rows.append(row)
        self.show(row)

    def show(self, row):
        what, here, must, goal, state, peers = row
        print(f"{what:50} {here:>9} {must:>8} {goal:>8}  {state:12}  {peers}", flush=True)

    def markdown(self):
        lines = ["| | here | must | goal | | others |", "|---|---:|---:|---:|---|---|"]
        lines += ["| " + " | ".join(row) + " |" for row in self.rows]
        return "\n".join(lines) + "\n"
