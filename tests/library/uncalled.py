#!/usr/bin/env python3
"""Tells which functions of the header the tests of this folder leave out.

usage: uncalled.py HEADER FOLDER

A function has to be called where it answers, and where it refuses for another reason than a null pointer.
Both are told by the texts of the tests: a row of the table of kinds has a 'y' where a kind of device answers
and a digit or 'u' where it refuses; elsewhere a call stands before the code that is expected of it, or before
a text that begins with "refused " where it refuses. Tests in process count for refusals alone: to answer, a
function needs a host.

Exit status: 0 when nothing is missing.
"""
import pathlib
import re
import sys

FUNCTION = re.compile(r"\b(lumo[A-Z]\w*)\s*\(")
ROW = re.compile(r'\{"(lumo\w+)", "([y4-9u3! ]+)"\}')
EXPECTATION = re.compile(r"\b(?:EXPECT|ASSERT)_(?:EQ|STREQ|NE)\(|\bSTEP\(|\bEXPECT_INVALID\(|\bEXPECT_TOO_SMALL\(")
# Counters that no device has are never sampled.
NEVER_ANSWER = {"lumoDeviceStartPfm", "lumoDeviceStopPfm", "lumoPfmSampleGet"}
# What answers for every device, and refuses dead handles alone, as a test of all functions does.
NEVER_REFUSE = {"lumoReturnText", "lumoDeviceCountPciNicDevices", "lumoDeviceGetIntId", "lumoDeviceGetType",
                "lumoDeviceGetSupportedEventTypes", "lumoDeviceIsPfmSupported", "lumoDeviceInitGpu",
                "lumoDeviceInitMemory", "lumoDeviceInitVpu"}
# A text, which is no code.
TEXT = {"lumoReturnText"}


def arguments(text, start):
    """The text between the parenthesis at `start` - 1 and the one that closes it."""
    depth = 1
    for place in range(start, len(text)):
        depth += {"(": 1, ")": -1}.get(text[place], 0)
        if depth == 0:
            return text[start:place]
    return text[start:]


def judge(macro, body):
    """Whether an expectation is of an answer, of a refusal, or of neither."""
    if "EXPECT_INVALID" in macro or "EXPECT_TOO_SMALL" in macro:
        return "refuses"
    if "LUMO_RETURN_SUCCESS" in body:
        return "answers"
    if "LUMO_RETURN_" in body or '"refused ' in body or "kNotSupported" in body:
        return "refuses"
    return "answers" if re.search(r"\bask\w*\(", body) else "neither"


def main():
    header, folder = (pathlib.Path(argument) for argument in sys.argv[1:])
    plain = re.sub(r"/\*.*?\*/", "", header.read_text(), flags=re.S)
    exported = set(FUNCTION.findall(plain))
    found = {"called": set(), "answers": set(), "refuses": set(), "neither": set()}
    for path in sorted(folder.rglob("*")):
        if path.suffix not in {".cpp", ".h", ".c"}:
            continue
        text = path.read_text()
        found["called"] |= set(re.findall(r"\blumo[A-Z]\w*", text))
        for name, kinds in ROW.findall(text):
            found["answers"] |= {name} if "y" in kinds else set()
            found["refuses"] |= {name} if kinds.strip("y ") else set()
        for match in EXPECTATION.finditer(text):
            body = arguments(text, match.end())
            verdict = judge(match.group(), body)
            if verdict == "answers" and "in_process" in path.parts:
                continue
            found[verdict] |= set(re.findall(r"\blumo[A-Z]\w*", body))
    missing = 0
    for what, needed in (("called", exported), ("answers", exported - NEVER_ANSWER - TEXT),
                         ("refuses", exported - NEVER_REFUSE)):
        for name in sorted(needed - found[what]):
            print(f"{name}: no test in which it {'is called' if what == 'called' else what}")
            missing += 1
    print(f"{len(exported)} functions, {missing} gaps")
    return 1 if missing or not exported else 0


if __name__ == "__main__":
    sys.exit(main())
