#!/usr/bin/env python3
"""Asks for the first line and the status of every command in every mode of the driver.

usage: modes.py --tool FILE --simulator FILE

modes.txt tells what is expected.
"""
import json
import pathlib
import shlex
import sys
import tempfile

from offers import Simulated, ask

NO_OUTPUT = "(nothing)"
NO_ARGUMENTS = "(none)"
PARAMETER = "/sys/module/ovgpu/parameters/ovgpu_driver_mode"
MEDIATED = "/sys/class/mdev_bus/"
# By the head of a column: text of the parameter (none: there is no file), whether the host can have vGPUs.
COLUMNS = {
    "-1": ("-1", False),
    "0": ("0", False),
    "1": ("1", False),
    "none": (None, False),
    "2": ("2", False),
    "-1 bus": ("-1", True),
    "0 bus": ("0", True),
    "2 bus": ("2", True),
}


def host_of(mode, is_mediated):
    files = {PARAMETER: None if mode is None else mode + "\n"}
    if is_mediated:
        files[MEDIATED] = ""
    return {"extends": "mpc", "files": files}


def read_table(path):
    """Answers by their names, and the rows: a command and the names of its answers by column."""
    answers, rows, columns = {}, [], None
    for line in path.read_text().splitlines():
        if not line or line.startswith("#"):
            continue
        if "|" not in line:
            name, status, text = (line.split(maxsplit=2) + [""])[:3]
            answers[name] = (int(status), text)
            continue
        command, *cells = [cell.strip() for cell in line.split("|")]
        if columns is None:
            columns = cells
        else:
            rows.append((command, dict(zip(columns, cells, strict=True))))
    return answers, rows


def answer_of(run):
    lines = run.out.decode(errors="replace").splitlines()
    return run.status, lines[0].strip() if lines else NO_OUTPUT


def main():
    simulated = Simulated.of_command_line()
    answers, rows = read_table(pathlib.Path(__file__).with_suffix(".txt"))
    lines = [shlex.split(command) if command != NO_ARGUMENTS else [] for command, _ in rows]

    failures = []
    with tempfile.TemporaryDirectory(prefix="tolk-modes-") as folder:
        for column, (mode, is_mediated) in COLUMNS.items():
            host = pathlib.Path(folder, "host.json")
            host.write_text(json.dumps(host_of(mode, is_mediated)))
            for (command, cells), run in zip(rows, ask(simulated, str(host), lines).runs):
                expected, found = answers[cells[column]], answer_of(run)
                if found != expected or run.err:
                    failures.append(f"mode {column}: orvane-tolk {command}\n"
                                    f"  expected {expected[0]}: {expected[1]}\n  found {found[0]}: {found[1]}\n"
                                    + run.err.decode(errors="replace")[:2000])
    print(f"{len(rows)} commands in {len(COLUMNS)} modes")
    print("\n".join(failures))
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
