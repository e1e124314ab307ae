"""Sends ktsign a signal at each of its system calls, and makes each system call fail once."""
import concurrent.futures
import os
import pathlib
import re
import shutil
import sys
import tempfile
import unittest

from harness import Test, run, value

STRACE = ["strace", "-o"]


def system_calls(words, prepared):
    """The calls of a run without a fault: for each its name, and its number among the calls of that name."""
    directory = shutil.copytree(prepared, tempfile.mkdtemp(dir="."), dirs_exist_ok=True)
    assert run(*words, before=[*STRACE, "../trace"], cwd=directory).returncode == 0
    # A build for coverage writes its counts last. A fault there would only damage the counts.
    trace = pathlib.Path("trace").read_text().split(".gcda")[0]
    names = re.findall(r"^(\w+)\(", trace, re.M)
    return [(name, names[:i + 1].count(name)) for i, name in enumerate(names) if name != "exit_group"]


class Interruptions(Test):
    def setUp(self):
        super().setUp()
        os.mkdir("empty")
        os.mkdir("signed")
        pathlib.Path("signed/file").write_text("content")
        self.does("new-key", "key", cwd="signed")
        self.does("sign", "key", "file", cwd="signed")

    def strike(self, words, prepared, kind, judge):
        """Injects a fault at each call, with the kinds in rotation. `judge` gets the directory and the run."""
        def inject(at):
            number, (name, count) = at
            directory = shutil.copytree(prepared, tempfile.mkdtemp(dir="."), dirs_exist_ok=True)
            injection = f"inject={name}:{kind[number % len(kind)]}:when={count}"
            done = run(*words, before=[*STRACE, "/dev/null", "-e", injection], cwd=directory)
            return injection, directory, done
        calls = system_calls(words, prepared)
        self.assertIn(("fsync", 2), calls)
        with concurrent.futures.ThreadPoolExecutor(2) as pool:
            for injection, directory, done in pool.map(inject, enumerate(calls)):
                with self.subTest(injection):
                    judge(directory, done)
                    if injection.startswith("inject=fsync:error"):
                        self.assertEqual(2, done.returncode)
                shutil.rmtree(directory)

    def fingerprint(self, directory, name):
        return value(self.does("show", name, cwd=directory), "key-fingerprint")

    def expect_pair(self, directory):
        self.assertEqual(self.fingerprint(directory, "key"), self.fingerprint(directory, "key.pub"))

    def expect_pair_or_nothing(self, directory, done):
        names = sorted(os.listdir(directory))
        self.assertIn(names, [[], ["key", "key.pub"]])
        if names:
            self.expect_pair(directory)
        else:
            self.assertNotEqual(0, done.returncode)

    def expect_pair_after_the_next_run(self, directory, _):
        names = {name for name in os.listdir(directory) if not re.fullmatch(r"\.key.*\.ktsign-\w{6}", name)}
        if names == {"key", "key.pub"}:
            return self.expect_pair(directory)
        before = self.fingerprint(directory, "key") if names else None
        self.assertIn(names, [set(), {"key"}])
        self.assertEqual(0, run("new-key", "key", cwd=directory).returncode)
        self.expect_pair(directory)
        self.assertIn(before, [None, self.fingerprint(directory, "key")])

    def expect_signature(self, directory, _):
        self.assertEqual(["file", "file.sig", "key", "key.pub"], sorted(os.listdir(directory)))
        self.does("verify", "key.pub", "file", cwd=directory)

    def expect_signature_beside_a_temporary_file(self, directory, done):
        for name in os.listdir(directory):
            if re.fullmatch(r"\.file\.sig\.ktsign-\w{6}", name):
                os.remove(os.path.join(directory, name))
        self.expect_signature(directory, done)

    def test_a_signal_leaves_a_whole_pair_or_nothing(self):
        kinds = ["signal=INT", "signal=TERM", "signal=HUP"]
        self.strike(["new-key", "key"], "empty", kinds, self.expect_pair_or_nothing)

    def test_a_signal_leaves_a_whole_signature(self):
        kinds = ["signal=INT", "signal=TERM", "signal=HUP"]
        self.strike(["sign", "key", "file"], "signed", kinds, self.expect_signature)

    def test_the_next_run_completes_a_pair_after_a_kill(self):
        self.strike(["new-key", "key"], "empty", ["signal=KILL"], self.expect_pair_after_the_next_run)

    def test_a_kill_leaves_a_whole_signature(self):
        self.strike(["sign", "key", "file"], "signed", ["signal=KILL"],
                    self.expect_signature_beside_a_temporary_file)

    def test_a_failing_call_leaves_a_whole_pair_or_nothing(self):
        self.strike(["new-key", "key"], "empty", ["error=EIO"], self.expect_pair_or_nothing)

    def test_a_failing_call_leaves_a_whole_signature(self):
        self.strike(["sign", "key", "file"], "signed", ["error=EIO"], self.expect_signature)

    def test_an_interrupted_call_leaves_a_whole_signature(self):
        self.strike(["sign", "key", "file"], "signed", ["error=EINTR"], self.expect_signature)


unittest.main(argv=sys.argv[:1])
