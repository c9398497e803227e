#!/usr/bin/env python3
"""Shows what becomes of an old driver's list that is much longer than any driver's.

usage: long_lists.py --tool FILE --simulator FILE
"""
import concurrent.futures
import json
import pathlib
import sys
import tempfile

from offers import Simulated, ask

LIST = [["-L"]]
# What a driver may have; it is asked for no further page then, and a page has 20.
MOST = 65535
PAGE = 20
# Behind names that the tool does not know. The last is where the uuid comes from.
KNOWN = (2, 3, 4, 6, 8, 56, 62)
UNKNOWN = 1000
BY_CHIP = b"GPU 0 : OVT B230   (UUID : 542edaba-b3a7-c3d1-4778-bc5ad6694c54)\n"
BY_NODE = b"GPU 0 : OVT B230   (UUID : 00000000-0000-0000-0000-000000000000)\n"
EXPECTED = {len(KNOWN): BY_CHIP, MOST: BY_CHIP, MOST + PAGE + len(KNOWN): BY_NODE}


def listed(count):
    names = [*range(UNKNOWN, UNKNOWN + count - len(KNOWN)), *KNOWN]
    return [{"name": name, "min": 0, "max": 0} for name in names]


def main():
    simulated = Simulated.of_command_line()
    failures = []
    with tempfile.TemporaryDirectory(prefix="tolk-drivers-") as name:
        def list_gpus(count):
            host = pathlib.Path(name, f"{count}.json")
            host.write_text(json.dumps({"extends": "legacy", "interfaces": listed(count)}))
            return ask(simulated, str(host), LIST)

        with concurrent.futures.ThreadPoolExecutor() as pool:
            for (count, expected), asked in zip(EXPECTED.items(), pool.map(list_gpus, EXPECTED)):
                run = asked.runs[0]
                complaints = run.complaints() + asked.unexpected
                if run.out != expected or complaints:
                    failures.append(f"{count} interfaces: " + run.told([*complaints, repr(run.out)]))
    print("\n".join(failures))
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
