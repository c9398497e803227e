#!/usr/bin/env python3
"""Runs a program on a simulated host again and again, each time with one question to the driver, or
one path, failing.

usage: fault_walk.py --simulator FILE --host HOST PROGRAM

Exit status: 0 when every run ended with 0. A PCI function whose file "device" holds no number may end a
program by SIGABRT.
"""
import argparse
import concurrent.futures
import os
import pathlib
import subprocess
import sys
import tempfile

IOCTL_EFFECTS = ["errno=EIO", "status=5", "ones", "short=30", "count=65535", "gone"]
PROBE_EFFECTS = ["errno=EIO", "ones", "gone"]
FILE_EFFECTS = ["errno=EACCES", "cut=1", "text="]
LONGEST_SECONDS = 30
ABORTED = 134


def simulate(args, extra):
    return subprocess.run([args.simulator, "--host", args.host, *extra, "--", args.program],
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=LONGEST_SECONDS, check=False)


def accesses(args):
    """The questions that the program asks, as selections of ioctls, and the paths that it touches."""
    with tempfile.TemporaryDirectory() as folder:
        trace = pathlib.Path(folder) / "trace"
        run = simulate(args, ["--trace", str(trace)])
        if run.returncode != 0:
            sys.exit(f"{args.program} fails without a fault:\n{run.stdout.decode(errors='replace')}")
        lines = [line.split() for line in trace.read_text().splitlines()]
    # "ioctl NODE KIND ..." or, for a call of an interface, "ioctl NODE record INTERFACE ...".
    records = {(line[1], line[3]) for line in lines if line[0] == "ioctl" and line[2] == "record"}
    others = {(line[1], line[2]) for line in lines if line[0] == "ioctl" and line[2] != "record"}
    questions = [f"node={node},interface={number}" for node, number in sorted(records)]
    probes = [f"node={node},kind={kind}" for node, kind in sorted(others)]
    paths = sorted({line[1] for line in lines if line[0] != "ioctl" and ".ovgpu-sim" not in line[1]})
    return questions, probes, paths


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--simulator", required=True)
    parser.add_argument("--host", required=True)
    parser.add_argument("program")
    args = parser.parse_args()

    questions, probes, paths = accesses(args)
    faults = [(f"ioctl({question}):{effect}", {0}) for question in questions for effect in IOCTL_EFFECTS]
    faults += [(f"ioctl({probe}):{effect}", {0}) for probe in probes for effect in PROBE_EFFECTS]
    faults += [(f"file({path}):{effect}", {0, ABORTED} if path.endswith("/device") else {0})
               for path in paths for effect in FILE_EFFECTS]

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
    print(f"{len(faults)} faults in {len(questions)} questions, {len(probes)} probes and {len(paths)} paths: "
          f"{len(failures)} failures")
    print("\n".join(failures[:5]))
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
