"""Runs the tool on simulated hosts that give it trouble, and judges what came of it."""
import argparse
import dataclasses
import os
import shlex
import subprocess

# As the tool's own, so that a sanitizer's report is told from it.
SANITIZER_STATUS = 99
STATUSES = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 255}
ABORTED = 134
TIME_LIMIT = 30


@dataclasses.dataclass
class Run:
    command: list
    status: int
    out: bytes
    err: bytes

    def complaints(self):
        """What no trouble excuses, as texts; none when all is well."""
        found = []
        if self.status not in STATUSES:
            found.append(f"status {self.status}")
        if self.err:
            found.append("standard error:\n" + self.err.decode(errors="replace")[:4000])
        # Who succeeds may have nothing to tell.
        if not self.out.endswith(b"\n") and (self.out or self.status != 0):
            found.append(f"the output is not whole lines: {self.out[-200:]!r}")
        return found

    def told(self, complaints):
        return shlex.join(self.command) + "\n  " + "\n  ".join(complaints)


class Simulated:
    """The tool on a host."""

    def __init__(self, tool, simulator):
        self.tool = tool
        self.simulator = simulator
        sanitizer = f"exitcode={SANITIZER_STATUS}"
        self.environment = {**os.environ, "TZ": "UTC", "LC_ALL": "C", "ASAN_OPTIONS": sanitizer,
                            "LSAN_OPTIONS": sanitizer, "TSAN_OPTIONS": sanitizer,
                            "UBSAN_OPTIONS": sanitizer + ":print_stacktrace=1"}

    @classmethod
    def of_command_line(cls):
        """The programs that "--tool" and "--simulator" name, for a script with no other options."""
        parser = argparse.ArgumentParser()
        parser.add_argument("--tool", required=True)
        parser.add_argument("--simulator", required=True)
        given = parser.parse_args()
        return cls(given.tool, given.simulator)

    def run(self, host, arguments, options=(), before="", after="", folder=None):
        """`before` and `after` are a shell's words around the tool's command."""
        tool = [self.tool, *arguments]
        if before or after:
            return self.run_script(host, f"{before} {shlex.join(tool)} {after}", options, folder)
        return self._start([self.simulator, "--host", str(host), *options, "--", *tool], folder)

    def run_script(self, host, script, options=(), folder=None):
        """A shell's script, in which the tool is "$tool"."""
        return self._start([self.simulator, "--host", str(host), *options, "--", "/bin/sh", "-c", script], folder)

    def _start(self, command, folder):
        try:
            done = subprocess.run(command, env={**self.environment, "tool": self.tool}, cwd=folder,
                                  stdin=subprocess.DEVNULL, capture_output=True, timeout=TIME_LIMIT)
            return Run(command, done.returncode, done.stdout, done.stderr)
        except subprocess.TimeoutExpired as late:
            return Run(command, -1, late.stdout or b"", f"still running after {TIME_LIMIT} s".encode())
