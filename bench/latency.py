"""Runs jobs on a file system that answers late, as one on a network does.

bindfs shows a directory at a second place, and strace delays each call that it makes on a file. So
only the data are slow, not the programs; what the kernel remembers, and what it asks for again, is
as on any file system outside the kernel.
"""

import collections
import contextlib
import dataclasses
import os
import re
import shutil
import statistics
import subprocess
import tempfile
import time

DELAYS = (0, 100, 500)  # microseconds for each request
COUNTING_DELAY = 2000  # far above what a call takes that doesn't wait

# What bindfs calls, once for each request: for a name, to open a file or list a directory, to read,
# to write. It calls none of these where a network file system doesn't wait either.
REQUESTS = ("lstat", "openat", "pread64", "pwrite64")
# Other calls may also take long, such as those on threads.
FILE_CALLS = "%file,read,pread64,readv,write,writev,getdents64,close,fstat,lseek,fcntl,ioctl"


def missing():
    """What this machine lacks."""
    lacking = [f"{command} (Debian: {command})" for command in ("bindfs", "strace")
               if shutil.which(command) is None]  # fmt: skip
    if not lacking:
        try:
            with tempfile.TemporaryDirectory() as directory, slowed(directory, 0):
                pass
        except (OSError, RuntimeError) as failure:
            lacking.append(f"a file system in user space, as root: {failure}")
    return lacking


@contextlib.contextmanager
def slowed(directory, delay, log=os.devnull):
    """Shows the directory at the yielded place, and logs the requests. The kernel knows none of its
    files yet; from then on it remembers names for half a minute, as an NFS client does."""
    place = tempfile.mkdtemp(prefix="vqvec-bench-")
    calls = ",".join(REQUESTS)
    command = ["strace", "-f", "-qq", "--seccomp-bpf", "-o", log, "-e", f"trace={calls}",
               "-e", f"inject={calls}:delay_enter={delay}",
               "bindfs", "-f", "--multithreaded",
               "-o", "big_writes,entry_timeout=30,attr_timeout=30",
               str(directory), place]  # fmt: skip
    server = subprocess.Popen(command)
    try:
        deadline = time.monotonic() + 20
        while not os.path.ismount(place):
            if server.poll() is not None or time.monotonic() > deadline:
                raise RuntimeError(f"cannot mount {directory}")
            time.sleep(0.01)
        try:
            yield place
        finally:
            subprocess.run(["fusermount", "-u", place], check=True)
    finally:
        server.terminate()
        server.wait()
        os.rmdir(place)


def run(job, directory, before=()):
    """The seconds that the job took."""
    work = os.path.join(directory, "work")
    began = time.monotonic()
    subprocess.run([*before, *job.command], cwd=work, check=True, stdout=subprocess.DEVNULL)
    return time.monotonic() - began


def count_requests(job, directory):
    with tempfile.NamedTemporaryFile("r") as log:
        with slowed(directory, 0, log.name) as place:
            begin = os.fstat(log.fileno()).st_size
            run(job, place)
            log.seek(begin)
            return len(re.findall(rf"^\d+ +(?:{'|'.join(REQUESTS)})\(", log.read(), re.MULTILINE))


def file_calls(job, directory):
    """How many calls on files the job makes, how many of them fail, and how many wait, by name."""
    with tempfile.NamedTemporaryFile("r") as log, slowed(directory, COUNTING_DELAY) as place:
        run(job, place, ["strace", "-f", "-qq", "-T", "-e", f"trace={FILE_CALLS}", "-o", log.name])
        ends = re.findall(
            r"(\w+)(?:\(| resumed>).* = (\S+).* <(\d+\.\d+)>$", log.read(), re.MULTILINE)
    return (
        len(ends),
        sum(result == "-1" for _, result, _ in ends),
        collections.Counter(
            name for name, _, seconds in ends if float(seconds) * 1e6 >= COUNTING_DELAY / 2),
    )  # fmt: skip


@dataclasses.dataclass(frozen=True)
class Counts:
    """Of one job, for each task."""

    calls: float
    failing: float
    waiting: dict  # by name of the call
    requests: float


def count(job, few, many, tasks):
    """`few` and `many` are directories; the second has so many tasks more."""

    def per_task(less, more):
        return (more - less) / tasks

    *less, waiting_less = file_calls(job, few)
    *more, waiting_more = file_calls(job, many)
    return Counts(
        *map(per_task, less, more),
        {name: per_task(waiting_less[name], waiting_more[name]) for name in sorted(waiting_more)},
        per_task(count_requests(job, few), count_requests(job, many)),
    )


def median_seconds(jobs, directory, rounds, remove_outputs):
    """At each of the delays, by job. The jobs run in turn."""
    medians = {job.name: [] for job in jobs}
    for delay in DELAYS:
        times = collections.defaultdict(list)
        for _ in range(rounds):
            for job in jobs:
                remove_outputs()
                with slowed(directory, delay) as place:
                    times[job.name].append(run(job, place))
        for name, seconds in times.items():
            medians[name].append(statistics.median(seconds))
    remove_outputs()
    return medians
