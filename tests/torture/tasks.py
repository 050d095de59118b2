"""The tree of tasks and the statements for torture: every kind of input and output, in files that
are new, already exist, or take more than one read."""

import os

from trial import Output, Statement

VALUES = ".vorq.values.kv"
BIG = 1500  # atoms


def _column(name, values):
    return "".join(f"atoms.{atom}.{name}={value}\n" for atom, value in enumerate(values, 1))


def _geometry(symbols, comment="made by hand"):
    lines = [str(len(symbols)), comment]
    lines += [f"{symbol} {i * 0.5} {-i * 0.25} 0.1173" for i, symbol in enumerate(symbols)]
    return "\n".join(lines) + "\n"


def lay_out(root):
    """Fills the directory `root`; the program runs in its subdirectory `dir`."""
    water = ["O", "H", "H"]
    files = {
        # Four files, each overriding earlier ones, and unusable geometries before a usable one.
        "scrf/.vorq.result.kv": "# a result\natom_count=3\ncharge=0\n"
        + _column("charge", ["-0.8", "0.4", "0.4"])
        + _column("charge.resp", ["-0.834", "0.417", "0.417"]),
        "scrf/.vorq.values.kv": _column("charge", ["-0.81", "0.405"]),
        "scrf/.vorq.dbcollect.user.kv": "atoms.1.charge = -0.82\n",
        "scrf/.vorq.values.user.kv": "charge=1\natoms.2.charge=0.41\n",
        "scrf/last_broken.xyz": "3\n\nO 0 0 zero\n",
        "scrf/last_short.xyz": "3\n\nO 0 0 0\n",
        "scrf/opt.extxyz": _geometry(water, "Properties=species:S:1:pos:R:3"),
        "vacuum/.vorq.result.kv": "charge=0\n"
        + _column("charge", ["-0.7", "0.35", "0.35"])
        + _column("charge.resp", ["-0.7", "0.3", "0.4"]),
        "vacuum/last_opt.xyz": _geometry(water),
        "bad/.vorq.result.kv": _column("charge", ["-0.7", "zero", "0.35"]),
        "other/.vorq.result.kv": _column("charge", ["1", "2", "3"]),
        "other/other.xyz": _geometry(["S", "H", "H"]),
        # The sibling wins; without it, the same name means the child.
        "twin/.vorq.result.kv": _column("charge", ["1", "2", "3"]),
        "twin/twin.xyz": _geometry(water),
        "dir/twin/.vorq.result.kv": _column("charge", ["10", "20", "30"]),
        "dir/twin/twin.xyz": _geometry(["S", "H", "H"]),
        "dir/.vorq.result.kv": "limit=0.25\n" + _column("q", ["0.1", "-0.2", "0.3"]),
        "dir/self.xyz": _geometry(water),
        "big/.vorq.result.kv": _column("charge", [f"{i / 7:.9f}" for i in range(BIG)]),
        "big/.vorq.values.kv": _column("other", [f"{-i / 3:.9f}" for i in range(BIG)]),
        "big/last_opt.xyz": _geometry(["C"] * BIG),
    }
    for i in (1, 2, 3):
        directory = "store/c3" if i == 3 else f"dir/conf{i}"
        files[f"{directory}/.vorq.result.kv"] = f"weight=0.{i}\natom_count=3\n" + _column(
            "charge", [f"-0.{i}", f"0.{i}", f"0.{i}5"]
        )
        files[f"{directory}/last_opt.xyz"] = _geometry(water)
    for name, text in files.items():
        path = os.path.join(root, name)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "w", encoding="utf-8") as file:
            file.write(text)
    os.symlink("../store/c3", os.path.join(root, "dir", "conf3"))


def _atom(statement, *options):
    return ("atom", "--dsl", statement, *options)


OLD_VALUES = b"atoms.1.old=9\natoms.2.old=8\n"  # no statement reads these back
OLD_RECORD = b"# kept by hand\nmarker=1"  # no line feed: the appended text follows directly
LONG = b"an earlier and longer run\n" * 60

