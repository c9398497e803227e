#!/usr/bin/env python3
"""Fails, and kills, commands that change a GPU at each access that they make beyond the start.

usage: sweep.py --tool FILE --simulator FILE [--every N] [--interfaces N,N...] HOST NODE COMMAND...

The commands take turns on one host; of two that change the MPC mode, each undoes the other. NODE is that of the
GPU that all name, the only one that they may change. Of the devices that
are opened again after a change, all alike, one is taken for each command, and of its accesses a quarter.
With --interfaces, the requests of these interfaces are taken instead, those of the start too.

Whatever goes wrong at an access, the command ends as documented; at every third one, and at changes, it is killed
too. Afterwards the same command without trouble works as on a fresh host, which is whole.
"""
import argparse
import pathlib
import re
import shlex
import sys
import tempfile

from changing import (CHANGING, HOSTS, KILLED, LOOK, Access, Simulated, accesses, begin_in_common,
                      complaints_of, nodes_disagree, touched_others)

# Leaks are looked for where something went wrong.
NO_LEAKS = "ASAN_OPTIONS=$ASAN_OPTIONS:detect_leaks=0 "
KILL_EVERY = 3
PARTS = 4
# The simulator's own steps of a change, of which its tests try all.
MOVES = (1, 4)
END = "=end="


def is_change(access):
    return access.kind[0] == "record" and access.kind[1] in CHANGING


def reopened(all_accesses, node):
    """The accesses, each with the other device that is opened again, or None."""
    changed = False
    current = None
    for access in all_accesses:
        if changed and access.subject.startswith("/dev/ovgpu."):
            current = access.subject
        if access.subject == node:
            current = None
        changed = changed or is_change(access)
        yield access, current


