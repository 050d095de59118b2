"""Many runs at the same time on one values file and one record file."""

import os
import subprocess

import tasks
from trial import Point

WRITERS = 8


def _expected_lines(text, writer):
    return text.replace(b".w0=", f".w{writer}=".encode())


def _attempt(expression, runs_each):
    def attempt(workspace):
        directory = os.path.join(workspace.cwd, "new-crowd")
        os.makedirs(directory, exist_ok=True)
        values = os.path.join(directory, "v.kv")
        record = os.path.join(directory, "r.kv")
        program = workspace.programs["vqvec"]

        def command(writer, values, record):
            outputs = ["--values-out", values, "--record-kv", record]
            return [program, "atom", "--dsl", f"w{writer} = {expression}", *outputs]

        alone = os.path.join(directory, "alone.kv")
        subprocess.run(command(0, alone, ""), cwd=workspace.cwd, check=True, capture_output=True)
        with open(alone, "rb") as file:
            text = file.read()
        os.unlink(alone)

        loop = 'n=$0; while [ "$n" -gt 0 ]; do "$@" >/dev/null || exit 1; n=$((n - 1)); done'
        processes = [
            subprocess.Popen(
                ["sh", "-c", loop, str(runs_each), *command(writer, values, record)],
                cwd=workspace.cwd,
            )
            for writer in range(WRITERS)
        ]
        failed = [process.wait() for process in processes]
        fault = f"a writer ended with {max(failed)}" if any(failed) else None
        for path in (values, record):
            fault = fault or _check(path, text, runs_each)
            os.unlink(path)
        os.rmdir(directory)
        return fault

    return attempt


def _check(path, text, runs_each):
    """Checks that each writer's text occurs as often as it ran, never torn by another's."""
    with open(path, "rb") as file:
        content = file.read()
    lines = text.count(b"\n")
    if content.count(b"\n") != lines * WRITERS * runs_each:
        return f"{os.path.basename(path)} has {content.count(chr(10).encode())} lines"
    left = dict.fromkeys(range(WRITERS), runs_each)
    texts = {writer: _expected_lines(text, writer) for writer in left}
    place = 0
    while place < len(content):
        writer = next((w for w, own in texts.items() if content.startswith(own, place)), None)
        if writer is None or left[writer] == 0:
            return f"{os.path.basename(path)} is torn at byte {place}"
        left[writer] -= 1
        place += len(texts[writer])
    return None if not any(left.values()) else f"{os.path.basename(path)} lacks runs"


def writers(bench):
    small, big = (25, 5) if bench.is_short else (125, 25)
    yield Point(f"{WRITERS} writers, {small} runs each, 3 lines", _attempt("scrf:charge", small))
    label = f"{WRITERS} writers, {big} runs each, {tasks.BIG} lines"
    yield Point(label, _attempt("big:charge", big))
