"""Shared by the tests of ktsign: a new directory for each test, and runs of programs in it."""
import os
import pathlib
import re
import subprocess
import tempfile
import unittest

KTSIGN = os.environ["KTSIGN"]
EXAMPLES = os.environ["EXAMPLES"]
BUILT = os.environ["BUILT"]  # the folder of what was built for these tests


def run(*words, program=KTSIGN, before=(), **options):
    return subprocess.run([*before, program, *words], capture_output=True, text=True, **options)


def value(text, name):
    """Finds the value of a name in lines of a name and a value."""
    return dict(line.split(" ", 1) for line in text.splitlines())[name]


def domain_numbers(file):
    """p, q and g."""
    numbers = dict(re.findall(r"^([pqg]) = (\w+)", pathlib.Path(file).read_text(), re.M))
    return [int(numbers[name], 16) for name in "pqg"]


class Test(unittest.TestCase):
    def setUp(self):
        directory = tempfile.TemporaryDirectory()
        self.addCleanup(directory.cleanup)
        self.addCleanup(os.chdir, os.getcwd())
        os.chdir(directory.name)

    def does(self, *words, **options):
        """Expects success without a message. Returns the output."""
        done = run(*words, **options)
        self.assertEqual((0, ""), (done.returncode, done.stderr), words)
        return done.stdout
