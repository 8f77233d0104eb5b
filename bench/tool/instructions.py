"""Counts the instructions of a run, which vary less than its time."""

import os
import re
import shutil
import subprocess

from launcher import Failed


def has_counters():
    """Whether the processor's own counters are within reach."""
    if not shutil.which("perf"):
        return False
    done = subprocess.run(["perf", "stat", "-x", ",", "-e", "instructions:u", "true"],
                          capture_output=True, text=True, check=False)
    return bool(re.search(r"^\d+,", done.stderr, re.MULTILINE))


def counting_command():
    """A command that runs the command behind it and counts on standard error, and the pattern of
    the count. Without counters Valgrind counts, and takes some fifty times as long."""
    if has_counters():
        return ["perf", "stat", "-x", ",", "-e", "instructions:u"], r"^(\d+),"
    if shutil.which("valgrind"):
        return (["valgrind", "--tool=cachegrind", "--cache-sim=no", "--cachegrind-out-file=" +
                 os.devnull], r"I +refs: +([\d,]+)")
    raise Failed("counting instructions needs perf with the processor's counters, or valgrind")


def count(program, language):
    """How many instructions a program executes."""
    prefix, pattern = counting_command()
    command = [*language.command, program.source(language)]
    done = subprocess.run([*prefix, *command], input=f"{program.size}\n", capture_output=True,
                          text=True, check=False)
    found = re.search(pattern, done.stderr, re.MULTILINE)
    if done.returncode != 0 or not found:
        raise Failed(f"{' '.join(command)} fails under {prefix[0]}: {done.stderr}")
    return int(found[1].replace(",", ""))
