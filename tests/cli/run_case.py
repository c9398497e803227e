#!/usr/bin/env python3
"""Runs the tool on a simulated host and compares what it does with what a case expects.

usage: run_case.py --tool FILE [--simulator FILE] [--tier TIER] [--log-reader FILE] CASE.json...

README.md beside this file tells the format of a case. UPDATE_GOLDEN=1 rewrites expected outputs.
Exit status: 0 as expected, 1 not, 77 the case needs a program that was not built.
"""
import argparse
import difflib
import json
import os
import pathlib
import re
import shlex
import signal
import struct
import subprocess
import sys
import tempfile
import threading

SKIPPED = 77
UPDATE = os.environ.get("UPDATE_GOLDEN") == "1"
STAMP = r"\[\d{4}\.\d+\.\d+ \d+:\d+:\d+\.\d+\] "


class Failure(Exception):
    """What differs, as a text to show."""


class Skip(Exception):
    """Why the case cannot run here."""


def visible(text):
    """A line with its blanks, tabs and end shown."""
    shown = text.rstrip("\n").replace(" ", "·").replace("\t", "→")
    return shown + ("⏎" if text.endswith("\n") else "")


def difference(expected, actual):
    lines = difflib.unified_diff(
        [visible(line) for line in expected.splitlines(keepends=True)],
        [visible(line) for line in actual.splitlines(keepends=True)],
        "expected", "actual", lineterm="")
    return "\n".join(lines)


def interrupted(process, lines, limit):
    """The first lines of a program that Ctrl+C ends as soon as they are there, and its standard error."""
    too_late = threading.Timer(limit, os.killpg, (process.pid, signal.SIGKILL))
    too_late.start()
    out = b"".join(process.stdout.readline() for _ in range(lines))
    os.killpg(process.pid, signal.SIGINT)
    err = process.communicate()[1]
    too_late.cancel()
    return out, err


class Runner:
    """The programs that a case needs."""

    def __init__(self, tool, simulator, tier, log_reader):
        self.tool = tool
        self.simulator = simulator
        self.tier = tier
        self.log_reader = log_reader

    def command(self, case, folder, scratch):
        args = case.get("args", [])
        if isinstance(args, str):
            args = shlex.split(args)
        args = [arg.replace("{tmp}", str(scratch)) for arg in args]
        host = case.get("host", "none")
        faults = case.get("faults", [])
        if not self.simulator:
            if host != "none" or faults or "user" in case:
                raise Skip("needs ovgpu-sim")
            return [self.tool, *args]
        if isinstance(host, dict):
            path = scratch / "host.json"
            path.write_text(json.dumps(host))
            host = str(path)
        elif host.endswith(".json"):
            host = str(folder / host)
        options = ["--tier", self.tier, "--host", host]
        for fault in faults:
            options += ["--fault", fault]
        if "user" in case:
            options += ["--user", str(case["user"])]
        return [self.simulator, *options, "--", self.tool, *args]

    def run(self, case, folder, scratch):
        """Standard output, standard error and the status as a shell tells it."""
        environment = {**os.environ, "TZ": "UTC", "LC_ALL": "C", **case.get("env", {})}
        environment.pop("UPDATE_GOLDEN", None)
        work = scratch / "work"
        work.mkdir(exist_ok=True)
        with subprocess.Popen(
                self.command(case, folder, scratch), cwd=work, env=environment, stdin=subprocess.DEVNULL,
                stdout=subprocess.PIPE, stderr=subprocess.PIPE, start_new_session=True) as process:
            limit = case.get("timeout", 30)
            try:
                if "interrupt_after" in case:
                    out, err = interrupted(process, case["interrupt_after"], limit)
                else:
                    out, err = process.communicate(timeout=limit)
            except subprocess.TimeoutExpired:
                os.killpg(process.pid, signal.SIGKILL)
                out, err = process.communicate()
                raise Failure(f"still running at the time limit; so far it printed\n{out.decode(errors='replace')}")
        status = process.returncode
        return out.decode(errors="surrogateescape"), err.decode(errors="replace"), status if status >= 0 else 128 - status

    def log_lines(self, path):
        """The deciphered lines of a debug log, after a look at its records."""
        content = path.read_bytes()
        at = 0
        while at < len(content):
            if at + 4 > len(content):
                raise Failure(f"{path.name}: a record is cut at byte {at}")
            (length,) = struct.unpack_from("<I", content, at)
            end = at + 4 + length
            if length % 16 != 0 or content[end:end + 2] != b"\0\n":
                raise Failure(f"{path.name}: no whole record at byte {at}")
            at = end + 2
        if not self.log_reader:
            raise Skip("needs the reader of debug logs")
        return subprocess.run([self.log_reader, str(path)], check=True, capture_output=True,
                              text=True).stdout.splitlines()


def check_files(case, work):
    for name, kind in case.get("files", {}).items():
        path = work / name
        found = "folder" if path.is_dir() else "file" if path.is_file() else "absent"
        if found != kind:
            raise Failure(f"{name} is {found}, expected {kind}")


def log_patterns(lines):
    return [re.sub(r"\{([TDIWEF])\}", lambda level: STAMP + level[1] + r"/\d+", line) for line in lines]


