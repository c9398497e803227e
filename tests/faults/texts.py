#!/usr/bin/env python3
"""Reports on GPUs whose driver and files deliver texts that they should not.

usage: texts.py --tool FILE --simulator FILE

JSON can be parsed whatever bytes are in a text, and the text form passes the bytes on.
"""
import argparse
import concurrent.futures
import json
import pathlib
import sys
import tempfile

sys.path.append(str(pathlib.Path(__file__).resolve().parents[1] / "support"))
from simulated import Simulated  # noqa: E402

SECTIONS = "STATIC,MEMORY,PERFORMANCE"
KEY_WIDTH = 50
REPLACEMENT = "\N{REPLACEMENT CHARACTER}"

# The texts that reach a report, with what their record has room for.
SERIAL_SIZE = 64
SLOT_SIZE = 40
NAME_SIZE = 48
PROFILE_SIZE = 32
# A driver without a name for the model leaves it to the tool's own list.
LISTED_NAME = b"OVT B250A"
VERSION = "/proc/driver/vela/version"

TEXTS = {
    "empty": b"",
    "control characters": bytes(range(1, 32)),
    "quotes and backslashes": b"\"'\\\\\"\\u0041\\n\\x00{}[],:/",
    "line ends": b"a\nb\r\nc\n\n",
    "escape sequences of a terminal": b"\x1b[31mred\x1b[0m\x07\x7f",
    "a text behind a NUL": b"seen\0hidden",
    "letters of other scripts": "\N{LATIN SMALL LETTER E WITH ACUTE}\N{CJK UNIFIED IDEOGRAPH-6F22}\N{GRINNING FACE}"
                                "\N{LINE SEPARATOR}\N{RIGHT-TO-LEFT OVERRIDE}".encode(),
    "no UTF-8": b"a\xffb\xfe\x80\xbf\xc3(\xe2\x82(\xf0\x9f\x98(",
    "a letter that is cut": b"a\xf0\x9f\x98",
    "too long a form of a letter": b"\xc0\xaf\xe0\x80\xaf\xf0\x80\x80\xaf",
    "half a pair and past the last letter": b"\xed\xa0\x80\xf4\x90\x80\x80",
    "a field without an end": b"x" * 200,
    "letters cut at the end of the field": b"x" + "\N{GREEK SMALL LETTER ALPHA}".encode() * 100,
    "bytes from the upper half": bytes(range(255, 191, -1)),
    "what a device is called": b"GPU0 00000000:01:00.0",
    "blanks": b"  \t  ",
    "a format": b"%s%n%d{0}",
}


def seen(text, size):
    """What is left of a text in its field."""
    return text[:size].split(b"\0")[0]


def host_of(text):
    """An MPC host, whose instances are named by their profile too."""
    value = {"hex": text.hex()}
    board = {"serial_number": value, "slot_name": value, "brand": value, "name": value}
    return {
        "extends": "mpc",
        "files": {VERSION: {"hex": (b"package version:" + text[:64]).hex()}},
        "gpus": {
            "0": {"values": board},
            "1": {"mpc": {"instances": [{"values": {"own_profile_name": value}}]}},
        },
    }


def is_utf8(text):
    try:
        text.decode()
        return True
    except UnicodeDecodeError:
        return False


def row(key, depth, value):
    return (" " * 4 * depth + key).ljust(KEY_WIDTH).encode() + b":  " + value + b"\n"


def expected(text):
    """Path in the JSON form, depth of the row in the text form, and value."""
    profile = seen(text, PROFILE_SIZE)
    name = b"OVT B240" + (b" " + profile if profile else b"")
    yield (0, "Serial Number"), 1, seen(text, SERIAL_SIZE)
    yield (0, "PCI", "Slot ID(Name)"), 2, b"1(" + seen(text, SLOT_SIZE) + b")"
    yield (0, "Product Name"), 1, seen(text, NAME_SIZE) or LISTED_NAME
    yield (2, "Product Name"), 1, name


def check(simulated, folder, label, text):
    host = folder / f"{label}.json"
    host.write_text(json.dumps(host_of(text)))

    def report(*options):
        run = simulated.run(host, ["-q", "-d", SECTIONS, *options])
        problems = run.complaints() + ([f"status {run.status}"] if run.status != 0 else [])
        return run, problems

    run, problems = report()
    for path, depth, value in expected(text):
        if row(path[-1], depth, value) not in run.out:
            problems.append(f"no row {path[-1]!r} with {value!r}")
    if problems:
        yield f"{label}: " + run.told(problems)

    run, problems = report("--json")
    try:
        gpus = json.loads(run.out.decode("utf-8", errors="strict"))["GPU"]
    except (ValueError, KeyError) as error:
        yield f"{label}: " + run.told([*problems, f"{error!r} in {run.out!r}"])
        return
    for (index, *path), _, value in expected(text):
        found = gpus[index]
        for key in path:
            found = found[key]
        if found != value.decode() if is_utf8(value) else REPLACEMENT not in found:
            problems.append(f"{path[-1]!r} is {found!r}, not {value!r}")
    if problems:
        yield f"{label}: " + run.told(problems)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--tool", required=True)
    parser.add_argument("--simulator", required=True)
    arguments = parser.parse_args()
    simulated = Simulated(arguments.tool, arguments.simulator)
    with tempfile.TemporaryDirectory(prefix="tolk-texts-") as name:
        with concurrent.futures.ThreadPoolExecutor() as pool:
            found = pool.map(lambda item: [*check(simulated, pathlib.Path(name), *item)], TEXTS.items())
            failures = [failure for one in found for failure in one]
    print("\n\n".join(failures))
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
