#!/usr/bin/env python3
"""Runs commands that change GPUs beside each other and beside queries, all on one host.

usage: together.py --tool FILE --simulator FILE
"""
import pathlib
import shlex
import sys
import tempfile

from changing import (DOCUMENTED, HOSTS, LOOK, Simulated, is_documented, nodes_disagree)

# Each row at the same time, every command of it so often.
ROUNDS = 3
ROWS = (
    (["-r", "2", "-i", "0"], ["-r", "2", "-i", "2"]),
    (["-r", "2", "-i", "0"], ["-q", "-i", "1"], ["-L"]),
    (["-e", "1", "-i", "0"], ["-e", "0", "-i", "2"], []),
    (["-pl", "200", "-i", "0"], ["-pl", "150", "-i", "0", "-o", "1"], ["-r", "0", "-i", "0"]),
    (["mpc", "-enable", "-i", "2"], ["mpc", "-disable", "-i", "2"], ["-q"]),
    (["mpc", "-cm", "0", "-i", "3"], ["mpc", "-cm", "1", "-i", "3"], ["mpc", "-lmi", "-i", "3"], ["-L"]),
)
# What a query may end with while devices come and go.
QUERY_STATUSES = {0, 1, 3, 4, 5, 6}


def ended_well(command, status, out, err):
    if err or (out and not out.endswith(b"\n")):
        return False
    if command and command[0] in DOCUMENTED:
        out = out.replace(b" to 150W", b" to 200W")
        return is_documented(command[0], status, out)
    return status in QUERY_STATUSES


def check(simulated, folder, commands):
    script = []
    for number, command in enumerate(commands):
        line = shlex.join(command)
        loop = "; ".join(f"$tool {line} >{number}.{turn}.out 2>{number}.{turn}.err; echo $? >{number}.{turn}.status"
                         for turn in range(ROUNDS))
        script.append(f"({loop}) &")
    script.append(f"wait; $tool -L; echo $?; {LOOK}")
    run = simulated.run_script(HOSTS / "several.json", "\n".join(script), folder=folder)
    for number, command in enumerate(commands):
        for turn in range(ROUNDS):
            status, out, err = (folder.joinpath(f"{number}.{turn}.{end}").read_bytes()
                                for end in ("status", "out", "err"))
            if not ended_well(command, int(status), out, err):
                yield run.told([f"{shlex.join(command)}: status {int(status)}", out.decode(errors="replace"),
                                err.decode(errors="replace")])
    listed = [line for line in run.out.decode(errors="replace").splitlines() if "(UUID" in line]
    rest = run.out.decode(errors="replace").splitlines()[len(listed):]
    complaints = [*nodes_disagree(rest[1:], len(listed)), *([run.err.decode()] if run.err else [])]
    if rest[:1] != ["0"] or complaints:
        yield run.told([*complaints, run.out.decode(errors="replace")])


def main():
    simulated = Simulated.of_command_line()
    failures = []
    for commands in ROWS:
        with tempfile.TemporaryDirectory(prefix="tolk-changes-") as name:
            failures += check(simulated, pathlib.Path(name), commands)
    print("\n\n".join(failures))
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
