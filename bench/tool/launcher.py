"""Runs a command and says what it cost."""

import os
import signal
import subprocess
import tempfile
from dataclasses import dataclass


class Failed(Exception):
    """A command that did not end as it should."""


@dataclass(frozen=True)
class Sample:
    cpu: float  # seconds, user and system, of one run
    peak: int  # kilobytes
    output: str


class Launcher:
    """Starts everything through the small program that launch.cpp describes."""

    TIMEOUT = 300  # seconds

    def __init__(self, folder):
        self.program = os.path.join(folder, "launch")
        source = os.path.join(os.path.dirname(os.path.abspath(__file__)), "launch.cpp")
        os.makedirs(folder, exist_ok=True)
        new = f"{self.program}.{os.getpid()}"  # others may be measuring with the old one
        subprocess.run(["c++", "-O1", "-static", "-o", new, source], check=True)
        os.replace(new, self.program)

    def run(self, command, text="", count=1):
        """Runs a command `count` times, each with `text` as its input if it runs but once."""
        with tempfile.TemporaryFile("w+") as given, tempfile.TemporaryFile("w+") as output:
            given.write(f"{text}\n")
            given.seek(0)
            report, end = os.pipe()
            with subprocess.Popen([self.program, str(end), str(count), *command],
                                  stdin=given, stdout=output, pass_fds=(end,),
                                  start_new_session=True) as process:
                os.close(end)
                try:
                    process.wait(self.TIMEOUT)
                except BaseException as problem:
                    os.killpg(process.pid, signal.SIGKILL)
                    os.close(report)
                    if isinstance(problem, subprocess.TimeoutExpired):
                        raise Failed(f"{' '.join(command)} does not end") from None
                    raise
            with os.fdopen(report) as lines:
                words = lines.read().split()
            if len(words) != 3 or words[2] != "0":
                raise Failed(f"{' '.join(command)} fails with the input {text}")
            output.seek(0)
            return Sample(int(words[0]) / 1e6 / count, int(words[1]), output.read())
