#!/usr/bin/env python3
"""Runs the tool where files are not what they should be, and with streams that take nothing.

usage: surroundings.py --tool FILE --simulator FILE --log-reader FILE
"""
import argparse
import concurrent.futures
import json
import pathlib
import subprocess
import sys
import tempfile

sys.path.append(str(pathlib.Path(__file__).resolve().parents[1] / "support"))
from simulated import Simulated  # noqa: E402

VERSION = "/proc/driver/vela/version"
MODE = "/sys/module/ovgpu/parameters/ovgpu_driver_mode"
# From the host's tree to the machine's own /dev/zero.
ENDLESS = "../" * 20 + "dev/zero"


def odd_files():
    """Name, what is laid over the plain host, and the words that the summary must show."""
    for number, text in enumerate(("", "\n", "3.1.0", "package version:", "package version: \n",
                                   "package version:\0003.1.0", "package version:" + "9" * 80,
                                   "package version:" + "9" * (1 << 20))):
        yield f"version {number}", {"files": {VERSION: text}}, "Driver Version:N/A"
    yield "version with a NUL", {"files": {VERSION: "package version:3.1\0004"}}, "Driver Version:3.1\n"
    yield "endless version", {"links": {VERSION: ENDLESS}}, "Driver Version:N/A"
    for path in (MODE, "/sys/module/ovgpu/parameters/disable_vpu", "/etc/ovparams", "/proc/4242/cmdline"):
        yield f"endless {path}", {"links": {path: ENDLESS}}, "OVT B250A"
    huge = {f"/dev/ovgpu.{'9' * 20}": "", f"/dev/ovgpu.{'0' * 40}": "", "/dev/ovgpu.": "", "/dev/ovgpu.-1": ""}
    yield "odd nodes", {"files": huge}, "OVT B250A"
    yield "every process id is all ones", {
        "gpus": {"0": {"processes": [{"pid": 0xFFFFFFFF, "gpu_memory": 1 << 63}] * 80}}}, "4294967295"


def check_odd_files(simulated, folder):
    for name, change, words in odd_files():
        host = folder / "host.json"
        host.write_text(json.dumps({"extends": "bare", **change}))
        run = simulated.run(host, [])
        complaints = run.complaints()
        if run.status != 0 or words.encode() not in run.out:
            complaints.append(f"status {run.status}, expected 0 and {words!r} in\n{run.out.decode(errors='replace')}")
        if complaints:
            yield f"{name}: " + run.told(complaints)


def check_streams(simulated, folder, log_reader):
    """Nothing is printed into a file that has got the number of a closed stream."""
    for closed in (">&-", "<&- >&-", "<&- >&- 2>&-", ">/dev/full"):
        log = folder / "log"
        log.unlink(missing_ok=True)
        run = simulated.run("bare", ["-v", f"--debug={log}"], after=closed)
        read = subprocess.run([log_reader, str(log)], capture_output=True, check=False)
        if run.status != 0 or run.out or run.err or read.returncode != 0 or b"version" not in read.stdout:
            yield run.told([f"status {run.status}, output {run.out!r} {run.err!r}", f"the log reads {read}"])
        run = simulated.run("bare", [], after=closed)
        if run.status != 0 or run.out or run.err:
            yield run.told([f"status {run.status}, output {run.out!r} {run.err!r}"])


def check_late_start(simulated, folder, log_reader):
    """A library that starts, but later than it may, is told of and ended."""
    log = folder / "late"
    run = simulated.run("bare", [f"--debug={log}"], ["--fault", "ioctl#1:hang=10500"])
    expected = b"Error: failed to initialize orvane-tolk.\n"
    lines = subprocess.run([log_reader, str(log)], capture_output=True, check=False).stdout
    if (run.status, run.out, run.err) != (2, expected, b"") or b" >> lumoLibraryInit  timeout \n" not in lines:
        yield run.told([f"status {run.status}, output {run.out!r} {run.err!r}", lines.decode(errors="replace")])


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--tool", required=True)
    parser.add_argument("--simulator", required=True)
    parser.add_argument("--log-reader", required=True)
    arguments = parser.parse_args()
    simulated = Simulated(arguments.tool, arguments.simulator)
    with tempfile.TemporaryDirectory(prefix="tolk-faults-") as name:
        folder = pathlib.Path(name)
        reader = arguments.log_reader
        with concurrent.futures.ThreadPoolExecutor() as pool:
            late = pool.submit(lambda: [*check_late_start(simulated, folder, reader)])
            failures = [*check_odd_files(simulated, folder), *check_streams(simulated, folder, reader)]
            failures += late.result()
    print("\n\n".join(failures))
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
