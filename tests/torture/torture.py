"""Runs the program under everything that can go wrong on one machine.

    torture.py [--short] [--only SECTION[,SECTION...]] PROGRAM HELPERS

PROGRAM is the program, HELPERS the directory of vqvec_dynamic, failing_malloc.so and short_io.
`torture.py --lay-out DIRECTORY` makes a tree in which to reproduce a reported fault by hand.
"""

import argparse
import multiprocessing
import os
import queue
import shutil
import subprocess
import sys
import tempfile
import time
import traceback

import calls
import crowd
import hostile
import limits
import space
import tasks
from trial import Point, Workspace

WORKERS = 2
SHOWN_FAULTS = 5  # per section
SHORT_POINTS = 150  # per section
IN_NAMESPACE = "VQVEC_TORTURE_IN_NAMESPACE"


class Bench:
    """The programs and workspaces that the sections use."""

    def __init__(self, programs, scratch, is_short):
        self.programs = programs
        self.scratch = scratch
        self.is_short = is_short
        self.is_root = os.geteuid() == 0
        self.can_mount = os.environ.get(IN_NAMESPACE) == "1"
        self.workspaces = [self._workspace(f"worker{i}") for i in range(WORKERS)]

    def _workspace(self, name):
        return Workspace(os.path.join(self.scratch, name), self.programs, tasks.lay_out)

    @staticmethod
    def can_run(*command):
        """Whether this machine permits the command."""
        try:
            quiet = {"stdout": subprocess.DEVNULL, "stderr": subprocess.DEVNULL}
            return subprocess.run(command, check=False, **quiet).returncode == 0
        except OSError:
            return False


def work(points, workspace, results):
    for point in points:
        try:
            fault = point.attempt(workspace)
        except Exception:  # a fault of the torture itself: report it, and go on
            fault = traceback.format_exc()
        results.put((point.label, fault))
    results.put(None)


def try_all(points, workspaces):
    """The labels and faults of all points, tried in parallel."""
    results = multiprocessing.Queue()
    processes = [
        multiprocessing.Process(target=work, args=(points[i :: len(workspaces)], space_, results))
        for i, space_ in enumerate(workspaces)
    ]
    for process in processes:
        process.start()
    open_ends = len(processes)
    while open_ends:
        try:
            result = results.get(timeout=10)
        except queue.Empty:
            if not any(process.is_alive() for process in processes) and results.empty():
                yield "the torture itself", "a worker has died"
                return
            continue
        if result is None:
            open_ends -= 1
        else:
            yield result
    for process in processes:
        process.join()


def run_section(name, section, bench):
    began = time.monotonic()
    points = []
    skipped = []
    for item in section(bench):
        (points if isinstance(item, Point) else skipped).append(item)
    if bench.is_short:
        points = points[:: max(1, len(points) // SHORT_POINTS)]
    faults = [(label, fault) for label, fault in try_all(points, bench.workspaces) if fault]
    for label, fault in faults[:SHOWN_FAULTS]:
        print(f"  FAULT {label}\n        {fault}")
    if len(faults) > SHOWN_FAULTS:
        print(f"  ... and {len(faults) - SHOWN_FAULTS} more")
    for reason in skipped:
        print(f"  skipped: {reason}")
    passed = len(points) - len(faults)
    seconds = time.monotonic() - began
    print(f"{name:28} {len(points):6} tried  {passed:6} passed  {seconds:6.1f} s", flush=True)
    if not points and not skipped:
        print(f"  FAULT {name} has nothing to try")
        return 0, 1
    return len(points), len(faults)


SECTIONS = {
    "system-calls": calls.failing_calls,
    "memory-calls": calls.failing_memory_calls,
    "short-transfers": calls.short_transfers,
    "allocations": calls.failing_allocations,
    "kills": calls.kills,
    "full-disk": space.full_disk,
    "no-inodes": space.no_inodes,
    "read-only": space.read_only,
    "permissions": space.permissions,
    "limits": limits.resource_limits,
    "descriptors": limits.descriptors,
    "writers": crowd.writers,
    "hostile-trees": hostile.hostile_trees,
}


def enter_mount_namespace():
    """Restarts in its own mount namespace: nobody else sees its mounts, and they end with it."""
    enter = ["unshare", "--mount", "--propagation", "private"]
    if os.geteuid() != 0 or IN_NAMESPACE in os.environ or not Bench.can_run(*enter, "true"):
        return
    os.environ[IN_NAMESPACE] = "1"
    os.execvp(enter[0], [*enter, sys.executable, *sys.argv])


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--short", action="store_true")
    parser.add_argument("--only", default="")
    parser.add_argument("--lay-out")
    parser.add_argument("program", nargs="?")
    parser.add_argument("helpers", nargs="?")
    arguments = parser.parse_args()
    if arguments.lay_out:
        tasks.lay_out(arguments.lay_out)
        return 0
    chosen = arguments.only.split(",") if arguments.only else list(SECTIONS)
    unknown = set(chosen) - set(SECTIONS)
    if unknown:
        parser.error(f"no section {', '.join(sorted(unknown))}; there are {', '.join(SECTIONS)}")
    enter_mount_namespace()
    multiprocessing.set_start_method("fork")
    scratch = tempfile.mkdtemp(prefix="vqvec-torture-")
    os.chmod(scratch, 0o755)  # an ordinary user must be able to enter
    try:
        programs = {}
        for name, path in {
            "vqvec": arguments.program,
            "vqvec_dynamic": os.path.join(arguments.helpers, "vqvec_dynamic"),
            "failing_malloc": os.path.join(arguments.helpers, "failing_malloc.so"),
            "short_io": os.path.join(arguments.helpers, "short_io"),
        }.items():
            # Copies, so that a build during the run does not change the programs.
            programs[name] = shutil.copy(path, os.path.join(scratch, name))
        bench = Bench(programs, scratch, arguments.short)
        counts = [run_section(name, SECTIONS[name], bench) for name in chosen]
    finally:
        shutil.rmtree(scratch, ignore_errors=True)
    tried, faults = map(sum, zip(*counts))
    print(f"{tried or 'nothing'} tried, {faults or 'no'} faults")
    return 0 if tried > 0 and faults == 0 else 1


if __name__ == "__main__":
    sys.exit(main())
