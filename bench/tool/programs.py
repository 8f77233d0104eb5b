"""The programs that are measured, the languages that they are written in, and how each is run."""

import os
import re
import subprocess
import sys
from dataclasses import dataclass

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
BENCH = os.path.join(ROOT, "bench")


@dataclass(frozen=True)
class Language:
    name: str  # as tables and --peers call it
    command: tuple  # to be followed by the program's path
    extension: str
    package: str = ""  # Debian's, if it is to be installed


# Python is not looked for on the path, where a wrapper that costs time may stand before it.
PEERS = (
    Language("lua5.4", ("lua5.4",), "lua", "lua5.4"),
    Language("luajit", ("luajit", "-joff"), "lua", "luajit"),
    Language("python3", (sys.executable,), "py"),
    Language("ruby", ("ruby",), "rb", "ruby"),
    Language("node", ("node", "--jitless", "--no-expose-wasm"), "js", "nodejs"),
)


def pellum(path, name="pellum"):
    return Language(name, (path,), "pellum")


def tree_walker(path):
    return Language("tree", (path, "--tree"), "pellum")


def install(peers):
    pairs = [f"{peer.command[0]}={peer.package}" for peer in peers if peer.package]
    script = '. "$0" && install_tools "$@"'
    subprocess.run(["sh", "-c", script, os.path.join(ROOT, "script", "install-tools"), *pairs],
                   check=True, stdout=sys.stderr)


def version(language):
    """The language's name, the first number in what it says about itself, and its options."""
    option = "-v" if language.extension == "lua" else "--version"
    done = subprocess.run([*language.command, option], check=True, text=True,
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
    words = [re.search("[0-9][0-9.]*", done.stdout)[0], *language.command[1:]]
    return f"{language.name} ({' '.join(words)})"


@dataclass(frozen=True)
class Program:
    name: str
    size: str

    def source(self, language):
        return os.path.join(BENCH, "programs", self.name, f"{self.name}.{language.extension}")

    def run(self, language, launcher):
        return launcher.run([*language.command, self.source(language)], self.size)


def read_table(name):
    """The rows of a table in bench/, as lists of words."""
    with open(os.path.join(BENCH, name), encoding="utf-8") as table:
        lines = (line.split("#")[0].split() for line in table)
        return [words for words in lines if words]


def all_programs():
    return [Program(words[0], words[1]) for words in read_table("programs.txt")]
