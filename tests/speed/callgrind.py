"""Counts the instructions of a program."""
import subprocess
import sys


def instructions(program, path, counts):
    done = subprocess.run(["valgrind", "--tool=callgrind", f"--callgrind-out-file={counts}",
                           program, path], capture_output=True, text=True)
    if done.returncode != 0:
        sys.exit(f"{program} failed on {path}:\n{done.stderr}")
    with open(counts, errors="replace") as lines:
        for line in lines:
            if line.startswith("summary:"):
                return int(line.split()[1])
    sys.exit("callgrind wrote no summary")
