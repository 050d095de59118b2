"""Trees that are hostile, or that change while they are read. Each case checks its own outcome."""

import os
import shutil
import socket
import subprocess
import sys
import threading

from trial import ERROR_MARK, Point, read, run_command

KV = ".vorq.result.kv"
WATER_Q = "atoms.1.q=1\natoms.2.q=2\natoms.3.q=3\n"
WATER_XYZ = "3\n\nO 0 0 0\nH 0 0 1\nH 0 1 0\n"
VALUES_OF_Q = b"atoms.1.x=1\natoms.2.x=2\natoms.3.x=3\n"
GIB = 1024**3
MIB = 1024**2


class Ground:
    """A new pair of directories for one case; the program runs in `cwd`."""

    def __init__(self, workspace):
        self.parent = os.path.join(workspace.root, "hostile")
        self.cwd = os.path.join(self.parent, "dir")
        self.program = workspace.programs["vqvec"]
        os.makedirs(self.cwd)

    def path(self, name):
        return os.path.join(self.cwd, name)

    def write(self, name, content):
        path = os.path.join(os.fsencode(self.cwd), os.fsencode(name))
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "wb") as file:
            file.write(content if isinstance(content, bytes) else content.encode())

    def task(self, name, kv=WATER_Q, xyz=WATER_XYZ):
        self.write(os.path.join(os.fsencode(name), KV.encode()), kv)
        self.write(os.path.join(os.fsencode(name), b"a.xyz"), xyz)

    def run(self, statement, *options, prefix=(), cwd=None, time_limit=120):
        command = [*prefix, self.program, "atom", "--dsl", statement, *options]
        return run_command(command, cwd or self.cwd, {"PATH": os.environ["PATH"]}, time_limit)

    def remove(self):
        subprocess.run(["rm", "-rf", self.parent], check=True)


def fails_with(result, message):
    """None if the run ended with this message, else what happened instead."""
    expected = (1, b"", ERROR_MARK + os.fsencode(message) + b"\n")
    return None if result == expected else f"expected {_cut(expected)}, got {_cut(result)}"


def fails_somehow(result):
    status, stdout, stderr = result
    if status == 1 and stdout == b"" and stderr.startswith(ERROR_MARK) and stderr.count(b"\n") == 1:
        return None
    return f"expected one error line, got {_cut(result)}"


def writes(ground, result, content=VALUES_OF_Q, name=".vorq.values.kv"):
    """None if the run succeeded and the file has this content, else what happened instead."""
    if result[0] != 0 or result[2] != b"":
        return f"expected success, got {_cut(result)}"
    written = read(ground.path(name))
    return None if written == content else f"expected {name} {content[:200]}, got {written[:200]}"


def _cut(result):
    return tuple(part[:300] if isinstance(part, bytes) else part for part in result)


def no_vector(task):
    return f"task '{task}' does not contain atom vector 'q'"


# Links


def link_loop_as_task_file(ground):
    ground.task("t")
    os.symlink(".vorq.values.kv", ground.path("t/.vorq.values.kv"))
    os.symlink("last_a.xyz", ground.path("t/last_a.xyz"))
    return writes(ground, ground.run("x = t:q --out o.xyz"))


def link_loop_as_task(ground):
    os.symlink("t", ground.path("t"))
    return fails_with(ground.run("x = t:q"), no_vector("t"))


def link_loop_in_glob(ground):
    ground.task("t1")
    os.symlink("t2", ground.path("t2"))
    return fails_somehow(ground.run("x = mean(t*:q)"))


def dangling_link_in_glob(ground):
    ground.task("t1")
    os.symlink("nowhere", ground.path("t2"))
    return writes(ground, ground.run("x = mean(t*:q)"))


def dangling_links_as_task_files(ground):
    ground.task("t")
    os.symlink("nowhere", ground.path("t/.vorq.values.user.kv"))
    os.symlink("nowhere", ground.path("t/last_a.xyz"))
    return writes(ground, ground.run("x = t:q --out o.xyz"))


def links_to_directories_as_task_files(ground):
    ground.task("t")
    os.symlink("..", ground.path("t/.vorq.values.user.kv"))
    os.symlink("/", ground.path("t/last_a.xyz"))
    os.mkdir(ground.path("t/last_b.xyz"))
    os.mkdir(ground.path("t/.vorq.values.kv"))
    return writes(ground, ground.run("x = t:q --out o.xyz"))


