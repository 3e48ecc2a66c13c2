"""Whole processes measured in turn, for the programs beside this file."""

import os
import platform
import statistics
import subprocess
import sys
import time
from collections import namedtuple
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
RELEASE = ROOT / "build/release/bin"

# Processor and wall seconds, peak memory in MiB.
Usage = namedtuple("Usage", "cpu wall peak")


def run(arguments, folder, output=os.devnull, expected=0):
    """Runs one process to its end, its output into a file of folder; another exit code ends the measuring."""
    with open(Path(folder) / output, "wb") as sink:
        start = time.perf_counter()
        process = subprocess.Popen([str(word) for word in arguments], cwd=folder, stdout=sink, stderr=subprocess.PIPE)
        errors = process.stderr.read()
        _, status, usage = os.wait4(process.pid, 0)
        wall = time.perf_counter() - start
    process.stderr.close()
    process.returncode = os.waitstatus_to_exitcode(status)
    if process.returncode != expected:
        sys.exit(f"{arguments[0]} ended with {process.returncode}: {errors.decode(errors='replace')}")
    return Usage(usage.ru_utime + usage.ru_stime, wall, usage.ru_maxrss / 1024)


def processor():
    """The name of the processor, as the system gives it."""
    for line in Path("/proc/cpuinfo").read_text(encoding="utf-8").splitlines():
        if line.startswith("model name"):
            return line.split(":", maxsplit=1)[1].strip()
    return platform.machine()


def keep_to_cores(count):
    """From here on this process, and those that it starts, have that many cores."""
    cores = sorted(os.sched_getaffinity(0))
    if count > len(cores):
        sys.exit(f"{count} cores were asked for, {len(cores)} are there")
    os.sched_setaffinity(0, cores[:count])


def medians(usages):
    return Usage(*(statistics.median(values) for values in zip(*usages)))


def in_turn(ours, theirs, runs, time_of=lambda usage: usage.cpu):
    """Runs both in turn after one warm-up each; returns the medians of both and of the ratios of their times."""
    ours(), theirs()
    pairs = [(ours(), theirs()) for _ in range(runs)]
    ratio = statistics.median(time_of(mine) / time_of(other) for mine, other in pairs)
    return medians([pair[0] for pair in pairs]), medians([pair[1] for pair in pairs]), ratio


class Limits:
    """Collects what went over a limit, so that a report is whole before it fails."""

    def __init__(self):
        self.broken = []

    def check(self, name, value, limit):
        if limit is not None and value > limit:
            self.broken.append(f"{name}: {value:.2f} is more than {limit}")

    def finish(self):
        if self.broken:
            sys.exit("\n".join(self.broken))
