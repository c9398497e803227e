"""The commands that change a GPU: what they may say, and what of a host they may touch."""
import pathlib
import re
import sys

sys.path.append(str(pathlib.Path(__file__).resolve().parents[1] / "support"))
from accesses import Access, accesses, begin_in_common  # noqa: E402,F401
from simulated import Simulated  # noqa: E402,F401

HOSTS = pathlib.Path(__file__).with_name("hosts")
KILLED = 137

# Interfaces that change a device: MPC configuration and mode, resets of Sablink counters, GPU, messages, error
# counts and device, ECC mode, performance state, ECC counts, power limit.
CHANGING = {"12", "15", "21", "29", "43", "44", "49", "50", "68", "70", "76"}

SBDF = "[0-9a-f]{8}:[0-9a-f]{2}:[0-9a-f]{2}\\.[0-9a-f]"
NOT_STARTED = {
    "Error: failed to load driver.": 8,
    "Error: failed to initialize orvane-tolk.": 2,
    "Error: failed to get the number of GPU device": 4,
}
NO_DEVICE = {"Error: no OV GPU device found.": 3}
NOT_AVAILABLE = {"Error: the requested operation is not available on target device": 1}
UNSUPPORTED = {"Error: the requested operation is not supported by installed driver.": 1}
TABLE = "(.*\n)*-+"

# By the word that names the command: every text that it may print, and the status that goes with it.
DOCUMENTED = {
    "-r": {
        **NOT_STARTED, **NO_DEVICE,
        f"reset GPU {SBDF} success.": 0,
        f"gpu {SBDF} is currently in use by another process.\n"
        "1 device is currently being used by one or more other process "
        r"\(e.g.,VELA application,graphics application such as an X server or a" "\n"
        r"monitoring application such as another instance of orvane-tolk\). "
        "Please first kill processes using this device.": 0,
        f"Error: gpu reset couldn't run because GPU {SBDF} is not physical device.": 0,
        "Error: reset gpu is not supported by installed driver.": 1,
        "Error: unable to reset GPU insufficient permissions.": 9,
        "Error: failed to find the specified GPU device.": 5,
        "Error: failed to reset with the given option": 255,
    },
    "-e": {
        **NOT_STARTED, **NO_DEVICE, **NOT_AVAILABLE, **UNSUPPORTED,
        f"(Enable|Disable) Inline ECC mode for {SBDF} (Successfully|Unsuccessfully)": 0,
        # A device whose address is not told has no line.
        "": 0,
        "Error: failed to find the specified GPU device, index = [0-9]+": 5,
    },
    "-pl": {
        **NOT_STARTED, **NO_DEVICE, **UNSUPPORTED,
        "set power limit to 200W successfully, device index = 0, persistent option = (true|false)": 0,
        "Error: set power limit couldn't run because device index = 0 is not physical device.": 0,
        "Error: failed to find the specified GPU device.": 5,
        "Error: failed to reset with the given option": 255,
        "Error: unable to query power limit constraints, device may not support this feature": 1,
        r"Error: invalid power limit value, min = [0-9]+\.[0-9]{3}, max = [0-9]+\.[0-9]{3}": 5,
        "Error: failed to set power limit with the given option": 255,
    },
    "mpc": {
        **NOT_STARTED, **NOT_AVAILABLE,
        "Error: No OV GPU device found.": 3,
        "Error: index is invalid": 5,
        "(Enable|Disable|Configure) MPC mode successfully": 0,
        "Error: target device is not mpc parent": 1,
        f"Supported profiles:\n{TABLE}": 0,
        f"-+\nID .*\n{TABLE}": 0,
    },
}


def is_documented(command, status, out):
    text = out.decode(errors="replace").removesuffix("\n")
    return any(status == known and re.fullmatch(words, text) for words, known in DOCUMENTED[command].items())


def complaints_of(command, run):
    """What the run did that it may not."""
    found = run.complaints() if run.out or command != "-e" else [f for f in [run.err.decode()] if f]
    if not is_documented(command, run.status, run.out):
        found.append(f"no documented end: status {run.status}, output\n{run.out.decode(errors='replace')}")
    return found


def changes_of(trace):
    """The requests that change a device, as lines."""
    for line in trace.read_text().splitlines():
        operation, *words = line.split(" ")
        if operation == "ioctl" and words[1] == "record" and words[2] in CHANGING:
            yield line


def touched_others(trace, node):
    return [f"changes another device: {line}" for line in changes_of(trace) if line.split(" ")[1] != node]


# What `LOOK` prints is judged by `nodes_disagree`.
LOOK = ("ls -1d /dev/ovgpu.* /dev/dri/* /sys/bus/pci/drivers/ovgpu/*/misc/* /sys/bus/pci/drivers/ovgpu/*/drm/*; "
        "cat /proc/driver/vela/gpu*/devname")


def nodes_disagree(lines, listed):
    """`lines` of `LOOK` against each other, and the devices that the tool lists."""
    devices = {line.rsplit("/", 1)[1] for line in lines if line.startswith("/dev/")}
    told = {line.rsplit("/", 1)[1] for line in lines if line.startswith("/sys/")}
    main = {line for line in lines if not line.startswith("/")}
    misc = {name for name in devices if name.startswith("ovgpu.")}
    if devices != told:
        yield f"nodes in /dev {sorted(devices)}, in sysfs {sorted(told)}"
    if not main <= misc:
        yield f"the driver names {sorted(main)}, there are {sorted(misc)}"
    if len(misc) != listed:
        yield f"{listed} devices are listed, there are {sorted(misc)}"
