"""The measured jobs, the data that each needs, and the programs that do them."""

import dataclasses
import pathlib
import shutil
import subprocess

SCRIPTS = pathlib.Path(__file__).resolve().parent / "peers"

MEAN = "charge.mean = mean(a:charge.resp, b:charge.resp) --check same_atoms"
WMEAN = "charge.mean = wmean(run*:charge.resp, weight) --check same_atoms"

VALUES = ".vorq.values.kv"
EXTXYZ = "mean.extxyz"
STDOUT = "stdout"
OUTPUTS = (VALUES, EXTXYZ, STDOUT)

PEERS = ("NumPy", "safe NumPy", "awk", "safe awk", "Miller")


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
    aims: dict  # by the quantities of bench/report.py


@dataclasses.dataclass(frozen=True)
class Fault:
    """A change to a file of one task, at which a careful program stops."""

    name: str
    file: str
    pattern: bytes
    replacement: bytes


def faults(workload):
    """Those that matter to the workload: without a count of atoms, no value is missed."""
    kind = workload.data.kind
    results = VALUES if kind == "history" else ".vorq.result.kv"

    def values_of(atom):
        return rb"^(atoms[.]%d[.]charge[.]resp=).*\n" % atom

    found = [Fault("text as a value", results, values_of(3), rb"\1abc\n")]
    if kind != "history":
        found += [
            Fault("a missing value", results, values_of(2), b""),
            Fault("a missing last value", results, values_of(workload.data.atoms), b""),
            Fault("another symbol", "last_opt.xyz", rb"\A(.*\n.*\n)\w+", rb"\1Xe"),
        ]
    if kind == "many":
        found.append(Fault("a missing weight", results, rb"^weight=.*\n", b""))
    return found


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

    def faster(times):
        return {peer: times for peer in ("NumPy", "awk", "Miller")}

    return [
        Workload("small", "2 tasks of 3 atoms, shifted to a total, with an extended-XYZ file",
                 Data("pair", 3, 1), f"{MEAN} --sum @a.charge --out {EXTXYZ}", 500,
                 {"time / floor": 1.17, "awk": 1}),
        Workload("big", f"2 tasks of {atoms:,} atoms, with an extended-XYZ file",
                 Data("pair", atoms, 1), f"{MEAN} --out {EXTXYZ}", rounds,
                 {"time / floor": 0.85, "memory / floor": 1.25, **faster(5)}),
        Workload("interleaved", "as `big`, but the files contain three properties of each atom",
                 Data("pair", atoms, 3), f"{MEAN} --out {EXTXYZ}", rounds,
                 {"time / floor": 0.95, "memory / floor": 1.25, **faster(5)}),
        Workload("many", f"weighted mean over {tasks:,} tasks of 50 atoms",
                 Data("many", 50, tasks), WMEAN, rounds,
                 {"time / floor": 1.4, "memory, MiB": 20, "NumPy": 3, "awk": 2, "Miller": 15}),
        Workload("history",
                 f"a values file with the results of {history[1]} runs on {history[0]:,} atoms",
                 Data("history", *history), "charge.half = scale(a:charge.resp, 0.5)",
                 rounds, {"time / floor": 1.38, **faster(4)}),
    ]  # fmt: skip


def program(executable, statement):
    return Job("vqvec", STDOUT, (str(executable), "atom", "--dsl", statement))


def many_or_one_statement(executable, tasks):
    """Two jobs with the same sum."""
    loop = ('for task in ../run*; do '
            '"$0" atom --dsl "charge.total = add($sum${task##*/}:charge.resp)"; '
            'sum="self:charge.total, "; '
            'done')  # fmt: skip
    one = program(executable, "charge.total = add(run*:charge.resp)")
    return (
        Job(f"{tasks} statements, each adding a task", STDOUT,
            ("sh", "-e", "-c", loop, str(executable))),
        dataclasses.replace(one, name=f"one statement, adding {tasks} tasks"),
    )  # fmt: skip


def compact_history(work):
    """Makes a task b with the last line of each key in the file of a."""
    compact = "tac ../a/$0 | awk -F = '!seen[$1]++' | tac >../b/$0"
    (work.parent / "b").mkdir(exist_ok=True)
    subprocess.run(["sh", "-e", "-c", compact, VALUES], cwd=work, check=True)


def long_or_compact_file(executable, history):
    """Two jobs with the same result; for the second, see compact_history."""
    about = f"{history.data.atoms:,} atoms from a values file of {history.data.number} runs"
    long = program(executable, history.statement)
    compact = program(executable, history.statement.replace("a:", "b:"))
    return (
        dataclasses.replace(long, name=about),
        dataclasses.replace(compact, name=f"{about}, compacted"),
    )


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
            numpy = (self.python, str(SCRIPTS / "with_numpy.py"), name)
            jobs += [Job("NumPy", STDOUT, numpy), Job("safe NumPy", STDOUT, (*numpy, "safe"))]
        if self.has_awk:
            awk = ["-f", str(SCRIPTS / f"{script}.awk")]
            awk += ["-v", "shifts_to_total=1"] if shift else []
            awk += ["FS==", *kv] + (["FS= ", *xyz] if xyz else [])
            safe = ["-f", str(SCRIPTS / "safe.awk")]
            safe += ["-v", "needs_weight=1"] if script == "wmean" else []
            jobs += [Job("awk", STDOUT, with_globs(["mawk", *awk])),
                     Job("safe awk", STDOUT, with_globs(["mawk", *safe, *awk]))]  # fmt: skip
        if self.has_miller:
            miller = ["mlr", "--inidx", "--ifs", "=", "put", "-q"]
            miller += ["-s", "shifts_to_total=true"] if shift else []
            miller += ["-f", str(SCRIPTS / f"{script}.mlr"), *kv, *xyz]
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
    top = {"full": 0, "quick": 1, "tiny": 3}[size]  # how many powers of ten to leave out

    def sizes(first, last):
        return [10**power for power in range(first, last - top + 1)]

    tiny = Data("pair", 3, 1)
    return [
        Growth("atoms", "atom", tuple(
            (n, Data("pair", n, 1), f"{MEAN} --out {EXTXYZ}") for n in sizes(3, 6))),
        Growth("tasks", "task", tuple((n, Data("many", 50, n), WMEAN) for n in sizes(1, 5))),
        Growth("references", "reference", tuple(
            (n, tiny, long_statement(n)) for n in (8, 80, 800, 8000))),  # more are too long to pass
        Growth("nested calls", "nested call", tuple(
            (n, tiny, nested_statement(n)) for n in (10, 100, 1000))),  # more are not allowed
    ]  # fmt: skip


def long_statement(references):
    return f"x = add({', '.join(['a:charge.resp'] * references)})"


def nested_statement(calls):
    return f"x = {'neg(' * calls}a:charge.resp{')' * calls}"