def link_to_itself_from_inside(ground):
    ground.task("t1")
    os.symlink(".", ground.path("t1/t1"))
    return writes(ground, ground.run("x = mean('t1/t1/t1/t1:q')"))


def output_through_dangling_link(ground):
    ground.task("t")
    os.symlink("target.kv", ground.path("link.kv"))
    return writes(ground, ground.run("x = t:q", "--values-out", "link.kv"), name="target.kv")


def output_through_link_loop(ground):
    ground.task("t")
    os.symlink("loop.kv", ground.path("loop.kv"))
    message = "could not open file for appending: loop.kv"
    return fails_with(ground.run("x = t:q", "--values-out", "loop.kv"), message)


# Special files and directories


def _with_special_files(ground, make):
    ground.task("t")
    for name in (".vorq.values.kv", ".vorq.values.user.kv", "last_a.xyz", "0.extxyz"):
        make(ground.path("t/" + name))
    return writes(ground, ground.run("x = t:q --out o.xyz", time_limit=20))


def fifos(ground):
    return _with_special_files(ground, os.mkfifo)


def sockets(ground):
    def bind(path):
        with socket.socket(socket.AF_UNIX) as listener:
            # The address of a socket must be short.
            directory = os.open(os.path.dirname(path), os.O_RDONLY)
            listener.bind(f"/proc/self/fd/{directory}/{os.path.basename(path)}")
            os.close(directory)

    return _with_special_files(ground, bind)


def _device_case(device):
    def links_to_device(ground):
        return _with_special_files(ground, lambda path: os.symlink(device, path))

    return links_to_device


def full_device_as_output(ground):
    ground.task("t")
    for options in (("--values-out", "/dev/full"), ("--record-kv", "/dev/full")):
        fault = fails_with(ground.run("x = t:q", *options), "could not write file: /dev/full")
        if fault:
            return fault
    return fails_with(ground.run("x = t:q --out /dev/full"), "could not write file: /dev/full")


def directory_as_output(ground):
    ground.task("t")
    result = ground.run("x = t:q", "--values-out", "t")
    return fails_with(result, "could not open file for appending: t") or fails_with(
        ground.run("x = t:q --chg t"), "could not open file for writing: t"
    )


def file_as_parent_of_output(ground):
    ground.task("t")
    ground.write("file", "")
    message = "could not create parent directory for 'file/v.kv': Not a directory"
    return fails_with(ground.run("x = t:q", "--values-out", "file/v.kv"), message)


# Names


def _odd_name_case(name):
    def odd_name(ground):
        task = b"t" + name + b"x"
        ground.task(task)
        statement = b"x = mean(t*:q) --out o.xyz"
        fault = writes(ground, ground.run(statement))
        os.unlink(ground.path(".vorq.values.kv"))
        ground.write(task + b"/" + KV.encode(), "")
        message = b"task '" + task + b"' does not contain atom vector 'q'"
        return fault or fails_with(ground.run(statement), message)

    return odd_name


def odd_names_of_outputs(ground):
    ground.task("t")
    name = b"\xff\x1b[31m\xc3("
    result = ground.run(b"x = t:q --out " + name, "--values-out", b"v" + name)
    report = b"atomvec wrote 3 atom values for 'x' and extxyz " + name + b"\n"
    if result != (0, report, b""):
        return f"got {_cut(result)}"
    return writes(ground, result, name=b"v".decode() + os.fsdecode(name))


def long_names(ground):
    ground.task("t")
    for task in ("n" * 256, "n" * 5000, "d/" * 3000 + "t", "n" * 120_000):
        fault = fails_with(ground.run(f"x = {task}:q"), no_vector(task))
        if fault:
            return fault
    message = "could not open file for appending: " + "n" * 300
    return fails_with(ground.run("x = t:q", "--values-out", "n" * 300), message)


def long_working_directory(ground):
    ground.task("t")
    script = (
        "import os, sys\n"
        "for _ in range(30):\n"
        "    os.mkdir('d' * 200)\n"
        "    os.chdir('d' * 200)\n"
        "os.execv(sys.argv[1], sys.argv[1:])\n"
    )
    status, stdout, stderr = ground.run("x = t:q", prefix=(sys.executable, "-c", script))
    return error_line_fault_of(status, stdout, stderr)


