"""Makes every system call, allocation and transfer fail once."""

import os
import re
from dataclasses import dataclass

import tasks
from trial import Point, judge, shown

ERRORS = ("EIO", "ENOSPC", "EACCES", "EINTR", "ENOMEM")
# Calls that provide memory. brk reports a failure by an address, not by an error.
MEMORY_CALLS = ("brk", "mmap", "munmap", "mremap")
# futex is here too: it wakes nobody, and the C library ends the process if it fails.
NEVER_FAILING = ("exit_group", "exit", "rt_sigreturn", "futex")


@dataclass
class Call:
    name: str
    number: int  # among the calls of this name, from 1
    arguments: str
    result: str
    in_main: bool

    def descriptor(self):
        found = re.match(r"(\d+)", self.arguments)
        return int(found.group(1)) if found else None

    def moved(self):
        """How many bytes a transfer moved."""
        return int(self.result) if self.result.isdigit() else 0


def trace(workspace, statement, program="vqvec"):
    """The system calls of an undisturbed run."""
    log = os.path.join(workspace.root, "trace")
    workspace.run(statement, ("strace", "-o", log, "-s", "0"), program)
    calls = []
    numbers = {}
    in_main = False
    with open(log, encoding="utf-8", errors="replace") as lines:
        for line in lines:
            parts = re.match(r"(\w+)\((.*)\)\s+= (\S+)", line)
            if not parts:
                continue
            name, arguments, result = parts.groups()
            # The first call in main; before it, the C library initialises itself.
            in_main = in_main or (name == "rt_sigaction" and arguments.startswith("SIGPIPE"))
            numbers[name] = numbers.get(name, 0) + 1
            calls.append(Call(name, numbers[name], arguments, result, in_main))
    os.unlink(log)
    return calls


class Hidden:
    """Within the `with` block, hides a file or directory of the tree under another name, or leaves
    only the first whole lines of a file, `cut_at` bytes at most."""

    def __init__(self, path, cut_at=None):
        self.path = path
        self.cut_at = cut_at

    def __enter__(self):
        os.rename(self.path, self.path + ".hidden")
        if self.cut_at is not None:
            with open(self.path + ".hidden", "rb") as whole:
                begin = whole.read(self.cut_at)
            with open(self.path, "wb") as file:
                file.write(begin[: begin.rfind(b"\n") + 1])

    def __exit__(self, *_):
        if self.cut_at is not None:
            os.unlink(self.path)
        os.rename(self.path + ".hidden", self.path)


def _hideable(workspace, calls):
    """What a failing call can hide from the program: the paths of inputs, and the places in them
    where a read ended."""
    found = set()
    reading = {}
    for call in calls:
        path = re.search(r'"([^"]*)"', call.arguments)
        path = path.group(1) if path else ""
        inside = path.startswith(os.path.dirname(workspace.cwd) + "/")
        holds_cwd = (workspace.cwd + "/").startswith(path.rstrip("/") + "/")
        if inside and not holds_cwd and os.path.exists(path):
            found.add((path, None))
            if os.path.isdir(path):
                for name in os.listdir(path):
                    if name.endswith("xyz"):
                        found.add((os.path.join(path, name), None))
        if call.name in ("open", "openat") and call.result.isdigit():
            reading[int(call.result)] = [path, 0]
        elif call.name == "read" and call.descriptor() in reading and call.moved() > 0:
            entry = reading[call.descriptor()]
            if 0 < entry[1] and os.path.isfile(entry[0]):
                found.add((entry[0], entry[1]))
            entry[1] += call.moved()
    return sorted(found, key=str)


def without_input(workspace, statement, calls):
    """Outcomes of runs without one input, or with part of one: readers never fail on these."""
    outcomes = []
    outputs = {workspace.path(output.path) for output in statement.outputs}
    for path, cut_at in _hideable(workspace, calls):
        if path not in outputs and not (cut_at is None and os.path.islink(path)):
            with Hidden(path, cut_at):
                workspace.listing = workspace._list()
                outcomes.append(workspace.run(statement))
            workspace.listing = workspace._list()
    workspace.clear()
    workspace.listing = workspace._list()
    return outcomes


def _sink(call):
    """The console stream that is lost when the call fails."""
    if call.name in ("write", "writev") and call.descriptor() in (1, 2):
        return {"stdout_lost": call.descriptor() == 1, "stderr_lost": call.descriptor() == 2}
    return {}


def _injected(call_name, what):
    inject = f"inject={call_name}:{what}"
    return ("strace", "-o", "/dev/null", "-e", f"trace={call_name}", "-e", inject)


def _attempt(statement, prefix, references, program="vqvec", variables=None, **lost):
    def attempt(workspace):
        outcome = workspace.run(statement, prefix, program, variables)
        return judge(statement, outcome, references, **lost)

    label = shown(prefix, program, statement)
    if variables:
        label = " ".join(f"{key}={value}" for key, value in variables.items()) + " " + label
    return statement.name + ": " + label, attempt


