#!/usr/bin/env python3
"""Fails every access of a command to its host in turn: each ioctl and each file.

usage: sweep.py --tool FILE --simulator FILE [--by-turns] [--beyond=COMMAND] HOST [ARGUMENT...]

A clean run tells the accesses. Every one of them then fails in a run of its own, the first of each kind in
every way that there is, those after it in one of the ways by turns; with --by-turns the first ones too. With --beyond those are left
out that the command begins with as another one does, which has a sweep of its own.
"""
import argparse
import pathlib
import shlex
import sys
import tempfile

sys.path.append(str(pathlib.Path(__file__).resolve().parents[1] / "support"))
from accesses import accesses, begin_in_common  # noqa: E402
from simulated import ABORTED, Simulated  # noqa: E402


def faults(all_accesses, begin, by_turns):
    seen = set()
    for number, access in enumerate(all_accesses[begin:]):
        every = access.kind not in seen and not by_turns
        seen.add(access.kind)
        for way in access.ways if every else access.ways[number % len(access.ways):][:1]:
            yield f"{access.target}:{way}"


def is_stated_abort(fault, run):
    """A device id that is no number is the one thing that ends the tool."""
    return "/device)" in fault and fault.endswith("garbage") and run.status == ABORTED and not run.out


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--tool", required=True)
    parser.add_argument("--simulator", required=True)
    parser.add_argument("--by-turns", action="store_true")
    parser.add_argument("--beyond", type=shlex.split)
    parser.add_argument("host")
    parser.add_argument("arguments", nargs=argparse.REMAINDER)
    given = parser.parse_args()
    simulated = Simulated(given.tool, given.simulator)

    with tempfile.TemporaryDirectory(prefix="tolk-faults-") as name:
        state = ["--state", name + "/host"]
        trace = pathlib.Path(name, "trace")

        def traced(arguments):
            trace.unlink(missing_ok=True)
            run = simulated.run(given.host, arguments, [*state, "--trace", str(trace)])
            if run.status != 0 or run.complaints():
                sys.exit("without a fault: " + run.told([f"status {run.status}", *run.complaints()]))
            return run, list(accesses(trace))

        clean, all_accesses = traced(given.arguments)
        begin = 0
        if given.beyond is not None:
            begin = begin_in_common(all_accesses, traced(given.beyond)[1])
        failures = []
        changed = 0
        tried = list(faults(all_accesses, begin, given.by_turns))
        for fault in tried:
            run = simulated.run(given.host, given.arguments, [*state, "--fault", fault])
            complaints = run.complaints()
            if complaints and not is_stated_abort(fault, run):
                failures.append(run.told(complaints))
            changed += run.out != clean.out

        # Trouble that is over leaves nothing behind.
        again = simulated.run(given.host, given.arguments, state)
        if (again.status, again.out, again.err) != (0, clean.out, b""):
            failures.append(again.told(["not what it was before the faults:", again.out.decode(errors="replace")]))
    print(f"{len(tried)} faults behind the first {begin} accesses, {changed} of them seen in the output")
    # Faults that strike nothing would prove nothing.
    if changed * 4 < max(len(tried), 1):
        failures.append("most faults had no effect: are they where the accesses are?")
    for failure in failures:
        print("\n" + failure)
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
