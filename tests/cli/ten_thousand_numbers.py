#!/usr/bin/python3 -B
"""The files for ten_thousand_numbers.txt: a task to be read, and what must be written for it.

    ten_thousand_numbers.py input     writes the directory `a`
    ten_thousand_numbers.py expected  writes expected.kv, expected.extxyz and expected.chg

Python reads and prints numbers with correct rounding, by code of its own. The numbers are those
where other code goes wrong: of all magnitudes, half way between two doubles when they are read, or
between two texts when they are printed.
"""

import math
import os
import random
import struct
import sys
from decimal import Context, Decimal

COUNT = 10_000
EXACT = Context(prec=2000)
SYMBOLS = "H", "Cl", "Uuo", "Long"
SPECIALS = (
    "0", "-0", "+0.0", "1e-400", "-1e-400", "1", "-1.", ".5", "+.5e+1", "1E3", "0001", "1e0000001",
    "4.9406564584124654e-324", "2.4703282292062327e-324", "2.4703282292062328e-324",
    "2.2250738585072011e-308", "2.2250738585072014e-308", "9007199254740993",
    "99999999999999.95", "999999999999999.5", "0.000099999999999999995", "9.9999999999999995e22",
    "1e23", "8.5e-11", "0.00000000005", "0.00000000015", "-0.00000000005", "5e-11", "15e-11",
    "0.99999999995",
)  # fmt: skip

# The module promises the same sequence in every version of Python for this method only.
draw = random.Random(1).random


def below(limit):
    return int(draw() * limit)


def double_of(bits):
    return struct.unpack("<d", struct.pack("<Q", bits))[0]


def any_double():
    """A finite number of any magnitude."""
    sign, exponent, fraction = below(2), below(2047), below(2**52)
    return double_of(sign << 63 | exponent << 52 | fraction)


def neighbour(number):
    return (number, math.nextafter(number, math.inf), math.nextafter(number, -math.inf))[below(3)]


def signed(number):
    return number if below(2) else -number


def tie_of_15_digits():
    """Has 16 significant digits, of which the last is 5."""
    decimals = 1 + below(7)
    scale = 2**decimals
    least = 10 ** (15 - decimals)
    return signed((least * scale + (below(9 * least * scale) | 1)) / scale)


def tie_of_10_decimals():
    """Has 11 decimals, of which the last is 5."""
    return signed((below(2 ** (11 + below(42))) | 1) / 2**11)


def near_half_way():
    """The text of a number half way between two doubles, or hardly more or less."""
    low = double_of((900 + below(250) if below(4) else below(2046)) << 52 | below(2**52))
    high = math.nextafter(low, math.inf)
    middle = EXACT.divide(EXACT.add(Decimal(low), Decimal(high)), Decimal(2))
    last = middle.as_tuple().exponent
    step = Decimal((0, (1,), last - below(20)))
    return str((middle, EXACT.add(middle, step), EXACT.subtract(middle, step))[below(3)])


def short_decimal():
    """As most programs print it."""
    return f"{signed(draw() * 10 ** below(4)):.{below(18)}f}"


KINDS = (
    lambda: repr(any_double()),
    lambda: f"{any_double():.{17 + below(20)}e}",
    lambda: repr(tie_of_15_digits()),
    lambda: repr(tie_of_10_decimals()),
    near_half_way,
    lambda: repr(neighbour(float(f"1e{below(632) - 323}"))),
    lambda: repr(neighbour(math.ldexp(1, below(2097) - 1073))),
    lambda: repr(double_of(below(2**52))),  # below the normal ones
    short_decimal,
    lambda: str(signed(below(2**53) * below(2**53))),
    lambda: SPECIALS[below(len(SPECIALS))],
)


def texts():
    """Of each atom: its value and its coordinates."""
    for i in range(COUNT):
        value = KINDS[i % len(KINDS)]()
        if i % 23 == 0:
            value = any_double().hex()
        # Only a third of the coordinates may have hundreds of digits.
        x = KINDS[below(len(KINDS))]()
        yield value, x, repr(tie_of_10_decimals()), short_decimal()


def number(text):
    return float.fromhex(text) if "0x" in text else float(text)


def write(path, lines):
    with open(path, "w", encoding="ascii", newline="") as file:
        file.writelines(line + "\n" for line in lines)


def write_input():
    atoms = list(texts())
    os.mkdir("a")
    values = (f"atoms.{i}.q={value}" for i, (value, *_) in enumerate(atoms, 1))
    write("a/.vorq.result.kv", values)
    lines = (
        " ".join((SYMBOLS[i % len(SYMBOLS)], *position)) for i, (_, *position) in enumerate(atoms)
    )
    write("a/a.xyz", [str(COUNT), "", *lines])


def write_expected():
    atoms = [
        (SYMBOLS[i % len(SYMBOLS)], *map(number, one)) for i, one in enumerate(texts())
    ]
    write("expected.kv", (f"atoms.{i}.r={atom[1]:.15g}" for i, atom in enumerate(atoms, 1)))
    properties = "Properties=species:S:1:pos:R:3:r:R:1 generated_by=vqvec"
    lines = (f"{symbol} {x:.10f} {y:.10f} {z:.10f} {q:.15g}" for symbol, q, x, y, z in atoms)
    write("expected.extxyz", [str(COUNT), properties, *lines])
    write("expected.chg", (
        f"{symbol:3} {x:16.10f} {y:16.10f} {z:16.10f} {' ' if q >= 0 else ''}{q:.10f}"
        for symbol, q, x, y, z in atoms
    ))  # fmt: skip


{"input": write_input, "expected": write_expected}[sys.argv[1]]()
