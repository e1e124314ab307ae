"""Tests refusals: one line on standard error, exit status 2, no file changed."""
import base64
import os
import pathlib
import shutil
import subprocess
import sys
import unittest

from harness import BUILT, EXAMPLES, KTSIGN, Test, domain_numbers, run

P, Q, G = domain_numbers(os.environ["DOMAIN"])

# The line on standard error, which begins with the name of the program, and the arguments.
REFUSALS = {
    "ktsign: no command; see ktsign --help": "",
    "ktsign: -: not a command; see ktsign --help": "-",
    "ktsign: sign: takes KEY FILE...; see ktsign --help": "sign key",
    "ktsign: show: takes FILE; see ktsign --help": "show key file",
    "ktsign: new-key: takes KEY; see ktsign --help": "new-key new other",
    "ktsign: public-key: takes KEY PUB; see ktsign --help": "public-key key new other",
    "ktsign: --version: takes nothing; see ktsign --help": "--version key",
    "ktsign: sign: SIG requires exactly one FILE; see ktsign --help": "sign -o new key file text",
    "ktsign: verify: does not take --force; see ktsign --help": "verify --force key.pub file",
    "ktsign: show: does not take --version; see ktsign --help": "show key --version",
    "ktsign: sign: standard input is named more than once": "sign - -",
    "ktsign: verify: standard input is named more than once": "verify -s - key.pub -",
    "ktsign: new-key: --passphrase-fd requires --encrypt; see ktsign --help": "new-key new --passphrase-fd 0",
    "ktsign: -o: needs a value; see ktsign --help": "sign key file -o",
    "ktsign: --force=yes: takes no value; see ktsign --help": "sign --force=yes key file",
    "ktsign: -none: No such file or directory": "sign key -- -none",
    "ktsign: -key: not an option; write ./-key for a file of this name": "sign -key file",
    "ktsign: --passphrase-fd: not a descriptor: 1x": "show key --passphrase-fd 1x",
    "ktsign: --passphrase-fd: not a descriptor: -1": "show key --passphrase-fd=-1",
    "ktsign: key: File exists": "new-key key",
    "ktsign: half.pub: File exists": "new-key half",
    "ktsign: new-key: a key pair is two files, not standard output": "new-key -",
    'ktsign: text: exists; if it is a private key, "ktsign public-key" makes its public key': "new-key text",
    "ktsign: alone: exists and is not encrypted": "new-key --encrypt --passphrase-fd 0 alone",
    "ktsign: new: the passphrase is empty": "new-key --encrypt --passphrase-fd 0 new",
    "ktsign: nowhere/new: No such file or directory": "new-key nowhere/new",
    "ktsign: none: No such file or directory": "sign none file",
    'ktsign: "": No such file or directory': "show ",
    "ktsign: line\\x0aend: No such file or directory": "show line\nend",
    "ktsign: \\xffÿ\\\\\\xe2\\x80\\xae: No such file or directory": "show \udcffÿ\\\u202e",
    "ktsign: half.pub: Is a directory": "sign key half.pub",
    "ktsign: .: Is a directory": "sign -o . key file",
    "ktsign: text: exists and is not a signature; --force replaces it": "sign -o text key file",
    "ktsign: text: exists and is not a public key; --force replaces it": "public-key key text",
    "ktsign: text: exists and is not empty; --force replaces it": "new-domain text",
    "ktsign: lost: a symbolic link without a target": "sign -o lost key file",
    "ktsign: loop: Too many levels of symbolic links": "sign -o loop key file",
    "ktsign: text/new: Not a directory": "sign -o text/new key file",
    "ktsign: forty.sig: is an input and would be overwritten": "sign key forty",
    "ktsign: ./new: is an input and would be overwritten": "sign -o ./new key new",
    "ktsign: alone.pub: is an input and would be overwritten": "sign -o alone.pub alone file",
    "ktsign: key: is an input and would be overwritten": "public-key --force key key",
    "ktsign: same.pub: is an input and would be overwritten": "sign --force -o same.pub key file",
    "ktsign: /dev/full: No space left on device": "sign -o /dev/full key file",
    "ktsign: long: too long; the limit is 2^29 - 1 bytes": "sign key long",
    "ktsign: text: not a private key in PEM": "sign text file",
    "ktsign: long: too long for a key": "sign long file",
    "ktsign: rsa: not a DSA key": "sign rsa file",
    "ktsign: large: not a DSA key with a p of 512 bits and a q of 160": "sign large file",
    "ktsign: foreign: a key of another domain": "sign foreign file",
    "ktsign: squared: a key of another domain": "sign squared file",
    "ktsign: mixed: a damaged key: its numbers do not belong together": "sign mixed file",
    "ktsign: zero: the private key is out of range": "sign zero file",
    "ktsign: strange.pub: not the public key of strange": "sign strange file",
    "ktsign: linked.pub: No such file or directory": "public-key --force linked forty",
    "ktsign: old: libcrypto: unsupported": "sign --passphrase-fd 0 old file",
    "ktsign: locked: no terminal for the passphrase; use --passphrase-fd": "sign locked file",
    "ktsign: passphrase descriptor 77: Bad file descriptor": "show locked --passphrase-fd 77",
    "ktsign: standard input: its signature has no name; use -o": "sign key -",
    "ktsign: standard input: its signature has no name; use -s": "verify key.pub -",
    "ktsign: text: not a public key, which has 256 bytes": "verify text file",
    "ktsign: text: not a signature, which has 40 bytes": "verify -s text key.pub file",
    "ktsign: key: not a signature, which has 40 bytes": "verify -s key key.pub file",
    "ktsign: p.pub: not a sound public key of this domain: component 0 is not below p": "verify p.pub file",
    "ktsign: one.pub: not a sound public key of this domain: y is not above 1": "verify one.pub file",
    "ktsign: two.pub: not a sound public key of this domain: y^q is not 1": "verify two.pub file",
    "ktsign: swapped.pub: not a sound public key of this domain: its components are not powers of one y":
        "verify swapped.pub file",
    "ktsign: text: not a private key, a public key or a domain": "show text",
    "ktsign: forty: not a private key, a public key or a domain": "show forty",
    "ktsign: key.der: not a private key, a public key or a domain": "show key.der",
    "ktsign: long: not a key or a domain: too long": "show long",
    'ktsign: bad.domain: no line "p = HEX"': "show bad.domain",
    "verify_file: text: not a public key, which has 256 bytes": "text file key.pub",
    "verify_file: text: not a signature, which has 40 bytes": "key.pub file text",
    "verify_file: none: No such file or directory": "key.pub none forty",
    "verify_file: half.pub: Is a directory": "key.pub half.pub forty",
    "verify_buffer: text: not a blob of the right length": "text file forty",
    "verify_buffer: none: No such file or directory": "key.pub none forty",
    "verify_buffer: /proc/version: not a file that can be read at once": "key.pub /proc/version forty",
}