def error_line_fault_of(status, stdout, stderr):
    """For cases that may succeed or fail: what is wrong with their end, or None."""
    if (status, stderr) == (0, b"") and stdout.startswith(b"atomvec wrote "):
        return None
    return fails_somehow((status, stdout, stderr))


def deleted_working_directory(ground):
    ground.task("../t")
    script = 'mkdir gone && cd gone && rmdir ../gone && exec "$0" "$@"'
    return fails_somehow(ground.run("x = t:q", prefix=("sh", "-c", script)))


# Change


def entries_vanishing(ground):
    """Tasks come and go while they are listed and read."""
    ground.task("t0")
    ends = threading.Event()

    def churn():
        i = 0
        while not ends.is_set():
            i = i % 40 + 1
            ground.task(f"t{i}")
            os.symlink("t0", ground.path(f"s{i}"))
            shutil.rmtree(ground.path(f"t{i - 20 if i > 20 else i + 20}"), ignore_errors=True)
            if os.path.lexists(ground.path(f"s{i}")):
                os.unlink(ground.path(f"s{i}"))

    thread = threading.Thread(target=churn)
    thread.start()
    try:
        for _ in range(400):
            result = ground.run("x = mean(*:q) --out o.xyz", "--values-out", "../v.kv")
            fault = error_line_fault_of(*result)
            if fault:
                return fault
    finally:
        ends.set()
        thread.join()
    return None


def files_growing(ground):
    """A values file that grows while it is read is read up to the end of some line."""
    ground.task("t")
    ends = threading.Event()

    def grow():
        with open(ground.path("t/.vorq.values.kv"), "ab", buffering=0) as file:
            while not ends.is_set():
                file.write(WATER_Q.encode() * 100)
                if file.tell() > 4 * MIB:
                    file.truncate(0)

    thread = threading.Thread(target=grow)
    thread.start()
    try:
        for _ in range(200):
            result = ground.run("x = t:q")
            # A line may be read half written; its value is then missing.
            fault = writes(ground, result) if result[0] == 0 else fails_somehow(result)
            if fault:
                return fault
            if result[0] == 0:
                os.unlink(ground.path(".vorq.values.kv"))
    finally:
        ends.set()
        thread.join()
    return None


# Size


def many_entries(ground):
    ground.task("t")
    for i in range(1500):
        ground.write(f"t/{i:04}.xyz", "0\n")
        os.mkdir(ground.path(f"other{i}"))
    ground.write("t/last.xyz", WATER_XYZ)
    return writes(ground, ground.run("x = mean(t*:q) --out o.xyz"))


def _sparse(ground, name, begin, size):
    with open(ground.path(name), "wb") as file:
        file.write(begin.encode())
        file.truncate(size)


LITTLE_MEMORY = ("prlimit", f"--as={512 * MIB}")


def sparse_key_value_file(ground):
    """A line too long for memory is an error, not a missing line."""
    ground.task("t")
    _sparse(ground, "t/.vorq.values.kv", WATER_Q, 20 * GIB)
    return fails_with(ground.run("x = t:q", prefix=LITTLE_MEMORY), "std::bad_alloc")


def sparse_trajectory(ground):
    """Only the first frame is read."""
    ground.task("t")
    _sparse(ground, "t/last_a.xyz", WATER_XYZ, 20 * GIB)
    return writes(ground, ground.run("x = t:q --out o.xyz", prefix=LITTLE_MEMORY))


def sparse_comment_line(ground):
    """Takes time but no memory. The file has no atoms, so the next one is used."""
    ground.task("t")
    _sparse(ground, "t/last_a.xyz", "3\n", 20 * GIB)
    return writes(ground, ground.run("x = t:q --out o.xyz", prefix=LITTLE_MEMORY))


def sparse_first_line(ground):
    ground.task("t")
    _sparse(ground, "t/last_a.xyz", "  \t", 2 * GIB)
    result = ground.run("x = t:q --out o.xyz", prefix=LITTLE_MEMORY)
    # A word of 2 GB is too long for memory, which may be an error.
    return error_line_fault_of(*result)


def claimed_counts(ground):
    for count in ("18446744073709551615", "-1", "99999999999", "18446744073709551616"):
        ground.task("t")
        ground.write("t/last_a.xyz", f"{count}\n\nO 0 0 0\n")
        ground.write("t/.vorq.values.kv", f"geometry.atom_count={'9' * 400}\n")
        fault = writes(ground, ground.run("x = t:q --out o.xyz", prefix=LITTLE_MEMORY))
        os.unlink(ground.path(".vorq.values.kv"))
        if fault:
            return fault
    return None


