#!/usr/bin/env python3
"""Runs a command and compares what it prints with a file, byte for byte.

usage: check_output.py EXPECTED COMMAND...

Exit status: 0 the same and the command succeeded, 1 not.
"""
import difflib
import pathlib
import subprocess
import sys


def main():
    expected_file, *command = sys.argv[1:]
    expected = pathlib.Path(expected_file).read_text(encoding="utf-8")
    run = subprocess.run(command, capture_output=True, text=True, check=False)
    sys.stdout.writelines(difflib.unified_diff(
        expected.splitlines(keepends=True), run.stdout.splitlines(keepends=True), "expected", "printed"))
    sys.stdout.write(run.stderr)
    return 0 if run.returncode == 0 and run.stdout == expected and not run.stderr else 1


if __name__ == "__main__":
    sys.exit(main())
