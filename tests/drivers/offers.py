"""What the tool asked of a host's drivers, and what of that they had not offered."""
import dataclasses
import pathlib
import shlex
import subprocess
import sys
import tempfile

sys.path.append(str(pathlib.Path(__file__).resolve().parents[1] / "support"))
from simulated import Run, Simulated  # noqa: E402

# For all commands together.
TIME_LIMIT = 120
# Other suites look for leaks; here that is a fifth of the time.
NO_LEAKS = ":detect_leaks=0"
# Whoever asks which protocol a driver speaks cannot know yet.
PROBE = "probe"


@dataclasses.dataclass
class Asked:
    runs: list
    # Requests that are no probes.
    requests: int
    # As the simulator tells them: how often, node, kind, interface and version.
    unexpected: list
    # Paths of nodes that were opened although they are never there.
    absent: list


def command_lines(path):
    """The arguments of every line."""
    for line in pathlib.Path(path).read_text().splitlines():
        if line and not line.startswith("#"):
            _, *arguments = shlex.split(line)
            yield arguments


def ask(simulated: Simulated, host, lines, options=()):
    """Runs the tool once for each line, one after the other on one host, where a host takes longer to build
    than the tool to run."""
    with tempfile.TemporaryDirectory(prefix="tolk-drivers-") as name:
        folder = pathlib.Path(name)
        trace, unexpected = folder / "trace", folder / "unexpected"
        tools = [shlex.join([simulated.tool, *line]) for line in lines]
        script = "\n".join(f"{tool} >{i}.out 2>{i}.err; echo $? >{i}.status" for i, tool in enumerate(tools))
        environment = {**simulated.environment, "ASAN_OPTIONS": simulated.environment["ASAN_OPTIONS"] + NO_LEAKS}
        subprocess.run([simulated.simulator, "--host", host, *options, "--trace", str(trace),
                        "--unexpected", str(unexpected), "--", "/bin/sh", "-c", script],
                       cwd=folder, env=environment, stdin=subprocess.DEVNULL, timeout=TIME_LIMIT, check=True)
        runs = [Run([simulated.simulator, "--host", host, *options, "--", simulated.tool, *line],
                    int((folder / f"{i}.status").read_text()), (folder / f"{i}.out").read_bytes(),
                    (folder / f"{i}.err").read_bytes()) for i, line in enumerate(lines)]
        calls = [line.split(" ") for line in trace.read_text().splitlines()]
        requests = sum(call[0] == "ioctl" and call[2] != PROBE for call in calls)
        opens = [call for call in calls if call[0] == "open" and call[1].startswith("/dev/")]
        absent = {call[1] for call in opens if call[2] == "ENOENT"} - {call[1] for call in opens if call[2] == "ok"}
        return Asked(runs, requests, unexpected.read_text().splitlines(), sorted(absent))
