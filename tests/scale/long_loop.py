#!/usr/bin/env python3
"""Lets commands that loop run for many periods and looks at what they hold.

usage: long_loop.py --tool FILE --simulator FILE [--periods N]

The peak of their memory after all periods is that after the first hundred, and between two periods they hold no
descriptor but the standard ones.
"""
import argparse
import concurrent.futures
import contextlib
import os
import pathlib
import signal
import subprocess
import sys
import time

sys.path.append(str(pathlib.Path(__file__).resolve().parents[1] / "support"))
from simulated import Simulated  # noqa: E402

HOST = "tor1"
HOST_WITH_VGPUS = "vgpu-host"
FIRST = 100
MOST_GROWTH = 1.05
# What a sanitizer keeps of freed memory is no growth of the tool's.
WITHOUT_QUARANTINE = "quarantine_size_mb=0:thread_local_quarantine_size_kb=0"

# Commands that print a header and then a line for each period on a host with one GPU. "{}" is milliseconds.
COMMANDS = [
    ["--query-gpu=index,temperature.gpu,memory.used", "-lms", "{}"],
    ["-mm", "GpuId,Temp", "-l", "{}"],
]
# Commands that loop by the second, too slow to count their periods.
SLOW_COMMANDS = [["vgpu", form, "-l", "1"] for form in ("-q", "-u", "-es")]

# Where the simulated host begins to put descriptors of its own.
SIMULATOR_FDS = 900
STANDARD_FDS = {0, 1, 2}


class Loop:
    """A command that runs until this ends."""

    def __init__(self, simulated, command, interval_ms, host=HOST):
        arguments = [word.format(interval_ms) for word in command]
        environment = dict(simulated.environment)
        environment["ASAN_OPTIONS"] += ":" + WITHOUT_QUARANTINE
        self.process = subprocess.Popen(
            [simulated.simulator, "--host", host, "--", "/bin/sh", "-c", 'echo $$; exec "$@"', "sh",
             simulated.tool, *arguments],
            env=environment, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
            start_new_session=True)
        self.pid = int(self.line())
        self.line()

    def line(self):
        line = self.process.stdout.readline()
        if not line.endswith(b"\n"):
            sys.exit(f"{self.process.args} ended with {self.process.wait()} after printing {line!r}")
        return line

    def wait(self, periods):
        for _ in range(periods):
            self.line()

    def peak_kib(self):
        status = pathlib.Path(f"/proc/{self.pid}/status").read_text()
        return next(int(line.split()[1]) for line in status.splitlines() if line.startswith("VmHWM:"))

    def descriptors(self):
        """What is open, by number, without what is the simulator's."""
        folder = f"/proc/{self.pid}/fd"
        found = {}
        for number in filter(lambda name: int(name) < SIMULATOR_FDS, os.listdir(folder)):
            with contextlib.suppress(FileNotFoundError):
                found[int(number)] = os.readlink(f"{folder}/{number}")
        return found

    def __enter__(self):
        return self

    def __exit__(self, *_):
        os.killpg(self.process.pid, signal.SIGINT)
        self.process.communicate()


def check_memory(simulated, command, periods):
    with Loop(simulated, command, 1) as loop:
        loop.wait(FIRST)
        first = loop.peak_kib()
        loop.wait(periods - FIRST)
        last = loop.peak_kib()
    print(f"{' '.join(command)}: {first} KiB after {FIRST} periods, {last} KiB after {periods}")
    return [] if last <= first * MOST_GROWTH else [f"{' '.join(command)}: memory grew from {first} to {last} KiB"]


def check_descriptors(simulated, command, interval_ms=500, host=HOST):
    """Looks several times in each of some periods: the machine may be busy with something else."""
    with Loop(simulated, command, interval_ms, host) as loop:
        for _ in range(5):
            loop.wait(1)
            end = time.monotonic() + interval_ms / 1000 / 2
            while time.monotonic() < end:
                held = loop.descriptors()
                if set(held) == STANDARD_FDS:
                    return []
                time.sleep(0.01)
    return [f"{' '.join(command)}: open between periods: {held}"]


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--tool", required=True)
    parser.add_argument("--simulator", required=True)
    parser.add_argument("--periods", type=int, default=10_000)
    arguments = parser.parse_args()
    simulated = Simulated(arguments.tool, arguments.simulator)
    with concurrent.futures.ThreadPoolExecutor() as pool:
        runs = [pool.submit(check_memory, simulated, command, arguments.periods) for command in COMMANDS]
        runs += [pool.submit(check_descriptors, simulated, command) for command in COMMANDS]
        runs += [pool.submit(check_descriptors, simulated, command, 1000, HOST_WITH_VGPUS) for command in SLOW_COMMANDS]
        failures = [failure for run in runs for failure in run.result()]
    print("\n".join(failures))
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
