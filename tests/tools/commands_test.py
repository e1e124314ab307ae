"""What each command writes and prints."""
import os
import pathlib
import pty
import stat
import subprocess
import sys
import termios
import unittest

from harness import KTSIGN, Test, run, value


def mode(name):
    return stat.S_IMODE(os.stat(name).st_mode)


def passphrase(text):
    """A descriptor to read the line from."""
    reading, writing = os.pipe()
    os.write(writing, text.encode() + b"\n")
    os.close(writing)
    return reading


def on_a_terminal(*words, typed=""):
    """Returns the status and what the terminal showed; types each line at a prompt."""
    child, terminal = pty.fork()
    if child == 0:
        os.execv(KTSIGN, [KTSIGN, *words])
    shown, lines = "", typed.splitlines(keepends=True)
    while True:
        try:
            shown += os.read(terminal, 4096).decode()
        except OSError:  # the end of a terminal
            os.close(terminal)
            return os.waitstatus_to_exitcode(os.waitpid(child, 0)[1]), shown
        if lines and shown.endswith(": ") and not termios.tcgetattr(terminal)[3] & termios.ECHO:
            os.write(terminal, lines.pop(0).encode())
            shown += "\n"


class Commands(Test):
    def setUp(self):
        super().setUp()
        self.does("new-key", "key")
        pathlib.Path("file").write_text("content")

    def with_passphrase(self, text, *words):
        fd = passphrase(text)
        done = run(*words, "--passphrase-fd", fd, pass_fds=[fd])
        os.close(fd)
        return done

    def test_a_private_key_is_its_owners_under_any_umask(self):
        self.does("new-key", "other", umask=0o277)
        self.assertEqual(0o600, mode("other"))

    def test_openssl_reads_a_private_key(self):
        self.does("pkey", "-in", "key", "-noout", program="openssl")

    def test_a_replaced_signature_keeps_its_permissions(self):
        self.does("sign", "key", "file")
        os.chmod("file.sig", 0o640)
        self.does("sign", "key", "file")
        self.assertEqual(0o640, mode("file.sig"))

    @unittest.skipUnless(os.geteuid() == 0, "only root gives files away")
    def test_a_replaced_signature_keeps_its_owner(self):
        pathlib.Path("file.sig").touch()
        os.chown("file.sig", 12, 34)
        self.does("sign", "key", "file")
        self.assertEqual((12, 34), (os.stat("file.sig").st_uid, os.stat("file.sig").st_gid))

    def test_standard_output_is_written_through(self):
        with open("collected", "wb") as collected:
            for _ in range(2):
                subprocess.run([KTSIGN, "sign", "-o", "-", "key", "file"], stdout=collected, check=True)
        self.assertEqual(80, os.path.getsize("collected"))

    def test_standard_input_is_signed(self):
        self.does("sign", "key", "-", "-o", "file.sig", input="content")
        self.assertEqual("standard input: valid\n",
                         self.does("verify", "key.pub", "-", "-s", "file.sig", input="content"))

    def test_each_of_many_files_is_signed_or_named(self):
        done = run("sign", "key", "none", "file")
        self.assertEqual((2, "ktsign: none: No such file or directory\n"), (done.returncode, done.stderr))
        self.assertEqual("file: valid\n", self.does("verify", "key.pub", "file"))

    def test_verify_prints_a_line_for_each_file(self):
        self.does("sign", "key", "file")
        signature = pathlib.Path("file.sig").read_bytes()
        for name, blob in {"zero": bytes(40), "high": b"\xff" * 40, "other\n": signature}.items():
            pathlib.Path(name).write_text(name)
            pathlib.Path(name + ".sig").write_bytes(blob)
        done = run("verify", "key.pub", "file", "zero", "high", "other\n")
        self.assertEqual("file: valid\nzero: r or s is zero\nhigh: r or s out of range\n"
                         "other\\x0a: signature does not match\n", done.stdout)
        self.assertEqual(1, done.returncode)

    def test_an_encrypted_key_signs_with_its_passphrase(self):
        self.assertEqual(0, self.with_passphrase("secret", "new-key", "--encrypt", "locked").returncode)
        self.assertEqual(0, self.with_passphrase("secret", "sign", "locked", "file").returncode)
        self.does("verify", "locked.pub", "file")
        wrong = self.with_passphrase("wrong", "sign", "locked", "file")
        self.assertEqual("ktsign: locked: wrong passphrase, or a damaged key\n", wrong.stderr)

    def test_a_key_that_openssl_encrypted_signs(self):
        self.does("pkey", "-in", "key", "-aes256", "-passout", "pass:secret", "-out", "locked",
                  program="openssl")
        self.assertEqual(0, self.with_passphrase("secret", "sign", "locked", "file").returncode)
        self.does("verify", "key.pub", "file")

    def test_a_new_passphrase_is_typed_twice_alike(self):
        self.assertEqual(0, on_a_terminal("new-key", "--encrypt", "locked", typed="one\none\n")[0])
        self.assertEqual(0, self.with_passphrase("one", "sign", "locked", "file").returncode)
        self.assertEqual(2, on_a_terminal("new-key", "--encrypt", "other", typed="one\ntwo\n")[0])
        self.assertFalse(os.path.exists("other"))

    def test_progress_of_a_long_file_is_gone_at_the_end(self):
        os.truncate("file", 1 << 25)
        status, shown = on_a_terminal("sign", "key", "file")
        self.assertIn("\rktsign: 50 % read", shown)
        self.assertEqual("", shown.rsplit("\r", 1)[1].strip())

    def test_a_readable_private_key_is_warned_of(self):
        os.chmod("key", 0o640)
        done = run("sign", "key", "file")
        self.assertEqual(0, done.returncode)
        self.assertEqual("ktsign: key: warning: others than its owner may read this private key\n", done.stderr)

    def test_a_new_domain_is_described(self):
        self.does("new-domain", "own.domain")
        self.assertEqual("domain", value(self.does("show", "own.domain"), "kind"))
        self.assertIn(value(self.does("show", "own.domain"), "domain-fingerprint"),
                      pathlib.Path("own.domain").read_text())


unittest.main(argv=sys.argv[:1])
