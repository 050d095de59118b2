"""Disks that are full, have no inodes left or are read-only; files without permission to read or
write."""

import contextlib
import os
import subprocess
from dataclasses import replace

import tasks
from calls import trace, without_input
from trial import Output, Point, Statement, judge, run_command, shown

NOBODY = 65534
FULL = "full"  # the directory where the small disk is mounted


def _atom_to_full_disk(name, expression):
    """A statement that writes all its outputs to the small disk."""
    words = (
        "atom",
        "--dsl",
        f"q = {expression} --out {FULL}/o.extxyz --chg {FULL}/o.chg",
        "--values-out",
        f"{FULL}/v.kv",
        "--record-kv",
        f"{FULL}/r.kv",
        "--snapshot-kv",
        f"{FULL}/s.kv",
    )
    outputs = (
        Output(f"{FULL}/v.kv", True),
        Output(f"{FULL}/r.kv", True),
        Output(f"{FULL}/s.kv", False),
        Output(f"{FULL}/o.extxyz", False),
        Output(f"{FULL}/o.chg", False),
    )
    return Statement(name, words, outputs)


SMALL = _atom_to_full_disk("small outputs", "scrf:charge")
BIG = _atom_to_full_disk("big outputs", "big:charge")


@contextlib.contextmanager
def mounted(directory, *options):
    os.makedirs(directory, exist_ok=True)
    subprocess.run(["mount", *options, directory], check=True)
    try:
        yield directory
    finally:
        subprocess.run(["umount", directory], check=True)


def _fill(directory, pages_left):
    """Fills the disk except for this many pages."""
    filler = os.path.join(directory, "filler")
    state = os.statvfs(directory)
    free = (state.f_bfree - pages_left) * state.f_bsize
    if free > 0:
        with open(filler, "wb") as file:
            os.posix_fallocate(file.fileno(), 0, free)


def _run_on_disk(workspace, statement, options, pages_left=None):
    """The outcome of a run on a disk made for it."""
    directory = workspace.path(FULL)
    workspace.begin(statement)
    with mounted(directory, "-t", "tmpfs", "-o", options, "tmpfs"):
        for output in statement.outputs:
            if output.old is not None:
                with open(workspace.path(output.path), "wb") as file:
                    file.write(output.old)
        if pages_left is not None:
            _fill(directory, pages_left)
        outcome = workspace.run(statement, reset=False)
    outcome.strangers = [path for path in outcome.strangers if not path.endswith("/filler")]
    return outcome


def _with_old_values(statement, old):
    """The statement, with this text in its values file before the run."""
    values, *others = statement.outputs
    return replace(statement, outputs=(replace(values, old=old), *others))


