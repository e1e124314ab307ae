"""What ktsign does when libcrypto, the disk or an input is faulty, seen by functions that stand before theirs."""
import os
import pathlib
import subprocess
import sys
import unittest

from harness import KTSIGN, Test, run


def interposed(*words, **variables):
    return run(*words, env={**os.environ, "LD_PRELOAD": os.environ["INTERPOSED"], **variables})


class Faults(Test):
    def setUp(self):
        super().setUp()
        self.does("new-key", "key")
        pathlib.Path("file").write_text("content")

    def expect_refusal(self, fault, message):
        done = interposed("sign", "key", "file", KTSIGN_FAULT=fault)
        self.assertEqual((2, f"ktsign: {message}\n"), (done.returncode, done.stderr))
        self.assertFalse(os.path.exists("file.sig"))

    def test_libcrypto_refuses_a_wrong_signature(self):
        self.expect_refusal("sign", "libcrypto: the signature just made does not match: a faulty key or machine")

    def test_the_library_refuses_a_wrong_signature(self):
        self.expect_refusal("sign verify",
                            "the library: the signature just made does not match: a faulty key or machine")

    def test_a_file_that_changes_while_it_is_read_is_refused(self):
        self.expect_refusal("change", "file: changed while it was read")

    def test_every_output_is_synced_before_its_directory(self):
        for words, expected in {("sign", "key", "file"): "fd", ("public-key", "key", "copy"): "fd",
                                ("new-domain", "domain"): "fd", ("new-key", "other"): "ffdd"}.items():
            pathlib.Path("syncs").unlink(missing_ok=True)
            self.assertEqual(0, interposed(*words, KTSIGN_SYNCS="syncs").returncode)
            self.assertEqual(expected, pathlib.Path("syncs").read_text(), words)

    def test_ktsign_is_hardened(self):
        headers = subprocess.run(["readelf", "-hldW", "--dyn-syms", KTSIGN], check=True,
                                 capture_output=True, text=True).stdout
        for mark in ["DYN (Position-Independent", "GNU_RELRO", "BIND_NOW", "__stack_chk_fail"]:
            self.assertIn(mark, headers)


unittest.main(argv=sys.argv[:1])
