"""The measured jobs as a user with NumPy would write them.

    with_numpy.py small|big|interleaved|many|history [safe]    (in the `work` directory)

`safe`: stops where vqvec would. Every value must be a number, and every atom must have one. The
counts of atoms in the key-value files and the geometries must agree, and so must the symbols.
"""

import glob
import math
import re
import sys

import numpy as np

IS_SAFE = "safe" in sys.argv[2:]
CHARGE = re.compile(r"^atoms\.(\d+)\.charge\.resp=(.*)$", re.MULTILINE)


def read(path):
    with open(path) as file:
        return file.read()


def require(holds, what):
    if not holds:
        sys.exit(what)


def scalar(text, key):
    value = float(re.search(rf"^{key}=(.*)$", text, re.MULTILINE)[1])
    if IS_SAFE:
        require(math.isfinite(value), f"{key} is not finite")
    return value


def charges(text):
    """The values by atom; if an atom has several, the last one wins."""
    numbers, values = zip(*CHARGE.findall(text))
    atoms = np.array(numbers, dtype=int)
    column = np.full(atoms.max(), np.nan)
    column[atoms - 1] = np.array(values, dtype=float)
    if IS_SAFE:
        require(np.isfinite(column).all(), "an atom has no finite value")
        if "atom_count=" in text:
            require(scalar(text, "atom_count") == len(column), "another number of values")
    return column


def symbols(path):
    return np.loadtxt(path, dtype="U3", skiprows=2, usecols=0)


def check_geometry(count_line, symbol, values):
    if IS_SAFE:
        require(int(count_line) == len(symbol), "the geometry is cut off")
        require(len(symbol) == len(values), "another number of atoms")


def first_line(path):
    with open(path) as file:
        return file.readline()


def write_values(target, values):
    with open(".vorq.values.kv", "a") as file:
        file.writelines(f"atoms.{i}.{target}={v:.15g}\n" for i, v in enumerate(values.tolist(), 1))


def write_extxyz(symbol, position, values):
    rows = zip(symbol.tolist(), position.tolist(), values.tolist())
    with open("mean.extxyz", "w") as file:
        file.write(f"{len(values)}\n")
        file.write("Properties=species:S:1:pos:R:3:charge.mean:R:1 generated_by=vqvec\n")
        file.writelines(f"{s} {x:.10f} {y:.10f} {z:.10f} {v:.15g}\n" for s, (x, y, z), v in rows)


def mean_of_two(shifts_to_total):
    a, b = (read(f"../{task}/.vorq.result.kv") for task in "ab")
    columns = charges(a), charges(b)
    values = sum(columns) / 2
    if shifts_to_total:
        values += (scalar(a, "charge") - values.sum()) / len(values)
    symbol = symbols("../a/last_opt.xyz")
    assert np.array_equal(symbol, symbols("../b/last_opt.xyz"))
    for task, column in zip("ab", columns):
        check_geometry(first_line(f"../{task}/last_opt.xyz"), symbol, column)
    position = np.loadtxt("../a/last_opt.xyz", skiprows=2, usecols=(1, 2, 3))
    write_values("charge.mean", values)
    write_extxyz(symbol, position, values)


def weighted_mean_of_all():
    total_weight = 0.0
    total = 0.0
    expected = None
    for task in sorted(glob.glob("../run*")):
        text = read(f"{task}/.vorq.result.kv")
        weight = scalar(text, "weight")
        values = charges(text)
        total = total + values * weight
        total_weight += weight
        lines = read(f"{task}/last_opt.xyz").splitlines()
        found = [line.split(None, 1)[0] for line in lines[2:]]
        check_geometry(lines[0], found, values)
        expected = expected or found
        assert found == expected
    write_values("charge.mean", total / total_weight)


def half_of_latest():
    write_values("charge.half", charges(read("../a/.vorq.values.kv")) * 0.5)


JOBS = {
    "small": lambda: mean_of_two(True),
    "big": lambda: mean_of_two(False),
    "interleaved": lambda: mean_of_two(False),
    "many": weighted_mean_of_all,
    "history": half_of_latest,
}
JOBS[sys.argv[1]]()
