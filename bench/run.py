#!/usr/bin/env python3
"""Measure the library beside what others need for the same text, and say what is met.

    run.py BUILD_DIR [--growth] [--max-mb N] [--profiles P,P] [--limit SECONDS] [--page FILE]

Prints, for texts of the profiles of gen_tdm.py:
  1. processor seconds over those of `cpp -P` and others, whole processes run in turn,
     the least of several runs;
  2. how time and peak memory grow, from 1 MB to 10 MB, with --growth to 64 MB, at most to
     --max-mb: the exponent log(cost ratio) / log(size ratio), start-up taken off;
  3. instructions by callgrind, for each byte of 1 MB of text, start-up taken off;
  4. what translations, selections, walks and queries cost inside a process.
Tools that are not installed are left out, and so is a run that would take longer than the limit
(20 s) or more than half of the machine's memory. --growth also counts instructions at 10 MB.
--page puts the table into FILE, between its marks.
"""
import argparse
import math
import os
import re
import shutil
import subprocess
import sys
import tempfile
from concurrent.futures import ThreadPoolExecutor

import goals
import inside
import measure

PROFILES = ("memories", "layouts", "comments", "includes", "macros", "processors")
ROUNDS = 5
WALK_BLOCKS = 6250      # come to about 100,000 statements
SECTIONS = 100_000