def full_disk(bench):
    if not bench.can_mount:
        yield "mounting is not permitted"
        return
    page = os.sysconf("SC_PAGE_SIZE")
    plenty = "size=4m"

    def point(statement, pages_left, references):
        def attempt(workspace):
            outcome = _run_on_disk(workspace, statement, plenty, pages_left)
            return judge(statement, outcome, references)

        old = statement.outputs[0].old
        slack = -len(old or b"") % page
        room = f"{pages_left} free pages and {slack} bytes in the values file's last"
        return Point(f"{statement.name}: {room}: {shown((), 'vqvec', statement)}", attempt)

    workspace = bench.workspaces[0]
    for statement in (SMALL, BIG):
        undisturbed = _run_on_disk(workspace, statement, plenty)
        length = len(undisturbed.files[f"{FULL}/v.kv"])
        pages = sum(-(-len(content) // page) for content in undisturbed.files.values())
        for pages_left in range(pages + 2):
            yield point(statement, pages_left, [undisturbed])
        # Only some bytes are free in the last page of the values file: any number up to the length
        # of the output, or for long outputs a selection.
        step = 1 if length < page else 61
        for slack in range(0, min(length, page - 1) + 2, step):
            old = b"#" * (page - slack - 1) + b"\n"
            started = _with_old_values(statement, old)
            reference = _run_on_disk(workspace, started, plenty)
            for pages_left in (0, 1, 2) if length < page else (0, 3, length // page):
                yield point(started, pages_left, [reference])


def no_inodes(bench):
    if not bench.can_mount:
        yield "mounting is not permitted"
        return
    workspace = bench.workspaces[0]
    reference = _run_on_disk(workspace, SMALL, "nr_inodes=100")
    for inodes in range(1, len(SMALL.outputs) + 3):

        attempt = _with_inodes(inodes, reference)
        yield Point(f"{inodes} inodes in all: {shown((), 'vqvec', SMALL)}", attempt)


def _with_inodes(inodes, reference):
    def attempt(workspace):
        outcome = _run_on_disk(workspace, SMALL, f"nr_inodes={inodes}")
        return judge(SMALL, outcome, [reference])

    return attempt


def read_only(bench):
    if not bench.can_mount:
        yield "mounting is not permitted"
        return
    workspace = bench.workspaces[0]
    for statement in tasks.STATEMENTS:
        reference = workspace.run(statement)
        places = {"..", ".", "../scrf"}
        for output in statement.outputs:
            if output.old is not None:
                places.add(os.path.dirname(output.path) or ".")
                places.add(output.path)
        for place in sorted(places):
            attempt = _with_read_only(statement, reference, place)
            yield Point(f"{statement.name}: read-only {place}", attempt)
    workspace.clear()


def _with_read_only(statement, reference, place):
    def attempt(workspace):
        workspace.reset(statement)
        path = os.path.normpath(workspace.path(place))
        subprocess.run(["mount", "--bind", path, path], check=True)
        try:
            subprocess.run(["mount", "-o", "remount,bind,ro", path], check=True)
            # By its path: a process already in the directory does not see the new mount.
            outcome = workspace.run(statement, reset=False)
        finally:
            subprocess.run(["umount", path], check=True)
        return judge(statement, outcome, [reference])

    return attempt


class Mode:
    """Within the `with` block, gives a file or directory another mode."""

    def __init__(self, path, mode):
        self.path = path
        self.mode = mode

    def __enter__(self):
        self.old_mode = os.stat(self.path).st_mode & 0o7777
        os.chmod(self.path, self.mode)

    def __exit__(self, *_):
        os.chmod(self.path, self.old_mode)


def _give_to_nobody(workspace):
    """Gives the whole tree to nobody, so that an ordinary user's program works there."""
    if os.geteuid() == 0:
        for directory, _, files in os.walk(workspace.root):
            os.chown(directory, NOBODY, NOBODY)
            for name in files:
                os.chown(os.path.join(directory, name), NOBODY, NOBODY, follow_symlinks=False)


def permissions(bench):
    as_user = ()
    if bench.is_root:
        as_user = ("setpriv", f"--reuid={NOBODY}", f"--regid={NOBODY}", "--clear-groups")
        if not bench.can_run(*as_user, "true"):
            yield "becoming an ordinary user is not permitted"
            return
    workspace = bench.workspaces[0]
    tree = os.path.dirname(workspace.cwd)
    for statement in tasks.STATEMENTS:
        undisturbed = workspace.run(statement)
        calls = trace(workspace, statement)
        references = [undisturbed] + without_input(workspace, statement, calls)
        workspace.clear()
        workspace.reset(statement)
        inputs = []
        for directory, directories, files in os.walk(tree):
            inputs += [os.path.join(directory, name) for name in (*directories, *files)]
        inputs = [path for path in inputs if not os.path.islink(path)]
        outputs = [workspace.path(output.path) for output in statement.outputs if output.old]
        outputs += [os.path.dirname(path) for path in outputs]
        for path in sorted({*inputs, *outputs, tree}):
            if not bench.is_root and (workspace.cwd + "/").startswith(path + "/"):
                continue  # only root can start the program in a closed directory
            for mode in (0o000, 0o444, 0o111, 0o555):
                relative = os.path.relpath(path, tree)

                attempt = _with_mode(statement, references, as_user, relative, mode)
                yield Point(f"{statement.name}: mode {mode:o} of {relative}", attempt)


def _with_mode(statement, references, as_user, relative, mode):
    def attempt(workspace):
        workspace.reset(statement)
        _give_to_nobody(workspace)
        path = os.path.normpath(os.path.join(workspace.cwd, "..", relative))
        with Mode(path, mode):
            # Root enters the working directory, since it may be closed to the user.
            command = [*as_user, workspace.programs["vqvec"], *statement.words]
            environment = {"PATH": os.environ["PATH"], **statement.variables}
            ended = run_command(command, workspace.cwd, environment)
        return judge(statement, workspace.outcome(statement, *ended), references)

    return attempt
