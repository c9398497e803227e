#!/usr/bin/env python3
"""Compares what a shared library exports with what its header declares.

usage: check_exports.py --nm NM HEADER LIBRARY

Exit status: 0 the same names, 1 not.
"""
import argparse
import pathlib
import re
import subprocess
import sys


def declared(header):
    """Functions of the header, comments left out."""
    text = re.sub(r"/\*.*?\*/", "", pathlib.Path(header).read_text(encoding="utf-8"), flags=re.DOTALL)
    return set(re.findall(r"\b(lumo\w+)\s*\(", text))


def exported(nm, library):
    listing = subprocess.run([nm, "--dynamic", "--defined-only", library],
                             check=True, capture_output=True, text=True).stdout
    rows = (line.split() for line in listing.splitlines())
    return {row[2].split("@")[0] for row in rows if row[1] != "A"}


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--nm", default="nm")
    parser.add_argument("header")
    parser.add_argument("library")
    options = parser.parse_args()

    wanted = declared(options.header)
    found = exported(options.nm, options.library)
    for name in sorted(wanted - found):
        print(f"declared and not exported: {name}")
    for name in sorted(found - wanted):
        print(f"exported and not declared: {name}")
    print(f"{len(wanted)} functions declared, {len(found)} exported")
    return 0 if wanted == found and wanted else 1


if __name__ == "__main__":
    sys.exit(main())
