#!/usr/bin/env python3
"""Runs every command on a host; its drivers are asked for nothing that they did not offer, and only the nodes
that are there are opened.

usage: every_command.py --tool FILE --simulator FILE HOST
"""
import argparse
import pathlib
import sys

from offers import Simulated, ask, command_lines

SUMMARY = []
SHOWN = 0


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--tool", required=True)
    parser.add_argument("--simulator", required=True)
    parser.add_argument("host")
    given = parser.parse_args()
    simulated = Simulated(given.tool, given.simulator)
    lines = [SUMMARY, *command_lines(pathlib.Path(__file__).with_name("commands.txt"))]

    asked = ask(simulated, given.host, lines)
    print(f"{len(lines)} commands, {asked.requests} requests")
    failures = [run.told(run.complaints()) for run in asked.runs if run.complaints()]
    if asked.runs[0].status == SHOWN and not asked.requests:
        failures.append(asked.runs[0].told(["shows devices and asked for nothing"]))
    if asked.unexpected:
        # Whose they are is worth the time only now.
        for line, run in zip(lines, asked.runs):
            alone = ask(simulated, given.host, [line]).unexpected
            if alone:
                failures.append(run.told(["not offered:", *alone]))
        failures.append("not offered, by all commands one after the other:\n  " + "\n  ".join(asked.unexpected))
    if asked.absent:
        failures.append("opened, and not there:\n  " + "\n  ".join(asked.absent))
    for failure in failures:
        print("\n" + failure)
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
