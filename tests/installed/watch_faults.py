#!/usr/bin/env python3
"""Lets simulated GPUs report faults while the example program watches, and looks for them in the log afterwards.

usage: watch_faults.py --simulator FILE --tool FILE PROGRAM

Exit status: 0 each fault was printed as it was raised and soon enough, and was stored; 1 not.
"""
import argparse
import re
import subprocess
import sys
import time

# Soon enough for the quickest of all: a busy machine may let the program wait for its turn.
MOST_SECONDS = 0.1
FAULTS = [
    ("0 31 pid=4242 scope=device severity=fatal 'text=mmu fault at 0x7f00'",
     "GPU 0 XID 31 severity 3 scope 2 pid 4242: mmu fault at 0x7f00"),
    ("1 13", "GPU 1 XID 13 severity 2 scope 0 pid 0: "),
    ("0 8 scope=link severity=warning", "GPU 0 XID 8 severity 1 scope 3 pid 0: "),
]
# Newest first, behind the name of each GPU, before what the host had stored already.
STORED = [
    "GPU0", "XID:8 Severity:1 Scope:3 Pid:0 Additional:",
    "XID:1f Severity:3 Scope:2 Pid:4242 Additional:mmu fault at 0x7f00",
    "XID:1f Severity:2 Scope:1 Pid:4242 Additional:mmu fault at 0x7f00",
    "XID:d Severity:1 Scope:0 Pid:0 Additional:",
    "GPU1", "XID:d Severity:2 Scope:0 Pid:0 Additional:",
]
# Raises a fault for each line that comes, tells when that is done, and searches in the end.
ON_HOST = ('"$0" %d & while read -r what; do eval "ovgpu-sim-raise $what"; echo raised; done; wait; '
           '"$1" event -s 1' % len(FAULTS))


def stored(lines):
    """Names and messages without the times."""
    return [re.sub(r" UUID:.*|^    \d+ +:  | Timestamp:\d+", "", line) for line in lines]



def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--simulator", required=True)
    parser.add_argument("--tool", required=True)
    parser.add_argument("program")
    options = parser.parse_args()

    with subprocess.Popen([options.simulator, "--host", "bare", "--", "sh", "-c", ON_HOST, options.program,
                           options.tool], stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True) as host:
        lines = [host.stdout.readline().rstrip("\n")]
        expected = ["listening to 2 GPUs"]
        delays = []
        for what, line in FAULTS:
            host.stdin.write(what + "\n")
            host.stdin.flush()
            # The watcher may be quicker than the one who reports that the fault was raised.
            seen = {}
            for _ in range(2):
                text = host.stdout.readline().rstrip("\n")
                seen[text] = time.monotonic()
            lines += [text for text in seen if text != "raised"]
            expected.append(line)
            if len(seen) == 2 and "raised" in seen:
                delays.append(max(seen.values()) - seen["raised"])
        host.stdin.close()
        lines += stored(host.stdout.read().splitlines())
        expected += STORED
    if lines != expected or host.returncode != 0:
        sys.exit(f"expected {expected}\nprinted  {lines}\nstatus   {host.returncode}")
    print("seconds until printed:", " ".join(f"{delay:.3f}" for delay in delays))
    return 0 if min(delays) <= MOST_SECONDS else 1


if __name__ == "__main__":
    sys.exit(main())
