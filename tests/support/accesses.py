"""What a run asks of its host, as the trace tells it, and the ways in which each access can go wrong."""
import os.path
import typing

IOCTL_WAYS = ("errno=EIO", "status=11", "ones", "gone")
LOOK_WAYS = ("errno=ENOENT", "errno=EACCES")
OPEN_WAYS = ("errno=EACCES", "text=garbage", "text=")
# Nodes hold nothing that could be read.
NODE_WAYS = ("errno=ENODEV", "errno=EACCES")
MAP_WAYS = ("errno=ENOMEM",)
# The simulator's own proof that the host is in place.
PROOF = "/sys/.ovgpu-sim"


class Access(typing.NamedTuple):
    # As a fault names it.
    target: str
    # What was asked, whoever was asked.
    kind: tuple
    # The node's name, or the path.
    subject: str
    ways: tuple


def accesses(trace):
    """Every access in order."""
    ioctls = 0
    counts = {}
    maps = {}
    for line in trace.read_text().splitlines():
        operation, subject, *question, _ = line.removesuffix(" unexpected").split(" ")
        if operation == "ioctl":
            ioctls += 1
            yield Access(f"ioctl#{ioctls}", tuple(question), subject, IOCTL_WAYS)
            continue
        # Closing, and taking memory back, does not fail.
        if operation in ("close", "munmap"):
            continue
        if operation == "mmap":
            maps[subject] = maps.get(subject, 0) + 1
            yield Access(f"map({subject})#{maps[subject]}", ("map", subject), subject, MAP_WAYS)
            continue
        counts[subject] = counts.get(subject, 0) + 1
        if subject == PROOF:
            continue
        ways = LOOK_WAYS
        if operation == "open":
            ways = NODE_WAYS if subject.startswith("/dev/") else OPEN_WAYS
        yield Access(f"file({subject})#{counts[subject]}", (subject,), subject, ways)


def begin_in_common(one, other):
    """How many accesses two commands begin with alike."""
    return len(os.path.commonprefix([one, other]))
