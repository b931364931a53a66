#!/usr/bin/env python3
"""What descriptions that ask for too much do to the tool, and what it says of them.

    tool_limits.py [--sanitized] TDM

Each case is a description with a limit that it meets: the tool must end soon, with the code of that
limit, and name the file that it was reading. Then: signals from outside end it as they would end
any program, and waiting for others is no work of its own. With --sanitized what needs a limit of
memory is left out, since there is none then.
"""
import os
import signal
import subprocess
import sys
import tempfile
import time

DEPTH, TIME, MEMORY, FAULT = 4, 5, 6, 7
PATIENCE = 20


def bomb(first):
    """Macros of which the last one stands for a thousand million of the first one's texts."""
    return f"#define A0 {first}\n" + "".join(
        f"#define A{i} {' '.join([f'A{i - 1}'] * 10)}\n" for i in range(1, 10))


FILES = {
    "self.tdm": '#include "self.tdm"\n',
    "sum.tdm": bomb("1 +") + "memory bomb {\n  size = A9 1;\n}\n",
    # The preprocessor itself collects what this one stands for.
    "condition.tdm": bomb("1 +") + "#if A9 1\n#endif\n",
    "device.tdm": '\n#include "/dev/zero"\n',
    "piped.tdm": '#include "pipe.tdh"\n',
    "large.tdm": '#include "large.tdh"\n',
    "good.tdm": "architecture arc { endianness { little; } bus local { mau = 8; width = 8; }\n"
                "  space lin { id = 1; mau = 8; map (size = 64k, dest = bus:local); } }\n"
                "derivative der { core cpu { architecture = arc; }\n"
                + "".join(f"memory m{i} {{ type = ram; mau = 8; size = 16; map (size = 16, "
                          f"dest_offset = {i * 16}, dest = bus:cpu:local); }}\n" for i in range(300))
                + "}\nprocessor chip { derivative = der; }\n"
                  'section_layout ::lin { group (ordered) { select ".text*"; } }\n',
}

# Arguments, exit code, the last line of the messages; None where that is the business of others.
TIMED = "tdm: error: stopped after 0.3 s, {}; --timeout sets the limit"
FULL = "tdm: error: more memory needed than {}; --max-memory sets the limit"
CASES = (
    ("check self.tdm", DEPTH, None),
    ("check --each good.tdm self.tdm", DEPTH, None),
    ("preprocess --max-include-depth 2 self.tdm", DEPTH, None),
    ("deps --max-include-depth 2 self.tdm", DEPTH, None),
    ("check --timeout 0.3 pipe.tdh", TIME, TIMED.format("opening pipe.tdh")),
    ("show --timeout 0.3 piped.tdm", TIME, TIMED.format("opening pipe.tdh")),
    ("check --timeout 0.3 endless.tdh", TIME, None),
    ("check device.tdm", 1, "/dev/zero:1:2: error: unexpected char: 0x00"),
    ("preprocess --timeout 0.3 device.tdm", TIME, TIMED.format("reading /dev/zero:1")),
    ("check --timeout 0.05 condition.tdm", TIME, None),
    ("map --max-memory 60m sum.tdm", MEMORY, FULL.format("60 MiB, reading sum.tdm:12")),
    ("check --max-memory 100m large.tdm", MEMORY, FULL.format("100 MiB, reading large.tdh:1")),
    ("check --max-memory 1 good.tdm", MEMORY, None),
    ("check --max-memory 2g --timeout 1e3 --max-include-depth 0 good.tdm", 0, ""),
    ("check --timeout -1 good.tdm", 2, None),
    ("check --timeout 1s good.tdm", 2, None),
    ("check --max-memory 1t good.tdm", 2, None),
    ("check --max-include-depth 2147483648 good.tdm", 2, None),
)


def case_faults(tdm, directory, sanitized):
    for arguments, code, last in CASES:
        if sanitized and code == MEMORY:
            continue
        done = subprocess.run([tdm, *arguments.split()], cwd=directory, capture_output=True, text=True,
                              timeout=PATIENCE, check=False)
        if done.returncode != code:
            yield f"{arguments}: ends with {done.returncode}\n{done.stderr[-500:]}"
        elif last is not None and (done.stderr.splitlines() or [""])[-1] != last:
            yield f"{arguments}: says {done.stderr[-500:]}"
        elif code == MEMORY and done.stderr.count("\n") != 1:
            yield f"{arguments}: the library has a say, too: {done.stderr[-500:]}"


