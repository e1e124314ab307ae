"""Tests the files and the output of the commands of ktsign, also with a faulty libcrypto or input."""
import hashlib
import os
import pathlib
import pty
import re
import signal
import subprocess
import sys
import termios
import time
import unittest

from harness import BUILT, EXAMPLES, KTSIGN, Test, run, value

FAULTY = "the signature just made does not match: a faulty key or machine"


def on_a_terminal(*words, typed=""):
    """Types a line at each prompt. Returns the exit status and the output on the terminal."""
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
        if lines and shown.endswith(": "):
            while termios.tcgetattr(terminal)[3] & termios.ECHO:
                time.sleep(0.001)
            os.write(terminal, lines.pop(0).encode())


def with_passphrase(text, *words):
    return run(*words, "--passphrase-fd", "0", input=text + "\n")


class Commands(Test):
    def setUp(self):
        super().setUp()
        self.does("new-key", "key", umask=0o277)
        os.chmod("key.pub", 0o644)
        pathlib.Path("file").write_text("content")

    def interposed(self, *words, **variables):
        return run(*words, env={**os.environ, "LD_PRELOAD": BUILT + "/libinterposed.so", **variables})

    def test_only_the_owner_has_access_to_a_private_key(self):
        self.assertEqual(0o100600, os.stat("key").st_mode)

    def test_a_replaced_signature_keeps_its_owner_with_its_mode(self):
        pathlib.Path("file.sig").touch()
        owner = 12 if os.geteuid() == 0 else os.geteuid()
        os.chown("file.sig", owner, -1)
        os.chmod("file.sig", 0o640)
        self.does("sign", "key", "file")
        self.assertEqual((owner, 0o100640), (os.stat("file.sig").st_uid, os.stat("file.sig").st_mode))

    def test_new_files_have_the_permissions_of_the_umask(self):
        self.does("sign", "key", "file", "key.pub", umask=0o020)
        self.assertEqual([0o100646] * 2, [os.stat(name).st_mode for name in ["file.sig", "key.pub.sig"]])

    def test_standard_output_is_written_in_place(self):
        with open("collected", "wb") as collected:
            for _ in range(2):
                subprocess.run(["strace", "-o", "trace", KTSIGN, "sign", "-o", "-", "key", "file"],
                               stdout=collected, check=True)
            named = subprocess.run([KTSIGN, "sign", "-o", "/dev/stdout", "key", "file"],
                                   stdout=collected, stderr=subprocess.PIPE)
        self.assertEqual(b"ktsign: /dev/stdout: is standard output; its name is -\n", named.stderr)
        self.assertEqual(80, os.path.getsize("collected"))
        self.assertIn("\nfsync(1)", pathlib.Path("trace").read_text())
        piped = subprocess.run([KTSIGN, "sign", "-o", "-", "key", "file"], stdout=subprocess.PIPE, check=True)
        self.assertEqual(40, len(piped.stdout))

    def test_standard_input_is_signed_after_the_passphrase(self):
        self.does("sign", "--passphrase-fd", "0", "-o", "signature", "key", "-", input="unused\ncontent")
        self.assertEqual("standard input: valid\n",
                         self.does("verify", "-s", "signature", "key.pub", "-", input="content"))
        with open("signature") as signature:
            self.does("verify", "-s", "-", "key.pub", "file", stdin=signature)

    def test_a_private_key_is_read_from_standard_input(self):
        self.does("sign", "-", "file", input=pathlib.Path("key").read_text())
        self.does("public-key", "-", "copy", input=pathlib.Path("key").read_text())
        self.does("verify", "key.pub", "file")

    def test_a_lost_or_damaged_public_key_is_made_again(self):
        public = pathlib.Path("key.pub").read_bytes()
        os.truncate("key.pub", 0)
        self.does("public-key", "key", "key.pub")
        self.assertEqual(public, pathlib.Path("key.pub").read_bytes())
        pathlib.Path("key.pub").write_bytes(bytes(256))
        self.assertEqual(2, run("public-key", "key", "key.pub").returncode)
        self.does("public-key", "--force", "key", "key.pub")
        self.assertEqual(public, pathlib.Path("key.pub").read_bytes())

    def test_a_link_to_a_signature_stays_a_link(self):
        pathlib.Path("target").touch()
        os.symlink("target", "file.sig")
        self.does("sign", "key", "file")
        self.assertEqual(("target", 40), (os.readlink("file.sig"), os.path.getsize("target")))

    def test_a_file_system_may_lack_unnamed_files(self):
        faults = ["-e", "inject=access:error=ENOENT", "-e", "inject=fsync:error=EINVAL:when=2"]
        for more in [[], ["-e", "inject=renameat2:error=EINVAL"]]:
            pathlib.Path("file.sig").unlink(missing_ok=True)
            self.does("sign", "key", "file", before=["strace", "-o", "/dev/null", *faults, *more])
            self.does("verify", "key.pub", "file")
            self.assertEqual(["file", "file.sig", "key", "key.pub"], sorted(os.listdir()))

    def test_show_reports_whether_a_public_key_is_sound(self):
        shown = self.does("show", "key.pub")
        self.assertIn("\nsound yes\n", shown)
        self.assertEqual(hashlib.sha256(pathlib.Path("key.pub").read_bytes()).hexdigest(),
                         value(shown, "key-fingerprint"))
        pathlib.Path("zero.pub").write_bytes(bytes(256))
        self.assertIn("\nsound no\nreason y is not above 1\n", self.does("show", "zero.pub"))

    def test_every_object_of_a_domain_shows_its_fingerprint(self):
        version, fingerprint = self.does("--version").splitlines()
        self.assertRegex(version, r"^ktsign [\d.]+$")
        for kind, name in {"private-key": "key", "public-key": "key.pub", "domain": os.environ["DOMAIN"]}.items():
            shown = self.does("show", name).splitlines()
            self.assertEqual(f"kind {kind}", shown[0])
            self.assertIn(fingerprint, shown)

    def test_help_is_an_option_of_every_command(self):
        self.assertIn("usage: ktsign", self.does("sign", "key", "--help"))
        self.assertIn("usage: ktsign", self.does("sign", "key", "-h"))

    def test_each_of_many_files_is_signed_or_reported(self):
        done = run("sign", "key", "none", "file")
        self.assertEqual((2, "ktsign: none: No such file or directory\n"), (done.returncode, done.stderr))
        self.assertEqual("file: valid\n", self.does("verify", "key.pub", "file"))

    def test_every_verifier_gives_the_reason(self):
        self.does("sign", "key", "file")
        signature = pathlib.Path("file.sig").read_bytes()
        verdicts = {"file": ("valid", signature), "zero": ("r or s is zero", bytes(40)),
                    "high": ("r or s out of range", b"\xff" * 40),
                    "other\n": ("signature does not match", signature)}
        for name, (verdict, blob) in verdicts.items():
            pathlib.Path(name + ".sig").write_bytes(blob)
            pathlib.Path(name).write_text("content" if name == "file" else "")
            host = run("key.pub", name, name + ".sig", program=EXAMPLES + "/verify_file")
            self.assertEqual(verdict + "\n", host.stdout)
            host = run("key.pub", name, name + ".sig", program=EXAMPLES + "/verify_buffer")
            self.assertEqual("valid\n" if verdict == "valid" else "not valid\n", host.stdout)
        done = run("verify", "key.pub", *verdicts)
        self.assertEqual("".join(name.replace("\n", "\\x0a") + f": {verdict}\n"
                                 for name, (verdict, _) in verdicts.items()), done.stdout)
        self.assertEqual(1, done.returncode)

    def test_a_key_encrypted_by_openssl_signs(self):
        self.does("pkey", "-in", "key", "-aes256", "-passout", "pass:secret", "-out", "locked", program="openssl")
        self.assertEqual(0, with_passphrase("secret", "sign", "locked", "file").returncode)
        self.does("verify", "key.pub", "file")

    def test_a_new_passphrase_is_typed_twice(self):
        self.assertEqual(0, on_a_terminal("new-key", "--encrypt", "locked", typed="one\none\n")[0])
        self.assertEqual(0, on_a_terminal("sign", "locked", "file", typed="one\n")[0])
        self.assertEqual(0, with_passphrase("one", "sign", "locked", "file").returncode)
        self.assertEqual("ktsign: locked: wrong passphrase, or a damaged key\n",
                         with_passphrase("two", "sign", "locked", "file").stderr)
        for typed, reason in {"\x04": "no passphrase was entered", "x" * 512: "wrong passphrase",
                              "x" * 513: "too long for a passphrase"}.items():
            self.assertIn(reason, on_a_terminal("show", "locked", typed=typed + "\n")[1])
        for line, reason in {"x" * 512: "wrong passphrase", "x" * 513: "too long for a passphrase"}.items():
            self.assertIn(reason, with_passphrase(line, "show", "locked").stderr)
        self.assertEqual(2, on_a_terminal("new-key", "--encrypt", "other", typed="one\ntwo\n")[0])
        self.assertFalse(os.path.exists("other"))
        self.assertEqual(-signal.SIGINT, on_a_terminal("sign", "locked", "file", typed="\x03")[0])

    def test_an_encrypted_key_has_the_documented_form(self):
        salts = set()
        for name in ["one", "two"]:
            with_passphrase("secret", "new-key", "--encrypt", name)
            parsed = self.does("asn1parse", "-in", name, program="openssl")
            salts.add(re.search(r"HEX DUMP\]:(\w{32})\n", parsed)[1])
            self.assertEqual(["4000", "08", "05"], re.findall(r"INTEGER +:(\w+)", parsed))
            self.assertIn(":aes-256-cbc\n", parsed)
        self.assertEqual(2, len(salts))

    def test_a_lost_half_of_an_encrypted_pair_is_made_again(self):
        new_key = ["new-key", "--encrypt", "locked"]
        self.assertEqual(0, with_passphrase("one", *new_key).returncode)
        os.remove("locked.pub")
        self.assertEqual("ktsign: locked: kept; made the missing locked.pub from it\n",
                         with_passphrase("one", *new_key).stderr)

    def test_two_runs_for_one_key_leave_a_pair(self):
        delay = ["strace", "-qq", "-o", "/dev/null", "-e", "inject=linkat:delay_enter=2000000:when=2"]
        with subprocess.Popen([*delay, KTSIGN, "new-key", "new"]) as first:
            while not os.path.exists("new"):
                time.sleep(0.001)
            self.assertEqual(0, run("new-key", "new").returncode)
        self.assertEqual(0, first.returncode)
        self.assertEqual(*[value(self.does("show", name), "key-fingerprint") for name in ["new", "new.pub"]])

    def test_progress_is_erased_at_the_end(self):
        os.truncate("file", 1 << 25)
        shown = on_a_terminal("sign", "key", "file")[1]
        self.assertIn("\rktsign: 50 % read", shown)
        self.assertEqual("", shown.rsplit("\r", 1)[1].strip())
        self.does("sign", "key", "file")  # prints no progress on a pipe

    def test_a_private_key_readable_by_others_causes_a_warning(self):
        os.chmod("key", 0o640)
        for words in [("sign", "key", "file"), ("show", "key")]:
            self.assertEqual("ktsign: key: warning: users other than its owner may read this private key\n",
                             run(*words).stderr)

    def test_a_faulty_signature_is_not_written(self):
        for fault, message in {"sign": f"libcrypto: {FAULTY}", "sign verify": f"the library: {FAULTY}",
                               "change": "file: changed while it was read"}.items():
            done = self.interposed("sign", "key", "file", KTSIGN_FAULT=fault)
            self.assertEqual((2, f"ktsign: {message}\n"), (done.returncode, done.stderr))
            self.assertFalse(os.path.exists("file.sig"))

    def test_the_process_protects_its_memory(self):
        self.does("show", "key", before=["strace", "-o", "trace"])
        trace = pathlib.Path("trace").read_text()
        for call in ["prctl(PR_SET_DUMPABLE, SUID_DUMP_DISABLE)", "RLIMIT_CORE, {rlim_cur=0", "mlock"]:
            self.assertIn(call, trace)

    def test_every_output_is_synced_before_its_directory(self):
        trace = ["strace", "-y", "-e", "trace=fsync", "-o", "trace"]
        for words, files in {("sign", "key", "file"): 1, ("public-key", "key", "copy"): 1,
                             ("new-domain", "domain"): 1, ("new-key", "other"): 2}.items():
            self.does(*words, before=trace)
            synced = re.findall(r"fsync\(\d+<(.*?)>", pathlib.Path("trace").read_text())
            self.assertEqual([False] * files + [True] * files, [path == os.getcwd() for path in synced])


unittest.main(argv=sys.argv[:1])
