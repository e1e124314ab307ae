"""What the tests of ktsign share: a fresh directory for each test, and runs of the program in it."""
import os
import pathlib
import subprocess
import tempfile
import unittest

KTSIGN = os.environ["KTSIGN"]


def run(*words, program=KTSIGN, before=(), **options):
    """Runs PROGRAM WORD..., and returns its status, standard output and standard error."""
    return subprocess.run([*before, program, *map(str, words)], capture_output=True,
                          **{"text": True, **options})


def contents():
    """The files here, by their size and what they begin with."""
    return {name: (os.path.getsize(name), open(name, "rb").read(1 << 16))
            for name in os.listdir() if os.path.isfile(name)}


def value(text, name):
    """The value in lines of a name and a value."""
    return dict(line.split(" ", 1) for line in text.splitlines())[name]


class Test(unittest.TestCase):
    def setUp(self):
        directory = tempfile.TemporaryDirectory()
        self.addCleanup(directory.cleanup)
        self.addCleanup(os.chdir, os.getcwd())
        os.chdir(directory.name)

    def does(self, *words, **options):
        """A run that must succeed. Returns its standard output."""
        done = run(*words, **options)
        self.assertEqual((0, ""), (done.returncode, done.stderr), words)
        return done.stdout

    def expect_whole_pair(self, key):
        """The public key beside `key` is the one that `key` makes."""
        self.assertEqual(256, os.path.getsize(key + ".pub"))
        self.assertEqual(value(self.does("show", key), "key-fingerprint"),
                         value(self.does("show", key + ".pub"), "key-fingerprint"))