def _permits_strace(bench):
    return bench.can_run(*_injected("close", "error=EIO:when=99"), "true")


def _permits_short_io(bench):
    return bench.can_run(bench.programs["short_io"], "read", "999", "0", "go", "/bin/true")


def failing_calls(bench):
    if not _permits_strace(bench):
        yield "strace is missing or not permitted"
        return
    workspace = bench.workspaces[0]
    for statement in tasks.STATEMENTS:
        calls = trace(workspace, statement)
        references = [workspace.run(statement)] + without_input(workspace, statement, calls)
        for call in calls:
            if not call.in_main or call.name in (*NEVER_FAILING, *MEMORY_CALLS):
                continue
            for error in ERRORS:
                prefix = _injected(call.name, f"error={error}:when={call.number}")
                yield Point(*_attempt(statement, prefix, references, **_sink(call)))


def failing_memory_calls(bench):
    """Accepts only the full result or a failure: a lack of memory must never lose data silently."""
    if not _permits_strace(bench):
        yield "strace is missing or not permitted"
        return
    workspace = bench.workspaces[0]
    for statement in tasks.STATEMENTS:
        calls = trace(workspace, statement)
        references = [workspace.run(statement)]
        maps = 0
        for call in calls:
            maps += call.name == "mmap"
            if not call.in_main or call.name not in MEMORY_CALLS:
                continue
            failure = "retval=0" if call.name == "brk" else "error=ENOMEM"
            for repeated in ("", "+"):
                prefix = _injected(call.name, f"{failure}:when={call.number}{repeated}")
                yield Point(*_attempt(statement, prefix, references))
                if call.name == "brk":
                    prefix = ("strace", "-o", "/dev/null", "-e", "trace=brk,mmap")
                    prefix += ("-e", f"inject=brk:{failure}:when={call.number}{repeated}")
                    prefix += ("-e", f"inject=mmap:error=ENOMEM:when={maps + 1}+")
                    yield Point(*_attempt(statement, prefix, references))


def _cuts(moved):
    """Places at which to cut a transfer of this many bytes."""
    return sorted({0, 1, moved // 2, max(0, moved - 1), moved})


def _transfers(calls, names):
    """The transfers of a run, numbered as in short_io."""
    return list(enumerate((call for call in calls if call.name in names), 1))


READS = ("read", "readv")
WRITES = ("write", "writev")


def short_transfers(bench):
    short_io = bench.programs["short_io"]
    if not _permits_strace(bench) or not _permits_short_io(bench):
        yield "ptrace is not permitted"
        return
    workspace = bench.workspaces[0]
    for statement in tasks.STATEMENTS:
        calls = trace(workspace, statement)
        references = [workspace.run(statement)]
        for kind, names in (("read", READS), ("write", WRITES)):
            for number, call in _transfers(calls, names):
                if not call.in_main:
                    continue
                for bytes_moved in _cuts(call.moved())[1:]:
                    prefix = (short_io, kind, str(number), str(bytes_moved), "go")
                    yield Point(*_attempt(statement, prefix, references, **_sink(call)))


def kills(bench):
    short_io = bench.programs["short_io"]
    if not _permits_strace(bench) or not _permits_short_io(bench):
        yield "strace or ptrace is not permitted"
        return
    workspace = bench.workspaces[0]
    for statement in tasks.STATEMENTS:
        calls = trace(workspace, statement)
        references = [workspace.run(statement)]
        lost = {"stdout_lost": True, "stderr_lost": True, "killed": True}
        for call in calls:
            if call.name in ("execve", *NEVER_FAILING):
                continue
            prefix = _injected(call.name, f"signal=KILL:when={call.number}")
            yield Point(*_attempt(statement, prefix, references, **lost))
        for number, call in _transfers(calls, WRITES):
            for bytes_moved in _cuts(call.moved()):
                prefix = (short_io, "write", str(number), str(bytes_moved), "kill")
                yield Point(*_attempt(statement, prefix, references, **lost))


def failing_allocations(bench):
    workspace = bench.workspaces[0]
    count_file = os.path.join(workspace.root, "count")
    preload = {"LD_PRELOAD": bench.programs["failing_malloc"]}
    for statement in tasks.STATEMENTS:
        variables = {**preload, "COUNT_TO": count_file}
        references = [workspace.run(statement, (), "vqvec_dynamic", variables)]
        try:
            with open(count_file, encoding="ascii") as file:
                count = int(file.read())
        except FileNotFoundError:
            yield "preloading does not work"
            return
        os.unlink(count_file)
        for repeated in ("0", "1"):
            for number in range(1, count + 1):
                variables = {**preload, "FAIL_AT": str(number), "FAIL_ON": repeated}
                yield Point(*_attempt(statement, (), references, "vqvec_dynamic", variables))
