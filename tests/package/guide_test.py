"""Runs the blocks of the guide in an empty directory.

A cpp or cmake block is a file, named by its first line; cpp is compiled and run, sh is run, and a text
block is what the block before it prints. No other kind is known.

usage: guide_test.py GUIDE SOURCE_DIR PREFIX LIBDIR
"""
import os
import pathlib
import re
import subprocess
import sys
import tempfile


def run(command, where):
    done = subprocess.run(["bash", "-euc", command], stdout=subprocess.PIPE, text=True)
    if done.returncode != 0:
        sys.exit(f"{where}: exit status {done.returncode}\n{done.stdout}")
    return done.stdout


def act_on(kind, body, where):
    """Returns what the block prints."""
    if kind == "sh":
        return run(body, where)
    named = re.match(r"(?://|#) ((\w+)\.\w+)\n", body)
    if kind not in ("cpp", "cmake") or not named:
        sys.exit(f"{where}: a {kind or 'nameless'} block that nothing runs")
    pathlib.Path(named[1]).write_text(body)
    if kind == "cmake":
        return ""
    run(f"g++ -std=c++20 -Wall -Wextra -Werror {named[1]} $(pkg-config --cflags --libs ktbase)"
        f" -o {named[2]}", where)
    return run(f"./{named[2]}", where)


def main(guide, source, prefix, libdir):
    text = pathlib.Path(guide).read_text()
    blocks = list(re.finditer(r"^```(\w*)\n(.*?)^```$", text, re.M | re.S))
    if not blocks or len(blocks) * 2 != len(re.findall(r"^\s*```", text, re.M)):
        sys.exit(f"{guide}: no code blocks, or a malformed one")
    os.environ.update(PATH=f"{prefix}/bin:{os.environ['PATH']}", CMAKE_PREFIX_PATH=prefix,
                      PKG_CONFIG_LIBDIR=f"{prefix}/share/pkgconfig:{prefix}/lib/pkgconfig",
                      LD_RUN_PATH=f"{prefix}/{libdir}", CMAKE_GENERATOR="Ninja", LC_ALL="C")
    with tempfile.TemporaryDirectory() as directory:
        os.chdir(directory)
        os.symlink(source, "ktbase")
        printed = None
        for block in blocks + [None]:
            if block and block[1] == "text":
                if printed != block[2]:
                    sys.exit(f"{where}: printed\n{printed}instead of\n{block[2]}")
                printed = ""
                continue
            if printed:
                sys.exit(f"{where}: printed text that the guide does not show\n{printed}")
            if block:
                where = f"{guide}:{text.count(chr(10), 0, block.start()) + 1}"
                printed = act_on(block[1], block[2], where)
        os.chdir("/")


main(*sys.argv[1:])