LONG_LINE = "z" * 100 * MIB


def long_comment(ground):
    ground.task("t", "#" + LONG_LINE + "\n" + WATER_Q)
    return writes(ground, ground.run("x = t:q"))


def long_key(ground):
    ground.task("t", LONG_LINE + "=1\n" + WATER_Q)
    return writes(ground, ground.run("x = t:q"))


def long_value(ground):
    ground.task("t", "atoms.1.q=" + LONG_LINE + "\n")
    return fails_with(ground.run("x = t:q"), "t:q atom 1 is not a finite number: " + LONG_LINE)


def long_number(ground):
    ground.task("t", "atoms.1.q=1" + "0" * 100 * MIB + "\n")
    message = "t:q atom 1 is not a finite number: 1" + "0" * 100 * MIB
    return fails_with(ground.run("x = t:q"), message)


def long_fraction(ground):
    ground.task("t", "atoms.1.q=0." + "0" * 100 * MIB + "\natom_count=1\n")
    return writes(ground, ground.run("x = t:q"), b"atoms.1.x=0\n")


def long_geometry_comment(ground):
    ground.task("t", xyz="1\n" + LONG_LINE + "\nO 0 0 0\n", kv="atoms.1.q=1\n")
    fault = writes(ground, ground.run("x = t:q --out o.xyz"), b"atoms.1.x=1\n")
    header = "1\nProperties=species:S:1:pos:R:3:x:R:1 generated_by=vqvec\n"
    line = "O 0.0000000000 0.0000000000 0.0000000000 1\n"
    return fault or writes(ground, (0, b"", b""), (header + line).encode(), "o.xyz")


def long_symbol(ground):
    ground.task("t", xyz="1\n\n" + LONG_LINE + " 0 0 0\n", kv="atoms.1.q=1\n")
    fault = writes(ground, ground.run("x = t:q --chg o.chg"), b"atoms.1.x=1\n")
    line = " " + "    0.0000000000" + " " + "    0.0000000000" + " " + "    0.0000000000"
    return fault or writes(
        ground, (0, b"", b""), (LONG_LINE + line + "  1.0000000000\n").encode(), "o.chg"
    )


def long_atom_line(ground):
    ground.task("t", xyz="1\n\nO 0 0 0 " + LONG_LINE + "\n", kv="atoms.1.q=1\n")
    return writes(ground, ground.run("x = t:q --out o.xyz"), b"atoms.1.x=1\n")


CASES = (
    link_loop_as_task_file,
    link_loop_as_task,
    link_loop_in_glob,
    dangling_link_in_glob,
    dangling_links_as_task_files,
    links_to_directories_as_task_files,
    link_to_itself_from_inside,
    output_through_dangling_link,
    output_through_link_loop,
    fifos,
    sockets,
    full_device_as_output,
    directory_as_output,
    file_as_parent_of_output,
    odd_names_of_outputs,
    long_names,
    long_working_directory,
    deleted_working_directory,
    claimed_counts,
    many_entries,
)
DEVICES = ("/dev/zero", "/dev/full", "/dev/null", "/dev/tty", "/dev/random")
NAMES = (b"\n", b"\x1b[2J", b"\x7f", b"\xff\xfe", b"\xc3(", b"'", b'"', b"\\", b" ", b"=", b":")
LONG_CASES = (
    entries_vanishing,
    files_growing,
    sparse_key_value_file,
    sparse_trajectory,
    sparse_comment_line,
    sparse_first_line,
    long_comment,
    long_key,
    long_value,
    long_number,
    long_fraction,
    long_geometry_comment,
    long_symbol,
    long_atom_line,
)


def _point(label, case):
    def attempt(workspace):
        ground = Ground(workspace)
        try:
            return case(ground)
        finally:
            ground.remove()

    return Point(label, attempt)


def hostile_trees(bench):
    for case in CASES:
        yield _point(case.__name__.replace("_", " "), case)
    for device in DEVICES:
        if os.path.exists(device):
            yield _point(f"links to {device}", _device_case(device))
    for name in NAMES:
        yield _point(f"task name with {name}", _odd_name_case(name))
    if not bench.is_short:
        for case in LONG_CASES:
            yield _point(case.__name__.replace("_", " "), case)
