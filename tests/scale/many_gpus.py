#!/usr/bin/env python3
"""Reads 64 GPUs and holds the time against that of one.

usage: many_gpus.py --tool FILE --simulator FILE --time-pair FILE [--delay-ms N]

A request costs the same however many GPUs there are, and slow GPUs are waited for together. The times of a busy
machine differ by some factor, those of a tool that serialises its GPUs by 64: what a quiet moment shows counts.
"""
import argparse
import json
import pathlib
import sys
import tempfile
import time

sys.path.append(str(pathlib.Path(__file__).resolve().parents[1] / "support"))
from simulated import Simulated  # noqa: E402

GPUS = 64
FIELDS = ("memory.total,memory.used,memory.free,utilization.gpu,utilization.memory,temperature.gpu,power.draw,"
          "clocks.current.gpu,clocks.current.memory,clocks.current.vpu")
QUERY = "--query-gpu=" + FIELDS
ATTEMPTS = 8
MOST_PER_REQUEST = 2
LEAST_GAIN = 10


class Rack:
    """The tool on a host with some of the rack's GPUs."""

    def __init__(self, simulated, folder, gpus):
        self.simulated = simulated
        self.gpus = gpus
        self.trace = folder / "trace"
        self.host = folder / f"{gpus}.json"
        self.host.write_text(json.dumps({"extends": "rack", "gpus": [{"repeat": gpus}]}))

    def run(self, arguments, options=()):
        """Seconds that it took."""
        begin = time.monotonic()
        run = self.simulated.run(self.host, arguments, options)
        took = time.monotonic() - begin
        complaints = run.complaints()
        if run.status != 0 or complaints:
            sys.exit(run.told([f"status {run.status}", *complaints]))
        return took, run.out

    def requests(self, arguments):
        self.trace.unlink(missing_ok=True)
        self.run(arguments, ["--trace", self.trace])
        return sum(line.startswith("ioctl ") for line in self.trace.read_text().splitlines())

    def request_us(self, time_pair, requests):
        """Wall time of a run by its requests; what the start of any program costs is left out."""
        pair = Simulated(time_pair, self.simulated.simulator)
        tool = str(self.simulated.tool)
        words = pair.run(self.host, ["5", tool, QUERY, "--", tool, "-v"]).out.split()
        return (float(words[0]) - float(words[1])) / requests


def check_requests(one, rack, time_pair):
    """A request takes as long among many GPUs as it takes with one."""
    requests = {host.gpus: host.requests([QUERY]) for host in (one, rack)}
    told = []
    for _ in range(ATTEMPTS):
        alone, among = (host.request_us(time_pair, requests[host.gpus]) for host in (one, rack))
        told.append(f"{alone:.0f} us a request with one GPU, {among:.0f} us with {GPUS}")
        if among <= MOST_PER_REQUEST * alone:
            print(told[-1])
            return []
    return [f"a request may take {MOST_PER_REQUEST} times as long:", *told]


def check_waiting(rack, delay_ms):
    """Where every request of the reading takes some milliseconds, the GPUs wait side by side."""
    starting = rack.requests(["--query-gpu=index"])
    reading = rack.requests([QUERY]) - starting
    in_turn = reading * delay_ms / 1000
    slow = ["--fault", f"ioctl#{starting + 1}+:hang={delay_ms}"]
    usual = float("inf")
    told = []
    for _ in range(ATTEMPTS):
        usual = min(usual, rack.run([QUERY])[0])
        waited = rack.run([QUERY], slow)[0] - usual
        told.append(f"{reading} requests of {delay_ms} ms cost {waited:.2f} s instead of {in_turn:.2f} s")
        if waited <= in_turn / LEAST_GAIN:
            print(told[-1])
            return []
    return [f"it must be {LEAST_GAIN} times faster than one GPU after the other:", *told]


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--tool", required=True)
    parser.add_argument("--simulator", required=True)
    parser.add_argument("--time-pair", required=True)
    parser.add_argument("--delay-ms", type=int, default=5)
    arguments = parser.parse_args()
    simulated = Simulated(arguments.tool, arguments.simulator)
    with tempfile.TemporaryDirectory(prefix="tolk-scale-") as name:
        one, rack = (Rack(simulated, pathlib.Path(name), gpus) for gpus in (1, GPUS))
        failures = [*check_requests(one, rack, arguments.time_pair), *check_waiting(rack, arguments.delay_ms)]
    print("\n".join(failures))
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
