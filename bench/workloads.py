"""The measured jobs, the data that each needs, and the programs that do them."""

import dataclasses
import pathlib
import shutil
import subprocess

PEERS = pathlib.Path(__file__).resolve().parent / "peers"

MEAN = "charge.mean = mean(a:charge.resp, b:charge.resp) --check same_atoms"
WMEAN = "charge.mean = wmean(run*:charge.resp, weight) --check same_atoms"

VALUES = ".vorq.values.kv"
EXTXYZ = "mean.extxyz"
STDOUT = "stdout"
OUTPUTS = (VALUES, EXTXYZ, STDOUT)


@dataclasses.dataclass(frozen=True)
class Data:
    """Arguments of bench/generate.cpp, which explains them."""

    kind: str
    atoms: int
    number: int

    @property
    def name(self):
        return f"{self.kind}-{self.atoms}-{self.number}"


@dataclasses.dataclass(frozen=True)
class Workload:
    name: str
    about: str
    data: Data
    statement: str
    rounds: int
    floor_aim: float  # at most this many times the processor time of the floor
    peer_aim: float  # at least this many times faster than each peer
    memory_aim: float = None  # at most this many times the peak memory of the floor


@dataclasses.dataclass(frozen=True)
class Job:
    name: str
    stdout: str
    command: tuple


def workloads(size, quick_rounds):
    """`size` is full, quick or tiny."""
    atoms, tasks, history = {
        "full": (1_000_000, 10_000, (20_000, 200)),
        "quick": (100_000, 1_000, (20_000, 20)),
        "tiny": (50, 5, (7, 3)),
    }[size]
    rounds = 7 if quick_rounds else 9
    return [
        Workload("small", "2 tasks of 3 atoms, shifted to a total, with an extended-XYZ file",
                 Data("pair", 3, 1), f"{MEAN} --sum @a.charge --out {EXTXYZ}", 500, 1.3, 1),
        Workload("big", f"2 tasks of {atoms:,} atoms, with an extended-XYZ file",
                 Data("pair", atoms, 1), f"{MEAN} --out {EXTXYZ}", rounds, 1.25, 5, 1.3),
        Workload("interleaved", "as `big`, but the files contain three properties of each atom",
                 Data("pair", atoms, 3), f"{MEAN} --out {EXTXYZ}", rounds, 1.5, 5, 1.3),
        Workload("many", f"weighted mean over {tasks:,} tasks of 50 atoms",
                 Data("many", 50, tasks), WMEAN, rounds, 1.3, 4),
        Workload("history",
                 f"a values file with the results of {history[1]} runs on {history[0]:,} atoms",
                 Data("history", *history), "charge.half = scale(a:charge.resp, 0.5)",
                 rounds, 1.5, 4),
    ]  # fmt: skip


def program(executable, statement):
    return Job("vqvec", STDOUT, (str(executable), "atom", "--dsl", statement))


def floor(executable, workload):
    return Job("floor", STDOUT, (str(executable), workload.name))


class Peers:
    """The peers on this machine; `missing` names the others."""

    def __init__(self):
        self.missing = []
        self.python = find_numpy()
        self.has_awk = shutil.which("mawk") is not None
        self.has_miller = shutil.which("mlr") is not None
        if self.python is None:
            self.missing.append("NumPy (Debian: python3-numpy)")
        if not self.has_awk:
            self.missing.append("awk (Debian: mawk)")
        if not self.has_miller:
            self.missing.append("Miller (Debian: miller)")

    def jobs(self, workload):
        name = workload.name
        kv, xyz = inputs(workload)
        script = {"many": "wmean", "history": "half"}.get(name, "mean")
        shift = name == "small"
        jobs = []
        if self.python is not None:
            jobs.append(Job("NumPy", STDOUT, (self.python, str(PEERS / "with_numpy.py"), name)))
        if self.has_awk:
            awk = ["mawk", "-f", str(PEERS / f"{script}.awk")]
            awk += ["-v", "shifts_to_total=1"] if shift else []
            awk += ["FS==", *kv] + (["FS= ", *xyz] if xyz else [])
            jobs.append(Job("awk", STDOUT, with_globs(awk)))
        if self.has_miller:
            miller = ["mlr", "--inidx", "--ifs", "=", "put", "-q"]
            miller += ["-s", "shifts_to_total=true"] if shift else []
            miller += ["-f", str(PEERS / f"{script}.mlr"), *kv, *xyz]
            jobs.append(Job("Miller", EXTXYZ if script == "mean" else STDOUT, with_globs(miller)))
        return jobs


def inputs(workload):
    if workload.data.kind == "many":
        return ["../run*/.vorq.result.kv"], ["../run*/last_opt.xyz"]
    if workload.data.kind == "history":
        return ["../a/.vorq.values.kv"], []
    return ([f"../{task}/.vorq.result.kv" for task in "ab"],
            [f"../{task}/last_opt.xyz" for task in "ab"])  # fmt: skip


def with_globs(words):
    """The words, run through a shell if it must expand some; the shell then becomes the program."""
    if not any("*" in word for word in words):
        return tuple(words)
    return ("sh", "-c", "exec " + " ".join(w if "*" in w else f"'{w}'" for w in words))


def find_numpy():
    for python in ("python3", "/usr/bin/python3"):
        probe = [python, "-c", "import numpy"]
        if shutil.which(python) and subprocess.run(probe, capture_output=True).returncode == 0:
            return python
    return None


def peer_versions(peers):
    """One text for each installed peer."""
    commands = {
        "NumPy": [peers.python, "-c", "import numpy; print(numpy.__version__)"],
        "awk": ["mawk", "-W", "version"],
        "Miller": ["mlr", "--version"],
    }
    present = {"NumPy": peers.python, "awk": peers.has_awk, "Miller": peers.has_miller}
    texts = []
    for name, command in commands.items():
        if present[name]:
            out = subprocess.run(command, capture_output=True, text=True, stdin=subprocess.DEVNULL)
            line = (out.stdout + out.stderr).splitlines()[0].rstrip(",")
            texts.append(f"{name} {line}" if name == "NumPy" else line)
    return texts


@dataclasses.dataclass(frozen=True)
class Growth:
    """One quantity that grows while everything else stays the same."""

    name: str
    unit: str
    points: tuple  # of (size, data, statement), in increasing order of size


def growths(size):
    top = {"full": 0, "quick": 1}[size]  # how many powers of ten to leave out

    def sizes(first, last):
        return [10**power for power in range(first, last - top + 1)]

    tiny = Data("pair", 3, 1)
    return [
        Growth("atoms", "atom", tuple(
            (n, Data("pair", n, 1), f"{MEAN} --out {EXTXYZ}") for n in sizes(3, 6))),
        Growth("tasks", "task", tuple((n, Data("many", 50, n), WMEAN) for n in sizes(1, 5))),
        Growth("references", "reference", tuple(
            (n, tiny, long_statement(n)) for n in sizes(1, 4))),
        Growth("nested calls", "nested call", tuple(
            (n, tiny, nested_statement(n)) for n in (10, 100, 1000))),  # more are not allowed
    ]  # fmt: skip


def long_statement(references):
    return f"x = add({', '.join(['a:charge.resp'] * references)})"


def nested_statement(calls):
    return f"x = {'neg(' * calls}a:charge.resp{')' * calls}"