PROGRAMS = {"ktsign": KTSIGN, "verify_file": EXAMPLES + "/verify_file",
            "verify_buffer": EXAMPLES + "/verify_buffer"}


def contents():
    """The contents of all files except the long one."""
    return {name: pathlib.Path(name).read_bytes()
            for name in os.listdir() if os.path.isfile(name) and name != "long"}


def openssl(command):
    subprocess.run(["openssl", *command.split()], check=True, capture_output=True)


def write_public_key(name, *components):
    """A blob of numbers in Montgomery form."""
    pathlib.Path(name).write_bytes(b"".join(y.to_bytes(64, "little") for y in components))


def integer(number):
    octets = number.to_bytes(number.bit_length() // 8 + 1, "big")
    return bytes([2, len(octets)]) + octets


def write_pem(name, kind, der):
    text = base64.encodebytes(der).decode()
    pathlib.Path(name).write_text(f"-----BEGIN {kind}-----\n{text}-----END {kind}-----\n")
    os.chmod(name, 0o600)


def write_private_key(name, g, x, y):
    """In the traditional format, which also contains y."""
    fields = b"".join(integer(number) for number in [0, P, Q, g, y, x])
    write_pem(name, "DSA PRIVATE KEY", bytes([0x30, 0x81, len(fields)]) + fields)


class Refusals(Test):
    def setUp(self):
        super().setUp()
        self.does("new-key", "key")
        for name in ["file", "text"]:
            pathlib.Path(name).write_text("content")

    def make_the_inputs(self):
        os.mkdir("half.pub")
        os.symlink("missing", "lost")
        os.symlink("loop", "loop")
        pathlib.Path("bad.domain").write_text("q = 1")
        pathlib.Path("forty").write_bytes(bytes(40))
        os.link("forty", "forty.sig")
        os.link("key.pub", "same.pub")
        pathlib.Path("long").touch()
        os.truncate("long", 1 << 29)
        openssl("genpkey -algorithm RSA -pkeyopt rsa_keygen_bits:1024 -out rsa")
        openssl("genpkey -genparam -algorithm DSA -pkeyopt dsa_paramgen_bits:1024 -out parameters")
        openssl("genpkey -paramfile parameters -out large")
        self.does("new-key", "foreign", program=BUILT + "/ktsign_fresh")
        os.remove("foreign.pub")
        openssl("pkey -in key -aes256 -passout pass:secret -out locked")
        openssl("pkey -in key -des -passout pass:secret -out old -provider legacy -provider default")
        openssl("pkey -in key -outform DER -out key.der")
        for name in ["alone", "linked"]:
            shutil.copy("key", name)
        os.symlink("missing", "linked.pub")
        write_private_key("mixed", G, x=1, y=2)
        write_private_key("zero", G, x=0, y=1)
        write_private_key("squared", G * G % P, x=1, y=G * G % P)
        self.does("new-key", "strange")
        os.replace("strange.pub", "other.pub")
        pathlib.Path("strange.pub").write_bytes(pathlib.Path("key.pub").read_bytes())
        key = pathlib.Path("key.pub").read_bytes()
        pathlib.Path("swapped.pub").write_bytes(key[:64] + key[128:192] + key[64:128] + key[192:])
        write_public_key("p.pub", P, P, P, P)
        write_public_key("one.pub", *[2**512 % P] * 4)
        write_public_key("two.pub", *[pow(2, 2**(40 * j), P) * 2**512 % P for j in range(4)])

    def expect_refusal(self, line, words):
        before = contents()
        program = PROGRAMS[line.split(":")[0]]
        done = run(*words.split(" ") if words else [], program=program,
                   start_new_session=True, stdin=subprocess.DEVNULL)  # no terminal
        self.assertEqual((2, line + "\n"), (done.returncode, done.stderr))
        self.assertEqual(before, contents())

    def test_bad_input_is_refused(self):
        self.make_the_inputs()
        for line, words in REFUSALS.items():
            with self.subTest(line):
                self.expect_refusal(line, words)

    def test_force_replaces_any_file(self):
        self.does("sign", "--force", "-o", "text", "key", "file")
        self.assertEqual("file: valid\n", self.does("verify", "-s", "text", "key.pub", "file"))

    def test_a_private_key_with_a_flipped_bit_is_refused(self):
        der = base64.b64decode("".join(pathlib.Path("key").read_text().splitlines()[1:-1]))
        for bit in range(48, 8 * len(der), 11):  # a key with another version, in bits 40 to 47, is accepted
            flipped = bytearray(der)
            flipped[bit // 8] ^= 1 << bit % 8
            write_pem("key", "PRIVATE KEY", flipped)
            self.assertEqual(2, run("sign", "key", "file").returncode, bit)
        self.assertFalse(os.path.exists("file.sig"))

    def test_a_write_beyond_the_file_size_limit_is_an_error(self):
        done = run("-c", f"ulimit -f 0; '{KTSIGN}' sign key file", program="bash")
        self.assertEqual((2, "ktsign: file.sig: File too large\n"), (done.returncode, done.stderr))
        self.assertFalse(os.path.exists("file.sig"))

    def test_a_closed_standard_input_is_an_error(self):
        done = run("-c", f"'{KTSIGN}' sign -o new key /dev/stdin <&-", program="bash")
        self.assertEqual((2, "ktsign: /dev/stdin: Is a directory\n"), (done.returncode, done.stderr))

    def test_a_full_standard_output_is_an_error(self):
        self.does("sign", "key", "file")
        for name, words in {"ktsign": "--version", "verify_file": "key.pub file file.sig",
                            "verify_buffer": "key.pub file file.sig"}.items():
            done = run("-c", f"'{PROGRAMS[name]}' {words} > /dev/full", program="sh")
            self.assertEqual((2, f"{name}: standard output: No space left on device\n"),
                             (done.returncode, done.stderr))


unittest.main(argv=sys.argv[:1])