STATEMENTS = (
    Statement("reference", _atom("q = scrf:charge"), (Output(VALUES, True, OLD_VALUES),)),
    Statement(
        "two tasks",
        _atom(
            "charge.resp2 = mean(scrf:charge.resp, vacuum:charge.resp)"
            " --check same_atoms --sum @scrf.charge --out resp2.extxyz",
            "--record-kv",
            "record.kv",
        ),
        (
            Output(VALUES, True),
            Output("record.kv", True, OLD_RECORD),
            Output("resp2.extxyz", False),
        ),
    ),
    Statement(
        "all new",
        _atom(
            "q2 = sub(scrf:charge, vacuum:charge) --extxyz new/a/o.extxyz --chg new/b/o.chg",
            "--values-out",
            "new/c/v.kv",
            "--record-kv",
            "new/d/r.kv",
            "--snapshot-kv",
            "new/e/s.kv",
        ),
        (
            Output("new/c/v.kv", True),
            Output("new/d/r.kv", True),
            Output("new/e/s.kv", False),
            Output("new/a/o.extxyz", False),
            Output("new/b/o.chg", False),
        ),
        {"VORQUIL_TASKNAME": "t", "VORQUIL_INPUTNAME": "i", "VORQUIL_STRUCID": "s7"},
    ),
    Statement(
        "all old",
        _atom(
            "charge = wmean(conf*:charge, @weight) --check same_atoms"
            " --out out/o.extxyz --chg out/o.chg",
            "--values-out",
            "out/v.kv",
            "--record-kv",
            "out/r.kv",
            "--snapshot-kv",
            "out/s.kv",
        ),
        (
            Output("out/v.kv", True, OLD_VALUES),
            Output("out/r.kv", True, OLD_RECORD),
            Output("out/s.kv", False, LONG),
            Output("out/o.extxyz", False, LONG),
            Output("out/o.chg", False, LONG),
        ),
    ),
    Statement(
        "big",
        _atom(
            "b = add(big:charge, big:other) --check same_atoms --out out/o.extxyz --chg out/o.chg",
            "--values-out",
            "out/v.kv",
            "--record-kv",
            "out/r.kv",
        ),
        (
            Output("out/v.kv", True, OLD_VALUES),
            Output("out/r.kv", True),
            Output("out/o.extxyz", False, LONG),
            Output("out/o.chg", False),
        ),
    ),
    Statement(
        "path glob",
        _atom('q = first("../v*:charge") --geom self --out first.extxyz'),
        (Output(VALUES, True), Output("first.extxyz", False)),
    ),
    Statement(
        "arithmetic",
        _atom("q = clip(scale(sub(scrf:charge, vacuum:charge), sum(self:q)), -0.5, @limit)"),
        (Output(VALUES, True, OLD_VALUES),),
    ),
    Statement(
        "nested mean",
        _atom("q = mean(neg(twin:charge)) --geom twin --chg twin.chg"),
        (Output(VALUES, True), Output("twin.chg", False, LONG)),
    ),
    Statement(
        "weight expression",
        _atom(
            "q = wsum(conf?:charge, 'sum(scrf:charge)')", "--values-out", "", "--record-kv", "r.kv"
        ),
        (Output("r.kv", True),),
    ),
    Statement(
        "snapshot",
        _atom("q = renorm(abs(self:q), @vacuum.charge)", "--snapshot-kv", "s.kv"),
        (Output(VALUES, True), Output("s.kv", False, LONG)),
        {"VORQUIL_STRUCID": "s7"},
    ),
    Statement(
        "fails after writing",
        _atom("q = scrf:charge --geom big --out o.extxyz", "--record-kv", "record.kv"),
        (
            Output(VALUES, True, OLD_VALUES),
            Output("record.kv", True, OLD_RECORD),
            Output("o.extxyz", False, LONG),
        ),
    ),
    Statement(
        "check fails",
        _atom("q = mean(scrf:charge, other:charge) --check same_atoms"),
        (Output(VALUES, True, OLD_VALUES),),
    ),
    Statement("bad number", _atom("q = mean(bad:charge)"), (Output(VALUES, True),)),
    Statement(
        "long message",
        _atom("q = " + "x" * 100_000 + "(scrf:charge)"),
        (Output(VALUES, True, OLD_VALUES),),
    ),
    Statement("usage", ("--help",)),
    Statement("no statement", ("atom",)),
    Statement("unknown mode", ("ATOM", "--dsl", "q = scrf:charge")),
)