def check_log(runner, case, work):
    expected = case.get("log")
    if expected is None:
        return
    lines = runner.log_lines(work / expected["path"])
    if "lines" in expected:
        patterns = log_patterns(expected["lines"]) * case.get("runs", 1)
        found = len(lines) == len(patterns) and all(re.fullmatch(p, line) for p, line in zip(patterns, lines))
    else:
        patterns = log_patterns(expected["has"])
        rest = iter(lines)
        found = all(any(re.fullmatch(p, line) for line in rest) for p in patterns)
    refused = [line for p in log_patterns(expected.get("lacks", [])) for line in lines if re.fullmatch(p, line)]
    if found and not refused:
        return
    raise Failure("debug log\nexpected, as expressions:\n  " + "\n  ".join(patterns) +
                  "".join("\nnot expected:\n  " + visible(line) for line in refused) +
                  "\nactual:\n  " + "\n  ".join(visible(line) for line in lines))


def check(runner, case, folder):
    """Runs a case and returns its output; the caller compares that."""
    with tempfile.TemporaryDirectory(prefix="tolk-cli-") as name:
        scratch = pathlib.Path(name).resolve()
        for _ in range(case.get("runs", 1)):
            out, err, status = runner.run(case, folder, scratch)
            if status != case.get("status", 0):
                raise Failure(f"status {status}, expected {case.get('status', 0)}\n{visible_block(out)}{err}")
            if err and not case.get("errors", False):
                raise Failure(f"standard error is not empty:\n{err}")
        check_files(case, scratch / "work")
        check_log(runner, case, scratch / "work")
        return out.replace(str(scratch), "{tmp}")


def visible_block(text):
    return "".join(visible(line) + "\n" for line in text.splitlines(keepends=True))


def run_case(runner, path):
    """A folder with one case and its expected output."""
    case = json.loads(path.read_text())
    golden = path.parent / "expected.out"
    out = check(runner, case, path.parent)
    expected = case["out"] if "out" in case else golden.read_bytes().decode(errors="surrogateescape")
    if out == expected:
        return
    if not UPDATE or "out" in case:
        raise Failure(difference(expected, out))
    golden.write_bytes(out.encode(errors="surrogateescape"))


def write_table(path, table):
    """Rows stay on one line each."""
    head = {key: value for key, value in table.items() if key != "rows"}
    start = json.dumps(head, indent=2, ensure_ascii=False)[:-2] + ",\n" if head else "{\n"
    rows = ",\n".join("    " + json.dumps(row, ensure_ascii=False) for row in table["rows"])
    path.write_text(start + '  "rows": [\n' + rows + "\n  ]\n}\n")


def hosts_of(row, table):
    for place in (row, table):
        if "host" in place:
            return [place["host"]]
    return table.get("hosts", ["none"])


def run_table(runner, path):
    """Many small cases in one file; every row is tried on every host, and all failures are told."""
    table = json.loads(path.read_text())
    shared = {key: value for key, value in table.items() if key not in ("rows", "texts", "hosts")}
    texts = table.get("texts", {})
    failures, changed, skipped, tried = [], False, [], 0
    for row in table["rows"]:
        for host in hosts_of(row, table):
            case = {**shared, **row, "host": host}
            named = row["out"].startswith("@")
            expected = texts[row["out"][1:]] if named else row["out"]
            try:
                out = check(runner, case, path.parent)
                tried += 1
                if out == expected:
                    continue
                if UPDATE:
                    row["out"], changed = out, True
                    continue
                raise Failure(difference(expected, out))
            except Skip as reason:
                skipped.append(str(reason))
            except Failure as failure:
                failures.append(f"row {case['args']!r} on host {host!r}: {failure}")
    if changed:
        write_table(path, table)
    if failures:
        raise Failure("\n\n".join(failures))
    if skipped and not tried:
        raise Skip(skipped[0])


def tell(runner, path):
    """Runs a case, says what is wrong with it, and returns the status to end with."""
    run = run_table if path.name == "rows.json" else run_case
    try:
        run(runner, path)
    except Skip as reason:
        print(f"skipped: {reason}")
        return SKIPPED
    except Failure as failure:
        print(f"{path.parent.name}: {failure}")
        return 1
    return 0


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--tool", required=True)
    parser.add_argument("--simulator")
    parser.add_argument("--tier", default="preload")
    parser.add_argument("--log-reader")
    parser.add_argument("cases", type=pathlib.Path, nargs="+")
    arguments = parser.parse_args()
    if arguments.simulator and arguments.tier != "preload":
        tried = subprocess.run([arguments.simulator, "--tier", arguments.tier, "--host", "none", "--", "true"],
                               capture_output=True, text=True, check=False)
        if tried.returncode == SKIPPED:
            print(f"skipped: {tried.stderr}")
            return SKIPPED
    runner = Runner(arguments.tool, arguments.simulator, arguments.tier, arguments.log_reader)
    ends = {tell(runner, path) for path in arguments.cases}
    return 1 if 1 in ends else 0 if 0 in ends else SKIPPED


if __name__ == "__main__":
    sys.exit(main())
