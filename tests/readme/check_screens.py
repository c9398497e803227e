#!/usr/bin/env python3
"""Runs the commands that a page shows and compares what they print with the page, byte for byte.

usage: check_screens.py --tool FILE --simulator FILE PAGE

A screen is a fence of the language `console`: lines `$ [TOLK_HOST=NAME] [TOLK_STATE=NAME] ./demo
ARGUMENT...`, each followed by what the command prints. A host that is kept is kept for the whole page. UPDATE_GOLDEN=1 rewrites the page; look at the difference before you commit it.
Exit status: 0 all screens are true, 1 not.
"""
import argparse
import difflib
import os
import pathlib
import re
import shlex
import subprocess
import sys
import tempfile

FENCE = re.compile(r"^```console\n(.*?)^```$", re.DOTALL | re.MULTILINE)
COMMAND = re.compile(r"^\$ (?:TOLK_HOST=(?P<host>[\w-]+) )?(?:TOLK_STATE=(?P<state>\w+) )?"
                     r"\./demo(?P<arguments>.*)\n", re.MULTILINE)
DEMO_HOST = "server"
TIME_LIMIT_S = 60


class Screens:
    """What the commands of a page print on their simulated hosts."""

    def __init__(self, tool, simulator, kept):
        self.tool = tool
        self.simulator = simulator
        self.kept = kept
        self.count = 0

    def run(self, host, state, arguments):
        self.count += 1
        keep = ["--state", str(self.kept / state)] if state else []
        run = subprocess.run([self.simulator, "--host", host, *keep, "--", self.tool, *arguments],
                             env={**os.environ, "TZ": "UTC", "LC_ALL": "C"}, capture_output=True, text=True,
                             stdin=subprocess.DEVNULL, timeout=TIME_LIMIT_S, check=False)
        return run.stdout + run.stderr

    def of_fence(self, fence):
        """The fence with every command's output made anew."""
        commands = list(COMMAND.finditer(fence.group(1)))
        if not commands or commands[0].start() != 0:
            raise SystemExit(f"a console fence that does not begin with '$ ./demo': {fence.group(1)[:60]!r}")
        screens = [found.group(0) + self.run(found["host"] or DEMO_HOST, found["state"],
                                             shlex.split(found["arguments"]))
                   for found in commands]
        return "```console\n" + "\n".join(screens) + "```"


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--tool", required=True)
    parser.add_argument("--simulator", required=True)
    parser.add_argument("page", type=pathlib.Path)
    options = parser.parse_args()

    written = options.page.read_text(encoding="utf-8")
    with tempfile.TemporaryDirectory() as kept:
        screens = Screens(options.tool, options.simulator, pathlib.Path(kept))
        true = FENCE.sub(screens.of_fence, written)
    if screens.count == 0:
        sys.exit(f"{options.page.name} shows no screen")
    if true == written:
        return 0
    sys.stdout.writelines(difflib.unified_diff(
        written.splitlines(keepends=True), true.splitlines(keepends=True), options.page.name, "printed"))
    if os.environ.get("UPDATE_GOLDEN") == "1":
        options.page.write_text(true, encoding="utf-8")
    return 1


if __name__ == "__main__":
    sys.exit(main())