class Sweep:
    def __init__(self, simulated, given, folder):
        self.simulated = simulated
        self.host = HOSTS / f"{given.host}.json"
        self.node = given.node
        self.every = given.every
        self.interfaces = given.interfaces
        self.commands = given.commands
        self.state = ["--state", str(folder / "host")]
        self.trace = folder / "trace"
        self.failures = []
        self.changes = set()
        self.counts = {"accesses": 0, "failed": 0, "killed": 0, "seen": 0}
        self.clean = []
        self.points = []
        for turn, command in enumerate(self.commands):
            listed = self.traced(["-L"])[1]
            run, made = self.traced(command)
            self.clean.append(run.out)
            self.points.append(self.chosen(made, listed, turn))

    def chosen(self, made, listed, turn):
        if self.interfaces:
            return [access for access in made if access.kind[0] == "record" and access.kind[1] in self.interfaces]
        behind = list(reopened(made, self.node))[begin_in_common(made, listed):]
        self.counts["accesses"] += len(behind)
        devices = sorted({device for _, device in behind if device})
        taken = [access for access, device in behind if device and device == devices[turn % len(devices)]]
        # All sweeps together have them all.
        taken = taken[(turn + len(self.commands)) % PARTS::PARTS]
        return [access for access, device in behind if not device or access in taken]

    def traced(self, command, fault=None):
        self.trace.unlink(missing_ok=True)
        options = [*self.state, "--trace", str(self.trace), *(("--fault", fault) if fault else ())]
        run = self.simulated.run(self.host, command, options)
        if not fault and (run.status != 0 or run.complaints()):
            sys.exit("without a fault: " + run.told([f"status {run.status}", *run.complaints()]))
        return run, list(accesses(self.trace)) if not fault else []

    def judge(self, run, complaints):
        if complaints:
            self.failures.append(run.told(complaints))

    def fail(self, turn, access, place):
        command = self.commands[turn]
        # A change fails in every way when it is met for the first time.
        every = is_change(access) and access.kind not in self.changes
        self.changes.add(access.kind)
        for way in access.ways if every else access.ways[place % len(access.ways):][:1]:
            run, _ = self.traced(command, f"{access.target}:{way}")
            self.judge(run, complaints_of(command[0], run) + touched_others(self.trace, self.node))
            self.counts["failed"] += 1
            self.counts["seen"] += run.out != self.clean[turn]
            if is_change(access) and self.is_stateful():
                self.again(turn)
                self.again(1 - turn)

    def kill(self, turn, access, _place):
        command = self.commands[turn]
        run, _ = self.traced(command, f"{access.target}:kill")
        complaints = touched_others(self.trace, self.node)
        if run.status != KILLED or run.err or run.out not in (b"", self.clean[turn]):
            complaints.append(f"was to be killed: status {run.status}, {run.out!r} {run.err!r}")
        self.judge(run, complaints)
        self.counts["killed"] += 1

    def again(self, turn):
        """The command without trouble."""
        script = NO_LEAKS + "$tool " + shlex.join(self.commands[turn])
        run = self.simulated.run_script(self.host, script, self.state)
        if (run.status, run.out, run.err) != (0, self.clean[turn], b""):
            self.judge(run, [f"does not work again: status {run.status}, {run.out!r} {run.err!r}"])

    def work(self, turn):
        """The same; before it the host is whole."""
        script = (f"export {NO_LEAKS}; $tool -L; echo {END}$?; {LOOK}; echo {END}; "
                  f"$tool {shlex.join(self.commands[turn])}; echo {END}$?")
        run = self.simulated.run_script(self.host, script, self.state)
        parts = re.split(f"{END}(.*)\n", run.out.decode(errors="replace"))
        complaints = [run.err.decode(errors="replace")] if run.err else []
        if len(parts) != 7 or (parts[1], parts[5]) != ("0", "0") or parts[4] != self.clean[turn].decode():
            complaints.append(f"does not work again: {run.out.decode(errors='replace')}")
        else:
            complaints += nodes_disagree(parts[2].splitlines(), parts[0].count("GPU "))
        self.judge(run, complaints)

    def others(self):
        """Everything that is reported of the devices that are not named, whatever their index."""
        run = self.simulated.run(self.host, ["-q"], self.state)
        self.judge(run, run.complaints())
        target = self.target_address()
        found = set()
        for section in re.split(r"\n\s*(?=GPU[0-9]+ )", run.out.decode(errors="replace"))[1:]:
            heading, rest = section.split("\n", 1)
            if target not in heading:
                found.add(heading.split()[1] + rest.strip())
        return found

    def target_address(self):
        script = f"ls -d /sys/bus/pci/drivers/ovgpu/*/misc/{self.node}"
        return self.simulated.run_script(self.host, script, self.state).out.decode().split("/")[6]

    def strikes(self):
        """What to do to the commands, and at which of their accesses."""
        for place in range(0, max(map(len, self.points)), self.every):
            yield self.fail, place
            changes = any(place < len(points) and is_change(points[place]) for points in self.points)
            if changes or place // self.every % KILL_EVERY == 0:
                yield self.kill, place

    def run(self):
        before = self.others()
        for strike, place in self.strikes():
            for turn, points in enumerate(self.points):
                struck = place < len(points)
                if struck:
                    strike(turn, points[place], place // self.every)
                # Whoever is killed elsewhere has left nodes as they were, or as they are to be.
                if struck and strike == self.kill and is_change(points[place]):
                    self.work(turn)
                elif self.is_stateful() or struck and strike == self.kill:
                    self.again(turn)
        for move in MOVES if self.is_stateful() else ():
            for turn in range(len(self.commands)):
                self.kill(turn, Access(f"move#{move}", (), "", ()), 0)
                self.work(turn)
        for turn in range(len(self.commands)):
            self.work(turn)
        if not before or self.others() != before:
            self.failures.append("what is reported of the other devices has changed")

    def is_stateful(self):
        return any(word in self.commands[0] for word in ("-enable", "-cm"))


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--tool", required=True)
    parser.add_argument("--simulator", required=True)
    parser.add_argument("--every", type=int, default=1)
    parser.add_argument("--interfaces", type=lambda text: text.split(","))
    parser.add_argument("host")
    parser.add_argument("node")
    parser.add_argument("commands", type=shlex.split, nargs="+")
    given = parser.parse_args()
    with tempfile.TemporaryDirectory(prefix="tolk-changes-") as name:
        sweep = Sweep(Simulated(given.tool, given.simulator), given, pathlib.Path(name))
        sweep.run()
    counts = sweep.counts
    print(f"{counts['accesses']} accesses behind the start, {counts['failed']} failed, {counts['seen']} of them seen "
          f"in the output, {counts['killed']} kills")
    # Faults that strike nothing would prove nothing. Of devices that are opened again, none is told.
    if counts["seen"] < 4:
        sweep.failures.append("faults had no effect: are they where the accesses are?")
    for failure in sweep.failures:
        print("\n" + failure)
    return 1 if sweep.failures else 0


if __name__ == "__main__":
    sys.exit(main())
