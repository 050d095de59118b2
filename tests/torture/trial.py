"""One trial: the program runs a statement in a scratch tree while something goes wrong, and the
trial checks what the program leaves."""

import os
import re
import shlex
import shutil
import signal
import subprocess
from dataclasses import dataclass, field

ERROR_MARK = "错误: ".encode()
TIME_LIMIT = 120  # seconds; no trial comes near it unless the program hangs


@dataclass(frozen=True)
class Output:
    path: str  # relative to the working directory of the program
    appends: bool
    old: bytes | None = None  # the file's content before the run; None: no such file


@dataclass(frozen=True)
class Statement:
    name: str
    words: tuple  # the program's arguments
    outputs: tuple = ()  # in the order in which they are written
    variables: dict = field(default_factory=dict)


@dataclass
class Outcome:
    status: int
    stdout: bytes
    stderr: bytes
    files: dict  # content of each output; None: no such file
    strangers: list  # files that were not requested


@dataclass
class Point:
    """One thing that goes wrong once; `attempt` takes a workspace and returns a fault or None."""

    label: str
    attempt: object


class Workspace:
    """A tree of tasks in `root`; the program's working directory is root/parent/dir."""

    def __init__(self, root, programs, lay_out):
        self.root = os.path.realpath(root)
        self.cwd = os.path.join(self.root, "parent", "dir")
        self.programs = programs
        os.makedirs(self.cwd)
        lay_out(os.path.join(self.root, "parent"))
        self.listing = self._list()
        self.latest = None  # the statement whose outputs may exist

    def path(self, name):
        return os.path.join(self.cwd, name)

    def _list(self):
        found = set()
        for directory, directories, files in os.walk(os.path.join(self.root, "parent")):
            # A directory created for an output may stay.
            found.update(os.path.join(directory, name) for name in files)
            found.update(
                path
                for path in (os.path.join(directory, name) for name in directories)
                if os.path.islink(path)
            )
        return found

    def begin(self, statement):
        """Removes the outputs of another statement."""
        if self.latest is not None and self.latest is not statement:
            self.clear()
        self.latest = statement

    def reset(self, statement):
        """Restores the outputs to their state before the run, and removes all others."""
        self.begin(statement)
        for output in statement.outputs:
            path = self.path(output.path)
            if output.old is not None:
                os.makedirs(os.path.dirname(path), exist_ok=True)
                with open(path, "wb") as file:
                    file.write(output.old)
                continue
            self._remove(output)

    def clear(self):
        for output in self.latest.outputs:
            self._remove(output)

    def _remove(self, output):
        path = self.path(output.path)
        if os.path.lexists(path):
            os.unlink(path)
        first = output.path.split("/")[0]
        if first.startswith("new"):
            shutil.rmtree(self.path(first), ignore_errors=True)

    def run(self, statement, prefix=(), program="vqvec", variables=None, reset=True, cwd=None):
        """`prefix`: the command that runs the program, such as strace with its options."""
        if reset:
            self.reset(statement)
        command = [*prefix, self.programs[program], *statement.words]
        environment = {"PATH": os.environ["PATH"], **statement.variables, **(variables or {})}
        status, stdout, stderr = run_command(command, cwd or self.cwd, environment)
        return self.outcome(statement, status, stdout, stderr)

    def outcome(self, statement, status, stdout, stderr):
        expected = self.listing | {self.path(output.path) for output in statement.outputs}
        return Outcome(
            status,
            stdout,
            stderr,
            {output.path: read(self.path(output.path)) for output in statement.outputs},
            sorted(self._list() - expected),
        )


def read(path):
    try:
        with open(path, "rb") as file:
            return file.read()
    except OSError:
        return None


def run_command(command, cwd, environment=None, time_limit=TIME_LIMIT):
    """The exit status (negative: the signal), standard output and standard error."""
    process = subprocess.Popen(
        command,
        cwd=cwd,
        env=environment,
        stdin=subprocess.DEVNULL,
        stdout=subprocess.PIPE,
        stderr=subprocess.PIPE,
        start_new_session=True,
    )
    try:
        stdout, stderr = process.communicate(timeout=time_limit)
    except subprocess.TimeoutExpired:
        os.killpg(process.pid, signal.SIGKILL)
        process.communicate()
        return "no end", b"", b""
    return process.returncode, stdout, stderr


def error_line_fault(outcome, may_be_cut=False):
    """What is wrong with standard error, or None."""
    text = outcome.stderr
    if may_be_cut and (ERROR_MARK.startswith(text) or text.startswith(ERROR_MARK)):
        return None
    if text == b"":
        return None
    if not text.startswith(ERROR_MARK):
        return "standard error does not begin with the error mark"
    if text.count(b"\n") != 1 or not text.endswith(b"\n"):
        return "standard error is not one line"
    return None


def _is_untouched(output, content):
    return content == output.old


def _may_follow(output, content, reference):
    """Whether the content is the old one, or a possible part of what the reference run wrote."""
    if content is None or reference is None:
        return content == output.old
    if output.appends:
        old = output.old or b""
        return content.startswith(old) and reference.startswith(content)
    return content == output.old or reference.startswith(content)


def judge(statement, outcome, references, stdout_lost=False, stderr_lost=False, killed=False):
    """The first thing wrong with an outcome, as text, or None. The references are the outcomes of
    undisturbed runs; each file must agree with one of them."""
    if killed and outcome.status == -signal.SIGKILL:
        pass
    elif outcome.status not in (0, 1):
        return f"ended with {outcome.status}"
    if outcome.strangers:
        return "left the files " + " ".join(outcome.strangers)
    fault = error_line_fault(outcome, may_be_cut=stderr_lost or killed)
    if fault:
        return fault

    if outcome.status == 0:
        if outcome.stderr:
            return "status 0 with an error line"
        for reference in references:
            if reference.status != 0 or reference.files != outcome.files:
                continue
            whole = outcome.stdout == reference.stdout
            if whole or (stdout_lost and reference.stdout.startswith(outcome.stdout)):
                return None
        return "status 0, but files or report are not those of a full run"

    failing = [reference for reference in references if reference.status == 1]
    if outcome.status == 1:
        usage = any(reference.stdout == outcome.stdout != b"" for reference in failing)
        if outcome.stdout and not usage and not stdout_lost:
            return "status 1 with a report"
        # Some failures have no error line, such as the usage without a statement.
        silent = any(not reference.stderr for reference in failing)
        if not outcome.stderr and not silent and not stderr_lost:
            return "status 1 without an error line"
    is_over = False
    for output in statement.outputs:
        content = outcome.files[output.path]
        wholes = [reference.files[output.path] for reference in references]
        if is_over and not _is_untouched(output, content):
            return f"{output.path} is written although an earlier file is incomplete"
        if not any(_may_follow(output, content, whole) for whole in wholes):
            return f"{output.path} contains what no run writes"
        is_over = content not in wholes
    return None


def shown(prefix, program, statement):
    """The command of a trial, for use by hand."""
    words = [*prefix, program, *statement.words]
    return re.sub(r"\s+", " ", shlex.join(str(word) for word in words))
