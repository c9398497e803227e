#!/usr/bin/env python3
"""Runs a program on a simulated host again and again, each time with one kind of question to the driver, or
one kind of path, failing in one of the ways that there are.

usage: fault_walk.py --simulator FILE --host HOST [--ways N] PROGRAM

A kind of question is an interface: it fails on all nodes at once. What a start asks of every node fails on
one node as well. A kind of path is that of all devices. With --ways each kind fails in N ways, by turns.

Exit status: 0 when every run ended with 0. A PCI function whose file "device" holds no number may end a
program by SIGABRT.
"""
import argparse
import concurrent.futures
import os
import pathlib
import re
import subprocess
import sys
import tempfile

IOCTL_WAYS = ["errno=EIO", "status=5", "status=7", "status=99", "ones", "short=30", "short=60", "count=65535",
              "count=1", "gone"]
# The longest list there can be takes ten seconds on its own; other tests have it.
OTHER_IOCTL_WAYS = ["errno=EIO", "status=9", "ones", "short=10", "count=4000", "gone"]
FILE_WAYS = ["errno=EACCES", "errno=ENOENT", "cut=1", "text=", "text=-1", "text=99999999999999999999",
             "text=" + "A" * 5000, r"text=\0\xff\xff,=-,=:."]
NODE_WAYS = ["errno=EACCES", "errno=ENODEV"]
PROOF = ".ovgpu-sim"
# Long lists of interfaces take their time on a busy machine.
LONGEST_SECONDS = 120
ABORTED = 134
# Parts of a path that differ from device to device.
OWN_PARTS = re.compile(r"[0-9a-f]{8}-[0-9a-f-]{27}|[0-9a-f]{4}:[0-9a-f]{2}:[0-9a-f]{2}\.[0-9a-f]|\d+")


def simulate(args, extra):
    return subprocess.run([args.simulator, "--host", args.host, *extra, "--", args.program],
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=LONGEST_SECONDS, check=False)


def accesses(args):
    """What the program asks, as selections of ioctls, and the globs of the paths that it touches."""
    with tempfile.TemporaryDirectory() as folder:
        trace = pathlib.Path(folder) / "trace"
        run = simulate(args, ["--trace", str(trace)])
        if run.returncode != 0:
            sys.exit(f"{args.program} fails without a fault:\n{run.stdout.decode(errors='replace')}")
        lines = [line.split() for line in trace.read_text().splitlines()]
    # "ioctl NODE KIND ..." or, for a call of an interface, "ioctl NODE record INTERFACE ...".
    asked = [line for line in lines if line[0] == "ioctl"]
    records = sorted({f"interface={line[3]}" for line in asked if line[2] == "record"})
    others = {f"kind={line[2]}" for line in asked if line[2] != "record"}
    others |= {f"node={line[1]},kind={line[2]}" for line in asked if line[2] != "record"}
    others |= {f"node={line[1]}" for line in asked}
    paths = sorted({OWN_PARTS.sub("*", line[1]) for line in lines if line[0] != "ioctl" and PROOF not in line[1]})
    return records, sorted(others), paths


def faults_of(args):
    """Every fault with the exit statuses that it allows, and how they come about."""
    records, others, paths = accesses(args)
    kinds = [(f"ioctl({question})", IOCTL_WAYS, {0}) for question in records]
    kinds += [(f"ioctl({question})", OTHER_IOCTL_WAYS, {0}) for question in others]
    kinds += [(f"file({path})", NODE_WAYS if path.startswith("/dev/") else FILE_WAYS,
               {0, ABORTED} if path.endswith("/device") else {0}) for path in paths]
    faults = []
    for number, (target, ways, allowed) in enumerate(kinds):
        count = min(args.ways or len(ways), len(ways))
        faults += [(f"{target}:{ways[(number * count + i) % len(ways)]}", allowed) for i in range(count)]
    return faults, f"{len(records)} interfaces, {len(others)} other selections and {len(paths)} paths"


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--simulator", required=True)
    parser.add_argument("--host", required=True)
    parser.add_argument("--ways", type=int)
    parser.add_argument("program")
    args = parser.parse_args()

    faults, kinds = faults_of(args)

    def failure(fault):
        spec, allowed = fault
        try:
            run = simulate(args, ["--fault", spec])
        except subprocess.TimeoutExpired:
            return f"{spec}: hangs"
        if run.returncode in allowed:
            return None
        return f"{spec}: status {run.returncode}\n{run.stdout.decode(errors='replace')}"

    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        failures = [text for text in pool.map(failure, faults) if text]
    print(f"{len(faults)} faults in {kinds}: {len(failures)} failures")
    print("\n".join(failures[:5]))
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
