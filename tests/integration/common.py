"""Shared by the tests in Python."""
import os
import subprocess
import sys
import tempfile
import unittest

PROGRAM = os.path.realpath(sys.argv[1])
ROOT = os.path.realpath(sys.argv[2])  # of the source tree


def skip(reason):
    print("skipped:", reason)
    sys.exit(77)


class InScratch(unittest.TestCase):
    """Runs each test in its own directory, which contains the task `water`."""

    SYMBOLS = ["O", "H", "H"]
    POSITIONS = [
        [0.0123456789, -1.5, 0.1173],
        [12345.678, 0.7572, -0.4692],
        [1e-10, -0.7572, -0.4692],
    ]
    CHARGES = [-0.834, 0.41712345678, 0.41687654322]

    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.addCleanup(os.chdir, os.getcwd())
        os.mkdir(scratch.name + "/run")  # its siblings are searched too
        os.chdir(scratch.name + "/run")
        self.make_task("water", self.CHARGES)
        lines = [f"{s} {x!r} {y!r} {z!r}" for s, (x, y, z) in zip(self.SYMBOLS, self.POSITIONS)]
        self.write("water/last_opt.xyz", "3\n\n" + "\n".join(lines) + "\n")

    def make_task(self, name, charges):
        os.mkdir(name)
        lines = [f"atoms.{n}.q={value!r}\n" for n, value in enumerate(charges, 1)]
        self.write(f"{name}/.vorq.result.kv", "".join(lines))

    def write(self, path, text):
        with open(path, "w", encoding="utf-8", newline="") as file:
            file.write(text)

    def read(self, path):
        with open(path, encoding="utf-8") as file:
            return file.read()

    def run_statement(self, statement):
        subprocess.run([PROGRAM, "atom", "--dsl", statement], check=True, stdout=subprocess.PIPE)


def main():
    unittest.main(argv=sys.argv[:1])
