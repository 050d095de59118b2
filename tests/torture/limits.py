"""Limits on files, memory, stack and descriptors; closed or full streams."""

import itertools

import tasks
from trial import Point, judge, run_command, shown


def _starts(workspace, statement, option, value):
    """Whether the program reaches main under this limit, with arguments of this length."""
    words = ("--help", *statement.words)
    command = ["prlimit", f"--{option}={value}", workspace.programs["vqvec"], *words]
    return run_command(command, workspace.cwd)[0] == 0


def _smallest_start(workspace, statement, option, values):
    return next(value for value in values if _starts(workspace, statement, option, value))


def resource_limits(bench):
    if not bench.can_run("prlimit", "--nofile=64", "true"):
        yield "prlimit is missing or not permitted"
        return
    workspace = bench.workspaces[0]
    kib = 1024
    mib = 1024 * kib
    for statement in tasks.STATEMENTS:
        reference = workspace.run(statement)
        memories = range(256 * kib, 64 * mib, 64 * kib)
        stacks = range(64 * kib, 8 * mib, 16 * kib)  # with less, there is no room for long paths
        least_memory = _smallest_start(workspace, statement, "as", memories)
        least_stack = _smallest_start(workspace, statement, "stack", stacks)
        longest = max((len(content or b"") for content in reference.files.values()), default=0)
        # strace and the like need more to start than the program does. So prlimit sets each limit
        # right before it becomes the program.
        points = [("fsize", value) for value in range(0, longest + 2, 1 + longest // 1500)]
        points += [("as", least_memory + i * 16 * kib) for i in range(96)]
        points += [("data", i * 16 * kib) for i in range(96)]
        points += [("stack", least_stack + i * 16 * kib) for i in range(8)]
        points += [("nofile", value) for value in range(12)]
        for option, value in points:
            label = shown(("prlimit", f"--{option}={value}"), "vqvec", statement)
            attempt = _with_limit(statement, reference, option, value)
            yield Point(f"{statement.name}: {label}", attempt)
    workspace.clear()


def _with_limit(statement, reference, option, value):
    def attempt(workspace):
        outcome = workspace.run(statement, ("prlimit", f"--{option}={value}"))
        # Memory is laid out differently in each run, so the need at start-up differs too.
        is_odd = outcome.status not in (0, 1)
        if is_odd and not _starts(workspace, statement, option, value):
            return None
        return judge(statement, outcome, [reference])

    return attempt


def descriptors(bench):
    workspace = bench.workspaces[0]
    streams = {0: ("", "<&-"), 1: ("", ">&-", ">/dev/full"), 2: ("", "2>&-", "2>/dev/full")}
    for statement in tasks.STATEMENTS:
        reference = workspace.run(statement)
        for redirections in itertools.product(*streams.values()):
            prefix = ("sh", "-c", f'exec "$0" "$@" {" ".join(redirections)}'.rstrip())
            lost = {"stdout_lost": redirections[1] != "", "stderr_lost": redirections[2] != ""}

            attempt = _with_streams(statement, reference, prefix, lost)
            yield Point(f"{statement.name}: {shown(prefix, 'vqvec', statement)}", attempt)

        # The reader of standard output or error has exited.
        for script in ('"$0" "$@" | :', '"$0" "$@" 2>&1 >/dev/null | :'):
            prefix = ("bash", "-c", f"{{ {script}; }}; exit ${{PIPESTATUS[0]}}")
            lost = {"stdout_lost": True, "stderr_lost": True}

            attempt = _with_streams(statement, reference, prefix, lost)
            yield Point(f"{statement.name}: {shown(prefix, 'vqvec', statement)}", attempt)
    workspace.clear()


def _with_streams(statement, reference, prefix, lost):
    def attempt(workspace):
        outcome = workspace.run(statement, prefix)
        fault = judge(statement, outcome, [reference], **lost)
        if fault is None and outcome.files != reference.files:
            fault = "lost streams change the files"
        if fault is None and outcome.status != reference.status:
            fault = "lost streams change the status"
        return fault

    return attempt