class Bench:
    def __init__(self, args, work):
        self.args = args
        self.work = work
        self.build = os.path.abspath(args.build)
        self.table = goals.Table()
        self.pool = ThreadPoolExecutor(os.cpu_count() or 1)
        self.texts = {}
        self.tools = {"here": f"{self.program('parse')} {{main}}"}
        self.tools.update({name: command for name, command in measure.TOOLS.items()
                           if shutil.which(command.split()[0])})

    def program(self, mode):
        return os.path.join(self.build, "bin", f"bench_{mode}")

    def text(self, profile, size):
        """Place and facts of a text; size None is one entry."""
        if (profile, size) not in self.texts:
            self.texts[profile, size] = measure.prepare(self.work, profile, size)
        return self.texts[profile, size]

    def suits(self, tool, profile):
        if profile == "processors":     # the text is small beside what it stands for
            return tool == "here"
        if tool == "cpp-0":
            return profile == "macros"
        return ("{main}" in measure.TOOLS.get(tool, "{main}") or profile == "memories"
                or (profile == "layouts" and tool != "dtc"))

    def cost(self, tool, profile, size, runs=1):
        """(least processor seconds, peak MiB)."""
        place, _ = self.text(profile, size)
        command = self.tools[tool].format(**place)
        rows = [measure.run(command, f"{self.work}/peak") for _ in range(runs)]
        return min(row[0] for row in rows), max(row[2] for row in rows)

    # -- processor seconds beside others

    def paired(self, profile):
        names = [name for name in ("here", "cpp", "clang", "ld.lld")
                 if name in self.tools and (name != "ld.lld" or profile == "memories")]
        small = {name: self.cost(name, profile, "1M") for name in names}
        # Ten times the text, if all rounds of it fit into the limit.
        large = 10 * ROUNDS * sum(cpu for cpu, _ in small.values()) <= 2 * self.args.limit
        size = "10M" if large else "1M"
        best = dict.fromkeys(names, math.inf)
        for _ in range(ROUNDS):
            for name in names:
                best[name] = min(best[name], self.cost(name, profile, size)[0])
        for name in names[1:]:
            key = f"cpu / {name}"
            specific = f"{key}, {profile}"
            self.table.add(f"{profile} {size}, CPU over {name}",
                           specific if specific in goals.GOALS else key, best["here"] / best[name],
                           {"here s": best["here"], f"{name} s": best[name]})

    # -- growth

    def sizes(self):
        top = self.args.max_mb or (64 if self.args.growth else 10)
        return [size for size in (1, 10, 64) if size < top] + [top]

    def growth(self, profile):
        start, base = self.cost("here", profile, None, 3)
        memory = os.sysconf("SC_PAGE_SIZE") * os.sysconf("SC_PHYS_PAGES") / 2**20
        rows = []
        for size in self.sizes():
            if rows:
                factor = size / rows[-1][0]
                if (rows[-1][1] * factor > self.args.limit * (5 if self.args.growth else 1)
                        or rows[-1][2] * factor > memory / 2):
                    print(f"{profile} {size}M would take too long, or too much memory")
                    continue
            cpu, peak = self.cost("here", profile, f"{size}M", 3 if size <= 10 else 1)
            rows.append((size, max(cpu - start, 1e-6), max(peak - base, 1e-6)))
        if len(rows) < 2:
            return
        (first, *low), (last, *high) = rows[0], rows[-1]
        exponents = [math.log(b / a) / math.log(last / first) for a, b in zip(low, high)]
        shown = {f"{size} MB": cost for size, cost, _ in rows}
        peaks = {f"{size} MB": cost for size, _, cost in rows}
        self.table.add(f"{profile}, growth of CPU s, {first} to {last} MB", "growth of time",
                       exponents[0], shown)
        self.table.add(f"{profile}, growth of peak MiB, {first} to {last} MB", "growth of peak",
                       exponents[1], peaks)

    def memory(self):
        _, peak = self.cost("here", "memories", "10M")
        place, facts = self.text("memories", "10M")
        kept = int(subprocess.run([self.program("parse"), "--kept", place["main"]], check=True,
                                  capture_output=True, text=True).stdout) / 2**20
        self.table.add(f"memories 10 MB ({facts['count']} entries), peak MiB", "peak", peak)
        self.table.add("memories 10 MB, MiB kept by the spec", "kept", kept)
        self.table.add("one entry, peak MiB", "one entry, peak",
                       self.cost("here", "memories", None)[1])

    # -- instructions

    def count(self, tool, profile, size):
        """A count that is on its way."""
        place, _ = self.text(profile, size)
        work = os.path.join(self.work, f"count-{tool}-{profile}-{size}")
        os.makedirs(work, exist_ok=True)
        return self.pool.submit(measure.instructions, self.tools[tool].format(**place), work)

    def too_slow(self, tool, profile):
        """Counting takes some thirty times as long as running."""
        return self.cost(tool, profile, "1M")[0] > self.args.limit / 4

    def counts(self, profiles):
        sizes = [None, "1M"] + (["10M"] if self.args.growth else [])
        pending = {}
        for profile in profiles:
            for tool in self.tools:
                if self.suits(tool, profile) and not (tool != "here"
                                                      and self.too_slow(tool, profile)):
                    for size in sizes if tool == "here" and profile != "macros" else sizes[:2]:
                        pending[profile, tool, size] = self.count(tool, profile, size)
        for profile in profiles:
            net = {}
            for (of, tool, size), future in pending.items():
                if of == profile and size is not None:
                    net[tool, size] = future.result() - pending[profile, tool, None].result()
            self.count_rows(profile, net)
        if "memories" in profiles:
            self.table.add("one entry, instructions", "one entry, instructions",
                           pending["memories", "here", None].result())

    def count_rows(self, profile, net):
        _, facts = self.text(profile, "1M")
        if profile == "processors":
            self.table.add("a processor instance, instructions", "processor",
                           net["here", "1M"] / facts["count"])
        else:
            a_byte = {tool: count / facts["bytes"] for (tool, size), count in net.items()
                      if size == "1M"}
            self.table.add(f"{profile} 1 MB, instructions a byte", profile, a_byte.pop("here"),
                           a_byte)
        if ("here", "10M") in net:
            ratio = self.text(profile, "10M")[1]["bytes"] / facts["bytes"]
            self.table.add(f"{profile}, growth of instructions, 1 to 10 MB",
                           "growth of instructions",
                           math.log(net["here", "10M"] / net["here", "1M"]) / math.log(ratio))

    # -- inside a process

    def mode(self, mode, argument, label):
        return self.pool.submit(inside.counted, self.program(mode), argument,
                                os.path.join(self.work, f"{mode}-{label}"))

    def pair_of_sizes(self, mode):
        return [self.mode(mode, self.text("memories", size)[0]["main"], size)
                for size in ("1M", "10M")]

    def inside(self):
        walked = os.path.join(self.work, "walked")
        measure.call(sys.executable, f"{measure.HERE}/gen_tdm.py", "layouts", walked,
                     "--count", str(WALK_BLOCKS))
        names = os.path.join(self.work, "names")
        measure.call(sys.executable, f"{measure.HERE}/gen_peers.py", "layouts", names,
                     "--count", "1", "--sections", str(SECTIONS))
        # Times first, while nothing else runs.
        times = {mode: inside.timed(self.program(mode), argument) for mode, argument in (
            ("translate", self.text("memories", "1M")[0]["main"]),
            ("query", self.text("memories", "1M")[0]["main"]),
            ("walk", f"{walked}/main.tdm"), ("select", f"{names}/names.txt"))}
        selected = self.mode("select", f"{names}/names.txt", "all")
        met = self.mode("walk", f"{walked}/main.tdm", "all")
        translated, asked = self.pair_of_sizes("translate"), self.pair_of_sizes("query")

        for name, small in translated[0].result().items():
            self.grown(name, name, "growth of translation", small, translated[1].result()[name],
                       times["translate"][name])
        for name, small in asked[0].result().items():
            self.grown(name, "query", "growth of queries", small, asked[1].result()[name],
                       times["query"][name])
        self.table.add("walk, instructions a statement", "walk", met.result()["walk"],
                       {"ns": times["walk"]["walk"]})
        peers = ("fnmatch", "std::regex", "RE2")
        figures = selected.result()
        for name in figures:
            if name not in peers:
                self.table.add(f"select: {name}, a name", name, figures[name],
                               {"ns": times["select"][name],
                                **{peer: figures[peer] for peer in peers if peer in figures}})
        self.table.add("select: fnmatch, ns a name", "", times["select"]["fnmatch"],
                       {peer: times["select"][peer] for peer in peers[1:]
                        if peer in times["select"]})

    def grown(self, name, key, growth_key, small, large, nanoseconds):
        self.table.add(f"{name}, instructions at 1 MB", key, small,
                       {"at 10 MB": large, "ns": nanoseconds})
        self.table.add(f"{name}, growth", growth_key, math.log10(large / small))


def put(page, table):
    with open(page, encoding="utf-8") as text:
        old = text.read()
    new = re.sub(r"(<!-- measured -->\n).*(<!-- end -->)", lambda m: m[1] + table + m[2], old,
                 flags=re.DOTALL)
    with open(page, "w", encoding="utf-8") as text:
        text.write(new)


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("build")
    parser.add_argument("--growth", action="store_true")
    parser.add_argument("--max-mb", type=int, default=0)
    parser.add_argument("--profiles", default=",".join(PROFILES))
    parser.add_argument("--limit", type=float, default=20)
    parser.add_argument("--page")
    args = parser.parse_args()
    profiles = args.profiles.split(",")
    with tempfile.TemporaryDirectory(prefix="tdm_bench_") as work:
        bench = Bench(args, work)
        for profile in profiles:
            if profile != "processors":
                bench.paired(profile)
        for profile in profiles:
            bench.growth(profile)
        if "memories" in profiles:
            bench.memory()
            bench.inside()
        bench.counts(profiles)
    if args.page:
        put(args.page, bench.table.markdown())
    if any(row[4] == "ABOVE MUST" for row in bench.table.rows):
        sys.exit("some figures are above what they must be")


if __name__ == "__main__":
    main()
