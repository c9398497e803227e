#!/usr/bin/env python3
"""Compares what the library answers on one host with drivers of several ages.

usage: across_drivers.py --simulator FILE --host HOST.json --table TABLE PROGRAM

PROGRAM prints a line "INDEX FUNCTION ANSWER" for each reading of each device. TABLE has what the older drivers
answer in another way than the newest one, a row for each function and device and a column for each driver,
with tabs between: "=" is the newest one's answer, "*" stands for all devices.
"""
import argparse
import json
import pathlib
import subprocess
import sys
import tempfile

INLINE = {"100000": 1, "100001": 1, "100002": 1, "100003": 1, "100004": 1}
FIRST = {"2": 0, "4": 0, "20": 1, "26": 0, "27": 0, **dict.fromkeys(INLINE, 0)}
DRIVERS = {
    "newest": {},
    "last": {"protocol": 0},
    "inline": {"protocol": 0, "interfaces": {"4": 1, **INLINE}},
    "first": {"protocol": 0, "interfaces": FIRST},
    "oldest": {"protocol": "none"},
}
OLDER = [name for name in DRIVERS if name != "newest"]
SAME = "="
ALL = "*"


def answers(given, folder, driver, changes):
    """A dictionary by function and device. A driver is asked for what it offers alone."""
    host = folder / f"{driver}.json"
    host.write_text(json.dumps({"extends": str(given.host.resolve()), **changes}))
    unexpected = folder / "unexpected"
    done = subprocess.run([given.simulator, "--host", str(host), "--unexpected", str(unexpected), "--", given.program],
                          capture_output=True, text=True, check=True)
    if done.stderr or unexpected.read_text():
        sys.exit(f"{driver}: {done.stderr}\nnot offered:\n{unexpected.read_text()}")
    found = {}
    for line in done.stdout.splitlines():
        index, function, answer = line.split(" ", 2)
        found[function, index] = answer
    return found


def table_of(by_driver):
    """The rows, as told above."""
    newest = by_driver["newest"]
    devices = sorted({index for _, index in newest})
    rows = []
    for function in dict.fromkeys(function for function, _ in newest):
        cells = {}
        for index in devices:
            place = function, index
            cells[index] = [SAME if by_driver[name][place] == newest[place] else by_driver[name][place] for name in OLDER]
        if all(cell == cells[devices[0]] for cell in cells.values()):
            cells = {ALL: cells[devices[0]]}
        rows += ["\t".join([function, index, *cell]) for index, cell in cells.items() if set(cell) != {SAME}]
    return ["\t".join(["function", "device", *OLDER]), *rows]


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--simulator", required=True)
    parser.add_argument("--host", type=pathlib.Path, required=True)
    parser.add_argument("--table", type=pathlib.Path, required=True)
    parser.add_argument("program")
    given = parser.parse_args()
    with tempfile.TemporaryDirectory(prefix="lumo-ages-") as name:
        found = table_of({driver: answers(given, pathlib.Path(name), driver, changes)
                          for driver, changes in DRIVERS.items()})
    expected = given.table.read_text().splitlines()
    for mark, lines, others in (("-", expected, found), ("+", found, expected)):
        for line in lines:
            if line not in others:
                print(mark + line)
    return 0 if found == expected else 1


if __name__ == "__main__":
    sys.exit(main())
