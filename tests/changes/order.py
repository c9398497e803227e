#!/usr/bin/env python3
"""Looks at when nodes are closed and opened around a change: a driver refuses it while others are open.

usage: order.py --tool FILE --simulator FILE
"""
import pathlib
import sys
import tempfile

from changing import CHANGING, HOSTS, Simulated

RESET = "50"
COUNTS = "44"
PROBE = "probe"

# Host, command, the GPU's own nodes, and the change. A reset renews what is open of the GPU's render node.
CASES = (
    ("several", ["-r", "2", "-i", "0"], ("ovgpu.0", "renderD128"), RESET),
    ("several", ["-e", "0", "-i", "1"], ("ovgpu.1", "renderD129"), "49"),
    ("several", ["mpc", "-enable", "-i", "2"], ("ovgpu.2", "renderD130"), "15"),
    ("several", ["mpc", "-cm", "0", "-i", "3"], ("ovgpu.3",), "12"),
    ("several", ["mpc", "-disable", "-i", "3"], ("ovgpu.3",), "15"),
    ("older", ["-r", "2", "-i", "0"], ("ovgpu.0", "renderD128"), RESET),
    ("older", ["mpc", "-enable", "-i", "2"], ("ovgpu.2", "renderD130"), "15"),
    # These leave the other devices as they are.
    ("several", ["-r", "1", "-i", "0"], ("ovgpu.0",), "29"),
    ("several", ["-pl", "200", "-i", "0"], ("ovgpu.0",), "76"),
)
CLOSES_OTHERS = {RESET, "49", "15", "12"}


def events(trace):
    """Operation and node, or ("ask", node, question)."""
    for line in trace.read_text().splitlines():
        operation, subject, *words = line.split(" ")
        if operation == "ioctl":
            yield "ask", subject, words[1] if words[0] == "record" else words[0]
        elif operation in ("open", "close") and subject.startswith("/dev/") and words == ["ok"]:
            yield operation, subject.rsplit("/", 1)[1], None


def check(happened, own, change):
    """What is out of order, as texts."""
    changes = [place for place, (_, node, what) in enumerate(happened) if what in CHANGING]
    expected = [change, COUNTS] if change in (RESET, "29") and len(changes) == 2 else [change]
    if [happened[place][2] for place in changes] != expected or {happened[place][1] for place in changes} != {own[0]}:
        yield f"changes {[happened[place] for place in changes]}, not {expected} of {own[0]}"
        return
    before, after = happened[:changes[0]], happened[changes[0] + 1:]
    opened = [node for operation, node, _ in before if operation == "open"]
    closed = [node for operation, node, _ in before if operation == "close"]
    still = [node for node in opened if opened.count(node) > closed.count(node)]
    if change not in CLOSES_OTHERS:
        if any(operation == "open" for operation, _, _ in after) or own[0] not in still or len(still) < 3:
            yield f"nodes are closed or opened again for nothing: {still} are open, then {after}"
        return
    # What is left open at the request: the GPU itself, and its render node unless that is renewed.
    left = {own[0]} if change == RESET else set(own)
    if set(still) != left:
        yield f"{sorted(set(still))} are open at the change, not {sorted(left)}"
    last = [(operation, node) for operation, node, _ in before][-1:]
    if change == RESET and last != [("close", own[1])]:
        yield f"the GPU's render node is not the last that is closed: {last}"
    again = [node for operation, node, _ in after if operation == "open"]
    if change == RESET and again[:1] != [own[1]]:
        yield f"the GPU's render node is not the first that is opened again: {again}"
    others = set(opened) - set(own)
    there = {node for node in again if node not in own}
    if change == RESET and there != others or not there:
        yield f"opened again are {sorted(there)}, were closed {sorted(others)}"
    for node in again:
        asked = [what for operation, name, what in after if operation == "ask" and name == node]
        if asked[:1] != [PROBE]:
            yield f"{node} is opened again and not negotiated with: {asked}"
    # The counts come last, when all devices are there again.
    if len(changes) == 2 and [e for e in after if e[0] != "close"][-1][2] != COUNTS:
        yield "the error counts are not reset behind everything else"


def main():
    simulated = Simulated.of_command_line()
    failures = []
    with tempfile.TemporaryDirectory(prefix="tolk-changes-") as name:
        for number, (host, command, own, change) in enumerate(CASES):
            # The second GPU is busy, which an ECC mode does not mind.
            trace = pathlib.Path(name, f"trace{number}")
            run = simulated.run(HOSTS / f"{host}.json", command, ["--trace", str(trace)])
            complaints = run.complaints() + ([f"status {run.status}"] if run.status else [])
            complaints += check(list(events(trace)), own, change)
            if complaints:
                failures.append(run.told(complaints))
    print("\n\n".join(failures))
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