class Waiting:
    """A run that waits for a pipe that nobody writes."""

    def __init__(self, tdm, directory):
        self.run = subprocess.Popen([tdm, "check", "pipe.tdh"], cwd=directory, text=True,
                                    stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        end = time.monotonic() + PATIENCE
        while not self.waits():
            if time.monotonic() > end:
                self.run.kill()
                raise RuntimeError("the tool doesn't wait for the pipe")
            time.sleep(0.01)

    def waits(self):
        """Whether the child has come to open the pipe, which is what it first sleeps in."""
        with open(f"/proc/{self.run.pid}/task/{self.run.pid}/children", encoding="ascii") as known:
            children = known.read().split()
        if not children:
            return False
        self.child = int(children[0])
        for _ in range(3):
            with open(f"/proc/{self.child}/stat", encoding="ascii") as facts:
                if facts.read().rsplit(")", 1)[1].split()[0] != "S":
                    return False
            time.sleep(0.02)
        return True

    def ended(self):
        """How, and with what words."""
        _, words = self.run.communicate(timeout=PATIENCE)
        return self.run.returncode, words


def is_gone(process):
    end = time.monotonic() + PATIENCE
    while time.monotonic() < end:
        try:
            os.kill(process, 0)
        except ProcessLookupError:
            return True
        time.sleep(0.01)
    return False


def signal_faults(tdm, directory, sanitized):
    for number in (signal.SIGTERM, signal.SIGINT, signal.SIGKILL):
        waiting = Waiting(tdm, directory)
        waiting.run.send_signal(number)
        if waiting.ended() != (-number, "") or not is_gone(waiting.child):
            yield f"signal {number} from outside doesn't end both processes in silence"
    for number, expected in ((signal.SIGTERM, (-signal.SIGTERM, "")),
                             (signal.SIGKILL, (MEMORY, "tdm: error: killed from outside, as systems do "
                                                       "that run out of memory, opening pipe.tdh\n")),
                             (signal.SIGSEGV, (FAULT, "tdm: error: ended by a fault of its own "
                                                      "(Segmentation fault), opening pipe.tdh\n"))):
        if sanitized and number == signal.SIGSEGV:
            continue
        waiting = Waiting(tdm, directory)
        if number == signal.SIGKILL:
            time.sleep(1)  # it notes where it is twice a second
        os.kill(waiting.child, number)
        ended = waiting.ended()
        if ended != expected:
            yield f"signal {number} to the child: {ended}"
    piped = subprocess.Popen([tdm, "show", "--json", "good.tdm"], cwd=directory, stdout=subprocess.PIPE,
                             stderr=subprocess.PIPE)
    piped.stdout.read(10)
    piped.stdout.close()
    if piped.wait(PATIENCE) != -signal.SIGPIPE or piped.stderr.read():
        yield f"a closed pipe ends it with {piped.returncode}"
    piped.stderr.close()


def waiting_faults(tdm, directory):
    """Neither a reader nor a writer of its pipes costs the tool its time."""
    cases = (("show --json good.tdm", b"", b"}\n"),
             ("select --space lin good.tdm", b".text.main rx\n", b"takes 1 section"))
    for arguments, given, expected in cases:
        command = [tdm, *arguments.split(), "--timeout"]
        begin = time.monotonic()
        subprocess.run([*command, "0"], cwd=directory, input=given, stdout=subprocess.DEVNULL, check=True)
        limit = max(0.6, 4 * (time.monotonic() - begin))
        slow = subprocess.Popen([*command, str(limit)], cwd=directory, stdin=subprocess.PIPE,
                                stdout=subprocess.PIPE)
        time.sleep(1.6 * limit)
        text, _ = slow.communicate(given, timeout=PATIENCE)
        if slow.returncode != 0 or expected not in text:
            yield f"{arguments} with slow neighbours ends with {slow.returncode}"


def main():
    arguments = sys.argv[1:]
    sanitized = "--sanitized" in arguments
    tdm = os.path.abspath(arguments[-1])
    with tempfile.TemporaryDirectory() as directory:
        for name, text in FILES.items():
            with open(os.path.join(directory, name), "w", encoding="ascii") as file:
                file.write(text)
        os.mkfifo(os.path.join(directory, "pipe.tdh"))
        with open(os.path.join(directory, "large.tdh"), "wb") as file:
            file.write(b"#define LARGE ")
            for _ in range(100):
                file.write(b"1234567 " * 131072)
        os.mkfifo(os.path.join(directory, "endless.tdh"))
        with subprocess.Popen(["sh", "-c", "exec yes '// on and on' >endless.tdh"], cwd=directory,
                              stderr=subprocess.DEVNULL) as writer:
            faults = [*case_faults(tdm, directory, sanitized),
                      *signal_faults(tdm, directory, sanitized), *waiting_faults(tdm, directory)]
            writer.kill()
    print("\n".join(faults) or "all limits hold")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
