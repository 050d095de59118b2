"""Shared by the tests of vqvec-check, vqvec-draw and vqvec-weights."""
import os
import shutil
import subprocess
import sys
import tempfile
import unittest

PROGRAM = os.path.realpath(sys.argv[1])
TOOLS = os.path.join(os.path.realpath(sys.argv[2]), "tools")  # of the source tree


class InScratch(unittest.TestCase):
    """Runs each test in an empty directory, which has no siblings."""

    TOOL = ""
    maxDiff = None

    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.addCleanup(os.chdir, os.getcwd())
        self.scratch = os.path.realpath(scratch.name)
        os.mkdir(self.scratch + "/run")
        os.chdir(self.scratch + "/run")

    def write(self, path, text):
        os.makedirs(os.path.dirname(os.path.abspath(path)), exist_ok=True)
        with open(path, "wb") as file:
            file.write(text if isinstance(text, bytes) else text.encode())

    def read(self, path):
        with open(path, encoding="utf-8") as file:
            return file.read()

    def run_tool(self, *arguments, start=(), **options):
        """Exit status, standard output and standard error."""
        done = subprocess.run([*start, f"{TOOLS}/{self.TOOL}", *arguments], **{
            "stdout": subprocess.PIPE, "stderr": subprocess.PIPE, "check": False, **options})
        return done.returncode, (done.stdout or b"").decode(), (done.stderr or b"").decode()

    def expect_failure(self, message, *arguments, **options):
        self.assertEqual(self.run_tool(*arguments, **options),
                         (1, "", f"{self.TOOL}: {message}\n"))

    def run_statement(self, statement, *options):
        """Exit status, and the report or the message without its prefix."""
        done = subprocess.run([PROGRAM, "atom", "--dsl", statement, *options], check=False,
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        output = (done.stdout + done.stderr).decode()
        return done.returncode, output.removeprefix("错误: ").removesuffix("\n")

    def as_ordinary_user(self):
        """What to put before a command so that permissions matter, even to the superuser."""
        if os.geteuid() != 0:
            return []
        if not shutil.which("setpriv"):
            self.skipTest("setpriv is not installed")
        return ["setpriv", "--bounding-set=-all", "--inh-caps=-all"]


def main():
    unittest.main(argv=sys.argv[:1])
