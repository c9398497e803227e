#!/usr/bin/env python3
"""Runs the command lines of a story one after the other on one host, and compares what each prints.

usage: stories.py --tool FILE --simulator FILE STORY

The first line of a story names its host. "$ orvane-tolk ..." is a command, what follows is its output, blanks at
the end of a line aside; a status other than 0 is told behind it as "[status N]".
"""
import argparse
import difflib
import pathlib
import sys

from changing import HOSTS, Simulated

PROMPT = "$ orvane-tolk"


def played(simulated, host, commands):
    """The story as it goes."""
    script = "\n".join(f"echo '{command}'; $tool{command.removeprefix(PROMPT)}; status=$?; "
                       "test $status = 0 || echo \"[status $status]\"" for command in commands)
    run = simulated.run_script(HOSTS / f"{host}.json", script)
    return [line.rstrip() for line in (run.out + run.err).decode(errors="replace").splitlines()]


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--tool", required=True)
    parser.add_argument("--simulator", required=True)
    parser.add_argument("story", type=pathlib.Path)
    given = parser.parse_args()
    heading, *expected = given.story.read_text().splitlines()
    found = played(Simulated(given.tool, given.simulator), heading.removeprefix("host "),
                   [line for line in expected if line.startswith(PROMPT)])
    for line in difflib.unified_diff(expected, found, "expected", "found", lineterm="", n=8):
        print(line)
    return 1 if found != expected else 0


if __name__ == "__main__":
    sys.exit(main())
