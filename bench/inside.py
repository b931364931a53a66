"""Figures from inside a process: the programs that time or count their cases (measured.h)."""
import glob
import json
import os
import subprocess


def counted(program, argument, work):
    """Instructions of one unit by name of the case, from callgrind's parts."""
    os.makedirs(work, exist_ok=True)
    for old in glob.glob(f"{work}/part*"):
        os.remove(old)
    done = subprocess.run(["valgrind", "--tool=callgrind", "--instr-atstart=no",
                           f"--callgrind-out-file={work}/part", program, "--count", argument],
                          capture_output=True, text=True)
    if done.returncode != 0:
        raise SystemExit(f"{program} failed:\n{done.stderr}")
    units = {}
    for line in done.stdout.splitlines():
        name, count = line.rsplit(" ", 1)
        units[name] = int(count)
    totals = {}
    for path in glob.glob(f"{work}/part.*"):
        name = total = None
        with open(path, errors="replace") as lines:
            for line in lines:
                if line.startswith("desc: Trigger: Client Request: "):
                    name = line.rstrip("\n").split(": ", 3)[3]
                elif line.startswith(("summary:", "totals:")):
                    total = int(line.split()[1])
                    break
        totals[name] = total
    return {name: totals[name] / count for name, count in units.items()}


def timed(program, argument):
    """Nanoseconds of processor time of one unit, by name of the case."""
    done = subprocess.run([program, "--benchmark_format=json", "--benchmark_min_time=0.2", argument],
                          capture_output=True, text=True)
    if done.returncode != 0:
        raise SystemExit(f"{program} failed:\n{done.stderr}")
    return {case["name"]: 1e9 / case["items_per_second"]
            for case in json.loads(done.stdout)["benchmarks"]}
