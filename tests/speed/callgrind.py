"""Counts the instructions of a program and of the processes that it forks."""
import glob
import os
import subprocess
import sys


def summary(counts):
    with open(counts, errors="replace") as lines:
        for line in lines:
            if line.startswith("summary:"):
                return int(line.split()[1])
    sys.exit("callgrind wrote no summary")


def instructions(program, path, counts, *options, code=0):
    """Of a run on the path, which must end with the code."""
    done = subprocess.run(["valgrind", "--tool=callgrind", f"--callgrind-out-file={counts}.%p",
                           program, *options, path], capture_output=True, text=True)
    if done.returncode != code:
        sys.exit(f"{program} failed on {path}:\n{done.stderr}")
    count = 0
    for written in glob.glob(f"{glob.escape(counts)}.*"):
        count += summary(written)
        os.remove(written)
    return count
