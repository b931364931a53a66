#!/usr/bin/env python3
"""What `tdm map` says of a span agrees with what it says of each bit of it.

    map_parts.py TDM

The part of each route holds just those bits that get to its end when they are asked for alone, and
what is unused holds just those that get nowhere, once. Asked for alone is each seventh bit, which
comes by all data lines.
"""
import json
import os
import subprocess
import sys
import tempfile

TEXT = """architecture a {
  bus wide { mau = 16; width = 16; }
  bus slot { mau = 8; width = 8; map (size = 64, dest = bus:wide, dest_offset = 64, bank = 1, dest_bank = 2); }
  space words { id = 1; mau = 16;
    map (size = 48, dest = bus:wide);
    map (size = 32, src_offset = 64, dest = bus:wide, dest_offset = 64, dest_bank = 2);
    map (size = 8, src_offset = 100, dest = space:bytes, dest_offset = 10); }
  space bytes { id = 2; mau = 8; map (size = 40, src_offset = 4, dest = bus:wide, dest_offset = 8);
    map (size = 32, src_offset = 64, dest = bus:slot, dest_bank = 3); }
}
derivative d {
  core c { architecture = a; }
  memory low { type = ram; mau = 16; size = 32; map (size = 24, dest = bus:c:wide, dest_dbits = 0 .. 7, src_dbits = 0 .. 7); }
  memory high { type = ram; mau = 16; size = 32;
    map (size = 16, src_offset = 8, dest = bus:c:wide, dest_offset = 4, dest_dbits = 8 .. 15, src_dbits = 0 .. 7); }
  memory banked { type = rom; mau = 16; size = 32; map (size = 16, dest = bus:c:wide, dest_offset = 66, bank = 2); }
  memory rest { type = rom; mau = 32; size = 8; map (size = 4, src_offset = 2, dest = bus:c:wide, dest_offset = 30);
    map (size = 6, dest = bus:c:slot, dest_offset = 4, bank = 3); }
}
processor p { derivative = d; }
"""

STEP = 7

# What is asked for: where, the units, the bank, and the first and the last bit.
SPANS = [("--space", "words", 16, "", 0, 60 * 16), ("--space", "words", 16, "", 37, 37 + 23 * 16),
         ("--space", "words", 16, "1:", 60 * 16 + 5, 110 * 16), ("--space", "bytes", 8, "", 0, 100 * 8),
         ("--space", "bytes", 8, "", 13, 13 + 15 * 8), ("--memory", "high", 16, "", 50, 500),
         ("--memory", "rest", 32, "", 0, 256), ("--memory", "banked", 16, "", 0, 512)]


def bits_of(interval):
    def bit(end):
        return interval[end]["value"] * interval[end]["mau_bits"] + interval[end]["bit"]
    mask = interval["mask"]
    return {at for at in range(bit("low"), bit("high")) if mask["bits"] >> at % mask["width"] & 1}


def hops_of(route):
    return tuple(hop["mapping"]["number"] for hop in route["hops"])


def faults(asked, name, unit, bank, first, last):
    def answer(begin, end):
        span = "..".join(f"{at // unit}.{at % unit}" for at in (begin, end))
        return asked(name, "--at", bank + span)

    whole = answer(first, last)
    parts = {hops_of(route): bits_of(route["part"]) if route["part"] else set()
             for route in whole["routes"]}
    asked_for = set(range(first, last, STEP))
    single = {}
    for at in asked_for:
        for route in answer(at, at + 1)["routes"]:
            if bits_of(route["interval"]):
                single.setdefault(hops_of(route), set()).add(at)
    for hops in parts.keys() | single.keys():
        odd = parts.get(hops, set()) & asked_for ^ single.get(hops, set())
        if odd:
            yield f"mappings {hops}: {sorted(odd)}"
    left = [at for interval in whole["unused"] for at in bits_of(interval)]
    if sorted(left) != sorted(set(range(first, last)).difference(*parts.values())):
        yield f"unused: {whole['unused']}"


def main():
    tdm = os.path.abspath(sys.argv[1])
    found = []
    with tempfile.TemporaryDirectory() as folder:
        with open(os.path.join(folder, "chip.tdm"), "w", encoding="ascii") as file:
            file.write(TEXT)
        for kind, name, *span in SPANS:
            def asked(*words, kind=kind):
                done = subprocess.run([tdm, "map", "chip.tdm", "--json", kind, *words], cwd=folder,
                                      capture_output=True, text=True, check=False)
                return json.loads(done.stdout)
            found += [f"{kind} {name} {span}: {fault}" for fault in faults(asked, name, *span)]
    print("\n".join(found) or "in order")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
