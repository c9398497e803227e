#!/usr/bin/env python3
"""Proves that a request which was not offered is seen: on drivers that do not say what they speak.

usage: counting.py --tool FILE --simulator FILE
"""
import sys

from offers import Simulated, ask

SUMMARY = []
# A driver that answers no probe is taken for the oldest, and asked in the first versions.
SILENT = "ioctl(kind=probe,node=ovgpu.0):errno=ENOTTY"
UNEXPECTED = {
    # Speaks protocol 1: has none of these requests.
    "fen1": {"unknown 0xc0484d05 -", "unknown 0xc0a04da6 -", "unknown 0xb9884da7 -", "unknown 0x81084da9 -"},
    # Has these two in later versions alone.
    "legacy": {"record 2 0", "record 4 0"},
    # Is the oldest.
    "ancient": set(),
}


def main():
    simulated = Simulated.of_command_line()
    failures = []
    for host, expected in UNEXPECTED.items():
        asked = ask(simulated, host, [SUMMARY], ["--fault", SILENT])
        found = {line.partition(" ovgpu.0 ")[2] for line in asked.unexpected}
        if found != expected:
            failures.append(asked.runs[0].told([f"found {asked.unexpected}", f"expected {sorted(expected)}"]))
    print("\n".join(failures))
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
