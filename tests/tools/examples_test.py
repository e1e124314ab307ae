"""What the verifying examples print and refuse."""
import os
import pathlib
import sys
import unittest

from harness import Test, run

VERIFY_FILE = os.environ["EXAMPLES"] + "/verify_file"
VERIFY_BUFFER = os.environ["EXAMPLES"] + "/verify_buffer"

# What is printed, and the program with its arguments.
VERDICTS = {
    "valid": [(VERIFY_FILE, "key.pub file file.sig"), (VERIFY_BUFFER, "key.pub file file.sig"),
              (VERIFY_FILE, "key.pub empty empty.sig"), (VERIFY_BUFFER, "key.pub empty empty.sig")],
    "signature does not match": [(VERIFY_FILE, "key.pub empty file.sig")],
    "not valid": [(VERIFY_BUFFER, "key.pub empty file.sig")],
    "r or s is zero": [(VERIFY_FILE, "key.pub file zero")],
    "r or s out of range": [(VERIFY_FILE, "key.pub file high")],
}
REFUSALS = {
    "verify_file: file.sig: not a public key, which has 256 bytes": (VERIFY_FILE, "file.sig file file.sig"),
    "verify_file: key.pub: not a signature, which has 40 bytes": (VERIFY_FILE, "key.pub file key.pub"),
    "verify_file: none: No such file or directory": (VERIFY_FILE, "key.pub none file.sig"),
    "verify_file: .: Is a directory": (VERIFY_FILE, "key.pub . file.sig"),
    "usage: verify_file PUB FILE SIG": (VERIFY_FILE, "key.pub file"),
    "verify_buffer: file.sig: not a blob of the right length": (VERIFY_BUFFER, "file.sig file file.sig"),
    "verify_buffer: none: No such file or directory": (VERIFY_BUFFER, "key.pub none file.sig"),
    "verify_buffer: /proc/version: not a file that can be read at once":
        (VERIFY_BUFFER, "key.pub /proc/version file.sig"),
}


class Examples(Test):
    def setUp(self):
        super().setUp()
        self.does("new-key", "key")
        for name, content in {"file": b"content", "empty": b"", "zero": bytes(40), "high": b"\xff" * 40}.items():
            pathlib.Path(name).write_bytes(content)
        self.does("sign", "key", "file", "empty")

    def test_verdicts(self):
        for verdict, runs in VERDICTS.items():
            for program, words in runs:
                done = run(*words.split(), program=program)
                self.assertEqual((verdict + "\n", ""), (done.stdout, done.stderr), (program, words))
                self.assertEqual(0 if verdict == "valid" else 1, done.returncode)

    def test_refusals(self):
        for message, (program, words) in REFUSALS.items():
            done = run(*words.split(), program=program)
            self.assertEqual((2, message + "\n"), (done.returncode, done.stderr))

    def test_a_full_standard_output(self):
        for program in [VERIFY_FILE, VERIFY_BUFFER]:
            done = run("-c", f"{program} key.pub file file.sig > /dev/full", program="sh")
            message = os.path.basename(program) + ": standard output: No space left on device\n"
            self.assertEqual((2, message), (done.returncode, done.stderr))


unittest.main(argv=sys.argv[:1])
