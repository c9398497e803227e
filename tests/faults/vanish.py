#!/usr/bin/env python3
"""Takes a vGPU, its virtual machine, a type or a whole GPU away between two accesses of a command.

usage: vanish.py --tool FILE --simulator FILE

A clean run tells the accesses. What vanishes is gone from one of them on: of every kind of access that no command
before had the first and the last, and the last of each that the vGPU itself has; all of them for the virtual
machine that ends. The command goes on, a row that cannot be had is N/A, and what nobody took is told as before; a
device that cannot be asked any more ends the command with the message for that.
"""
import argparse
import pathlib
import re
import sys
import tempfile

sys.path.append(str(pathlib.Path(__file__).resolve().parents[1] / "support"))
from simulated import Simulated  # noqa: E402

HOST = "vgpu-host"
PARENT = "/sys/bus/pci/devices/0000:01:00.0"
UUID = "c3d9a1e2-7f40-4b6c-9d15-2e8a0b4f6c71"
LINK = "/sys/bus/mdev/devices/" + UUID
CMDLINE = "/proc/5151/cmdline"
VM = b"0f1e2d3c-4b5a-6978-8796-a5b4c3d2e1f0"
REFUSED = b"Error: the requested operation is not available on target device\n"
SPACE = re.compile(rb"\s+")
ANY_UUID = re.compile(r"[0-9a-f]{8}(-[0-9a-f]{4}){3}-[0-9a-f]{12}")

VGPU = (LINK, f"{PARENT}/{UUID}")
MACHINE = (CMDLINE,)
TYPE = (f"{PARENT}/mdev_supported_types/ovgpu-11",)
BUS = ("/sys/class/mdev_bus/0000:01:00.0",)
OTHER_GPU = ("/sys/bus/pci/drivers/ovgpu/0000:41:00.0", "/sys/bus/pci/devices/0000:41:00.0")

VGPU_COMMANDS = [["vgpu", form] for form in ("-q", "-c", "-s", "-u", "-es")]
OTHER_COMMANDS = [[], ["topo", "-m"]]
NOT_FILES = {"ioctl", "mmap", "munmap", "close"}


def accesses(trace):
    """Number and path of every access of a path."""
    paths = [line.split(" ")[1] for line in trace.read_text().splitlines() if line.split(" ")[0] not in NOT_FILES]
    return list(enumerate(paths, 1))


def kind_of(path):
    """The other vGPUs are all alike."""
    return ANY_UUID.sub(lambda uuid: uuid[0] if uuid[0] == UUID else "*", path)


def strange(clean, run):
    """What the run tells that the clean one did not and that does not say that it is missing."""
    known = {SPACE.sub(b" ", line) for line in clean.out.splitlines()}
    return [line for line in run.out.splitlines()
            if SPACE.sub(b" ", line) not in known and b"N/A" not in line and b"no active sessions" not in line]


class Sweep:
    def __init__(self, simulated):
        self.simulated = simulated
        self.known = set()
        self.tried = 0
        self.seen = 0
        self.failures = []

    def clean(self, arguments):
        with tempfile.TemporaryDirectory(prefix="tolk-vanish-") as folder:
            trace = pathlib.Path(folder, "trace")
            run = self.simulated.run(HOST, arguments, ["--trace", str(trace)])
            if run.status != 0 or run.complaints():
                sys.exit("with all in place: " + run.told([f"status {run.status}", *run.complaints()]))
            return run, accesses(trace)

    def without(self, taken, number, arguments, clean):
        options = [word for path in taken for word in ("--fault", f"file#{number}:take={path}")]
        run = self.simulated.run(HOST, arguments, options)
        self.tried += 1
        self.seen += run.out != clean.out
        return run

    def some(self, points):
        kinds = {}
        for number, path in points:
            kinds.setdefault(kind_of(path), []).append(number)
        numbers = {at[0] for kind, at in kinds.items() if kind not in self.known}
        numbers |= {at[-1] for kind, at in kinds.items() if kind not in self.known or UUID in kind}
        self.known |= kinds.keys()
        return sorted(numbers)

    def note(self, run, complaints):
        if complaints:
            self.failures.append(run.told(complaints))

    def vgpu_command(self, arguments):
        clean, points = self.clean(arguments)
        mediated = [point for point in points if "mdev" in point[1] or point[1] == CMDLINE]
        ways = (VGPU, TYPE, VGPU, BUS)
        for turn, number in enumerate(self.some(mediated)):
            run = self.without(ways[turn % len(ways)], number, arguments, clean)
            complaints = run.complaints()
            if run.status not in (0, 1) or (run.status == 1 and not run.out.endswith(REFUSED)):
                complaints.append(f"status {run.status}: {run.out!r}")
            if run.status == 0:
                complaints += [f"told: {line!r}" for line in strange(clean, run)]
            self.note(run, complaints)

    def machine_that_ends(self, arguments):
        clean, points = self.clean(arguments)
        for number, path in points:
            if path != CMDLINE and not path.endswith(UUID + "/ovgpu_vgpu/vm_pid"):
                continue
            run = self.without(MACHINE, number, arguments, clean)
            complaints = run.complaints()
            if run.status != 0 or run.out != clean.out.replace(VM, b"N/A") or run.out == clean.out:
                complaints.append(f"status {run.status}: {run.out.decode(errors='replace')}")
            self.note(run, complaints)

    def other_command(self, arguments):
        clean, points = self.clean(arguments)
        for turn, number in enumerate(self.some(points)):
            if turn % 8 == 0:
                run = self.without(OTHER_GPU, number, arguments, clean)
                self.note(run, run.complaints())


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--tool", required=True)
    parser.add_argument("--simulator", required=True)
    given = parser.parse_args()
    sweep = Sweep(Simulated(given.tool, given.simulator))
    for arguments in VGPU_COMMANDS:
        sweep.vgpu_command(arguments)
    sweep.machine_that_ends(["vgpu", "-q"])
    for arguments in OTHER_COMMANDS:
        sweep.other_command(arguments)
    print(f"{sweep.tried} times something vanished, {sweep.seen} times that is seen in the output")
    # What nobody sees would prove nothing.
    if sweep.seen * 4 < sweep.tried:
        sweep.failures.append("most of it had no effect: is it where the accesses are?")
    for failure in sweep.failures:
        print("\n" + failure)
    return 1 if sweep.failures else 0


if __name__ == "__main__":
    sys.exit(main())
