#!/usr/bin/env python3
"""Print how parsing grows, and what a translation costs.

    run.py BUILD_DIR [--counts N,N,N] [--runs N]

Growth is measured on descriptions of so many global memories on a handful of buses, and of
processors with memories of their own: processor seconds and peak memory of whole processes,
medians of several runs, with the exponent from one count to the next (log of the ratio of
times over log of the ratio of counts, start-up taken off). It fails above the limit.
"""
import argparse
import math
import os
import statistics
import subprocess
import sys
import tempfile

LIMIT = 1.15


def memories(count):
    yield "architecture a { space s { id = 1; mau = 8; map (dest = bus:b, size = 16M); }\n"
    yield "  bus b { mau = 8; width = 32; } }\nderivative d { core c { architecture = a; } }\n"
    for bus in range(8):
        yield f"bus g{bus} {{ mau = 8; width = 32; }}\n"
    for i in range(count):
        yield (f"memory m{i} {{ mau = 8; type = ram; size = 4k; speed = 2;\n"
               f"  map (dest = bus:g{i % 8}, dest_offset = {i // 8 * 4096:#x}, size = 4k); }}\n")


def processors(count):
    yield "architecture a { space s { id = 1; mau = 8; map (dest = bus:b, size = 16M); }\n"
    yield "  bus b { mau = 8; width = 32; } }\n"
    yield "derivative d (kib = 4) { core c { architecture = a; }\n"
    for i in range(4):
        yield (f"  memory m{i} {{ mau = 8; type = ram; size = kib * 1k;\n"
               f"    map (dest = bus:c:b, dest_offset = {i * 65536}, size = kib * 1k); }}\n")
    yield "}\n"
    for i in range(count):
        yield f"processor p{i} {{ derivative = d ({i % 16 + 1}); }}\n"


def cost(program, path, runs):
    """(processor seconds, peak MiB): medians."""
    seconds, peak = [], 0
    for _ in range(runs):
        result = subprocess.run([sys.executable, "-c",
                                 "import resource,subprocess,sys;"
                                 "code=subprocess.call(sys.argv[1:]);"
                                 "use=resource.getrusage(resource.RUSAGE_CHILDREN);"
                                 "print(code,use.ru_utime+use.ru_stime,use.ru_maxrss)",
                                 program, path], capture_output=True, text=True, check=True)
        code, used, kib = result.stdout.split()
        if code != "0":
            sys.exit(f"{program} failed on {path}: {result.stderr}")
        seconds.append(float(used))
        peak = max(peak, int(kib) / 1024)
    return statistics.median(seconds), peak


def growth(build, counts, runs):
    program, bad = os.path.join(build, "bin", "bench_parse"), False
    print(f"{'profile':12} {'count':>8} {'bytes':>10} {'cpu s':>8} {'us/entry':>9} "
          f"{'peak MiB':>9} {'KiB/entry':>9} {'growth':>7}")
    with tempfile.TemporaryDirectory() as work:
        for name, make in (("memories", memories), ("processors", processors)):
            path = os.path.join(work, "input.tdm")
            last = None
            for count in [1] + counts:
                with open(path, "w", encoding="ascii") as out:
                    out.writelines(make(count))
                cpu, peak = cost(program, path, runs)
                if count == 1:
                    start, base = cpu, peak
                    continue
                net = max(cpu - start, 1e-6)
                exponent = math.log(net / last[0]) / math.log(count / last[1]) if last else None
                # Below a few milliseconds the clock says nothing.
                if last and last[0] > 0.02 and exponent > LIMIT:
                    bad = True
                print(f"{name:12} {count:8} {os.path.getsize(path):10} {cpu:8.3f} "
                      f"{net / count * 1e6:9.1f} {peak:9.1f} {(peak - base) * 1024 / count:9.2f} "
                      f"{'' if exponent is None else format(exponent, '7.2f')}")
                last = net, count
    return bad


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("build")
    parser.add_argument("--counts", default="1000,10000,100000")
    parser.add_argument("--runs", type=int, default=3)
    args = parser.parse_args()
    bad = growth(args.build, [int(n) for n in args.counts.split(",")], args.runs)
    sys.stdout.flush()
    subprocess.run([os.path.join(args.build, "bin", "bench_translate")], check=True)
    if bad:
        sys.exit(f"growth above n^{LIMIT}")


if __name__ == "__main__":
    main()
