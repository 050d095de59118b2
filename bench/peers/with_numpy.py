"""The measured jobs as a user with NumPy would write them.

    with_numpy.py small|big|interleaved|many|history    (in the `work` directory)
"""

import glob
import re
import sys

import numpy as np

CHARGE = re.compile(r"^atoms\.(\d+)\.charge\.resp=(.*)$", re.MULTILINE)


def read(path):
    with open(path) as file:
        return file.read()


def scalar(text, key):
    return float(re.search(rf"^{key}=(.*)$", text, re.MULTILINE)[1])


def charges(text):
    """The values by atom; if an atom has several, the last one wins."""
    numbers, values = zip(*CHARGE.findall(text))
    atoms = np.array(numbers, dtype=int)
    column = np.empty(atoms.max())
    column[atoms - 1] = np.array(values, dtype=float)
    return column


def symbols(path):
    return np.loadtxt(path, dtype="U3", skiprows=2, usecols=0)


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
    values = (charges(a) + charges(b)) / 2
    if shifts_to_total:
        values += (scalar(a, "charge") - values.sum()) / len(values)
    symbol = symbols("../a/last_opt.xyz")
    assert np.array_equal(symbol, symbols("../b/last_opt.xyz"))
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
        total = total + charges(text) * weight
        total_weight += weight
        found = [line.split(None, 1)[0] for line in read(f"{task}/last_opt.xyz").splitlines()[2:]]
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
