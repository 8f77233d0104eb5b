"""Does the work of script/mutate, which says how to use it."""

import argparse
import collections
import difflib
import hashlib
import json
import os
import random
import resource
import shutil
import signal
import subprocess
import sys
from dataclasses import dataclass

import mutation

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
SCRATCH = os.path.join(ROOT, "build", "mutants")
TREE = os.path.join(SCRATCH, "tree")
BUILD = os.path.join(SCRATCH, "build")

# The runners without the unit tests: quick to build where a header has changed.
QUICK_TESTS = """
file(GLOB_RECURSE quick_sources runners/*.cpp support/*.cpp)
add_executable(quick_tests main.cpp ${quick_sources})
target_include_directories(quick_tests PRIVATE ${CMAKE_CURRENT_SOURCE_DIR})
target_link_libraries(quick_tests PRIVATE pellum_core GTest::gtest)
target_precompile_headers(quick_tests PRIVATE <gtest/gtest.h>)
target_compile_definitions(quick_tests PRIVATE
    $<TARGET_PROPERTY:pellum_tests,COMPILE_DEFINITIONS>)
"""

# Tests of the sources' text would notice a change without running it.
ABOUT_TEXT = "Structure.*"
QUICK = "lang/*:errors/*:builtins/*:listings/*"
# What starts programs, plays many of them, or has them fail again and again, takes its time.
OUTSIDE = ("cli/*:repl/*:Signals.*:Streams.*:Sources.*:Memory.*:*Agreement*:*Allocation*:*Fuzzing*:"
           "StackCode.AgreesOnTheLanguage")
# So does what goes to the end of the host's stack, or to the largest sizes.
SLOW = "limits/*:repl/too_much_recursion*:Stack.*"


@dataclass(frozen=True)
class Stage:
    """Tests that are played together: what to build for them, and which."""
    name: str
    targets: tuple
    program: str
    filter: str


STAGES = (
    Stage("quick", ("quick_tests", "pellum"), "quick_tests", QUICK),
    Stage("units", ("pellum_tests", "pellum"), "pellum_tests",
          f"*-{QUICK}:{OUTSIDE}:{SLOW}:{ABOUT_TEXT}"),
    Stage("outside", ("pellum_tests", "pellum"), "pellum_tests", f"{OUTSIDE}-{SLOW}"),
    Stage("slow", ("pellum_tests", "pellum"), "pellum_tests", SLOW),
)


@dataclass(frozen=True)
class Mutant:
    file: str  # from the root
    place: mutation.Place
    replacement: str

    def apply(self, source):
        return source[:self.place.start] + self.replacement + source[self.place.end:]

    def line(self, source):
        return source.count("\n", 0, self.place.start) + 1

    def difference(self, source):
        lines = difflib.unified_diff(source.split("\n"), self.apply(source).split("\n"), n=0,
                                     lineterm="")
        return "\n".join("    " + line for line in list(lines)[3:])


def fail(message):
    sys.exit(f"mutate: {message}")


def copy_tree():
    """Makes the scratch copy like the working tree; unchanged files keep their times. Gives a
    digest of what it copied: of the sources, the tests and how they are built."""
    names = subprocess.run(["git", "ls-files", "-z", "--cached", "--others", "--exclude-standard"],
                           cwd=ROOT, check=True, capture_output=True, text=True).stdout
    names = {name for name in names.split("\0") if name and os.path.isfile(f"{ROOT}/{name}")}
    for folder, _, files in os.walk(TREE):
        for file in files:
            path = os.path.join(folder, file)
            if os.path.relpath(path, TREE) not in names:
                os.remove(path)
    digest = hashlib.sha256()
    for name in sorted(names):
        with open(f"{ROOT}/{name}", "rb") as file:
            content = file.read()
        if not name.startswith(("docs/", "script/")):
            digest.update(f"{name} {len(content)} ".encode() + content)
        if name == "tests/CMakeLists.txt":
            content += QUICK_TESTS.encode()
        write_if_other(f"{TREE}/{name}", content)
    return digest.hexdigest()


def write_if_other(path, content):
    if os.path.exists(path):
        with open(path, "rb") as file:
            if file.read() == content:
                return
    os.makedirs(os.path.dirname(path), exist_ok=True)
    with open(path, "wb") as file:
        file.write(content)


def configure():
    # Assertions stay in, the library's too: they notice what the sanitizers would.
    command = ["cmake", "-S", TREE, "-B", BUILD, "-G", "Ninja", "-DPELLUM_TESTS=ON",
               "-DCMAKE_CXX_COMPILER=clang++", "-DCMAKE_BUILD_TYPE=Debug",
               "-DCMAKE_CXX_FLAGS_DEBUG=-O1 -w -D_GLIBCXX_ASSERTIONS",
               "-DCMAKE_EXE_LINKER_FLAGS=-fuse-ld=lld"]
    if shutil.which("ccache"):
        command.append("-DCMAKE_CXX_COMPILER_LAUNCHER=ccache")
        command.append("-DCMAKE_DISABLE_PRECOMPILE_HEADERS=ON")
    subprocess.run(command, check=True, stdout=subprocess.DEVNULL)


def build(targets, jobs):
    environment = dict(os.environ, CCACHE_DIR=os.path.join(SCRATCH, "ccache"), CCACHE_MAXSIZE="2G")
    result = subprocess.run(["ninja", "-C", BUILD, f"-j{jobs}", *targets], env=environment,
                            capture_output=True, text=True, check=False)
    return result.returncode == 0, result.stdout


def fingerprint():
    """Of the programs as they are built now. Equal ones do the same whatever the tests ask."""
    digest = hashlib.sha256()
    for program in ("pellum", os.path.join("tests", "quick_tests")):
        with open(os.path.join(BUILD, program), "rb") as file:
            digest.update(file.read())
    return digest.digest()


def limit_resources(seconds):
    memory = 6 << 30
    resource.setrlimit(resource.RLIMIT_AS, (memory, memory))
    resource.setrlimit(resource.RLIMIT_CPU, (seconds, seconds))
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
    resource.setrlimit(resource.RLIMIT_FSIZE, (4 << 30, 4 << 30))


def play(stage, seconds):
    """Plays the tests of a stage until one fails. Gives what noticed the mutant, or None. The time
    is that of the processor, since the machine may be busy; ten times as long means waiting."""
    log_path = os.path.join(SCRATCH, "log")
    with open(log_path, "wb") as log:
        process = subprocess.Popen(
            [os.path.join(BUILD, "tests", stage.program), f"--gtest_filter={stage.filter}",
             "--gtest_fail_fast"], stdin=subprocess.DEVNULL, stdout=log, stderr=subprocess.STDOUT,
            start_new_session=True, preexec_fn=lambda: limit_resources(seconds))
        try:
            status = process.wait(60 + 10 * seconds)
        except subprocess.TimeoutExpired:
            status = None
        finally:
            stop(process)
    if status == 0:
        return None
    with open(log_path, encoding="utf-8", errors="replace") as log:
        lines = log.readlines()
    started = [line.split("]", 1)[1].strip() for line in lines if line.startswith("[ RUN")]
    where = started[-1] if started else "the start"
    failed = [line for line in lines if line.startswith("[  FAILED  ]")]
    if failed:
        where = failed[0].split("]", 1)[1].split("(")[0].strip(" \n,")
    is_endless = status is None or status == -signal.SIGXCPU or status == -signal.SIGKILL
    how = "no end" if is_endless else "" if failed else f"status {status}"
    return f"{how} in {where}" if how else where


def stop(process):
    """Ends the tests and what they have started."""
    try:
        os.killpg(process.pid, signal.SIGKILL)
    except ProcessLookupError:
        pass
    process.wait()


def processor_time():
    """Of all processes that have been waited for, in seconds."""
    used = resource.getrusage(resource.RUSAGE_CHILDREN)
    return used.ru_utime + used.ru_stime


def sources_under(paths):
    found = []
    for path in paths:
        full = os.path.join(ROOT, path)
        if os.path.isfile(full):
            found.append(path)
        for folder, _, files in os.walk(full):
            found += [os.path.relpath(os.path.join(folder, file), ROOT) for file in files
                      if file.endswith((".cpp", ".h"))]
    return {name: read(os.path.join(ROOT, name)) for name in sorted(found)}


def read(path):
    with open(path, encoding="utf-8") as file:
        return file.read()


class Ledger:
    """What has been found out about one state of the sources and tests, so that a run that was
    interrupted goes on where it stood: the fates of mutants, the time of the tests."""

    def __init__(self, state):
        self.path = os.path.join(SCRATCH, f"known-{state[:16]}")
        self.known = {}
        if os.path.exists(self.path):
            self.known = dict(json.loads(line) for line in read(self.path).splitlines())

    def about(self, subject, find):
        """What is known of a mutant or a stage, otherwise what `find` finds."""
        key = repr(subject)
        if key not in self.known:
            self.known[key] = find(subject)
            with open(self.path, "a", encoding="utf-8") as file:
                file.write(json.dumps([key, self.known[key]]) + "\n")
        return self.known[key]


class Trial:
    """The scratch copy, in which one mutant after the other is built and played."""

    def __init__(self, sources, jobs):
        self.sources = sources
        self.jobs = jobs
        self.mutated = None  # the file that differs from the original now
        self.ledger = Ledger(copy_tree())
        configure()
        self.build_or_fail(STAGES[0].targets)
        self.original = fingerprint()
        self.limits = {stage: self.ledger.about(stage, self.play_original) for stage in STAGES}

    def play_original(self, stage):
        """How long the tests of a stage may take."""
        self.build_or_fail(stage.targets)
        before = processor_time()
        noticed = play(stage, 3600)
        if noticed:
            fail(f"the tests fail without any mutant: {noticed}; see {SCRATCH}/log")
        return int(10 + 3 * (processor_time() - before))

    def build_or_fail(self, targets):
        is_built, output = build(targets, self.jobs)
        if not is_built:
            fail("the original does not build\n" + output)

    def write(self, mutant):
        if self.mutated and self.mutated != mutant.file:
            write_if_other(f"{TREE}/{self.mutated}", self.sources[self.mutated].encode())
        self.mutated = mutant.file
        content = mutant.apply(self.sources[mutant.file]).encode()
        write_if_other(f"{TREE}/{mutant.file}", content)

    def fate(self, mutant):
        """One of the words that are counted, and what there is to say about it."""
        self.write(mutant)
        for stage in STAGES:
            if not build(stage.targets, self.jobs)[0]:
                return "invalid", "does not compile"
            if stage is STAGES[0] and fingerprint() == self.original:
                return "same", "the compiler makes the same program of it"
            noticed = play(stage, self.limits[stage])
            if noticed:
                return "killed", noticed
        return "survived", ""


def draw(sources, chance):
    """All places in random order, each with one of its changes."""
    found = [(name, place) for name, source in sources.items()
             for place in mutation.places(source)]
    chance.shuffle(found)
    return [Mutant(name, place, chance.choice(place.choices)) for name, place in found]


def rounds(mutants, count, tally):
    """Yields mutants until `count` have been killed or have survived. Those of one file come
    together, and headers last, as each of those builds everything."""
    while mutants and (missing := count - tally["killed"] - tally["survived"]) > 0:
        here, mutants = mutants[:missing], mutants[missing:]
        yield from sorted(here, key=lambda mutant: (mutant.file.endswith(".h"), mutant.file,
                                                    mutant.place.start))


def main():
    parser = argparse.ArgumentParser(prog="script/mutate")
    parser.add_argument("count", type=int, nargs="?", default=150)
    parser.add_argument("seed", type=int, nargs="?", default=1)
    parser.add_argument("paths", nargs="*", default=["src"])
    parser.add_argument("--jobs", type=int, default=os.cpu_count())
    options = parser.parse_args()

    sources = sources_under(options.paths)
    mutants = draw(sources, random.Random(options.seed))
    print(f"{len(mutants)} places in {len(sources)} files; {options.count} mutants of seed "
          f"{options.seed}", flush=True)
    trial = Trial(sources, options.jobs)
    tally = collections.Counter()
    survivors = []
    for mutant in rounds(mutants, options.count, tally):
        source = sources[mutant.file]
        fate, remark = trial.ledger.about(mutant, trial.fate)
        tally[fate] += 1
        report = (f"{mutant.file}:{mutant.line(source)}: {mutant.place.kind} {fate}"
                  f"{': ' + remark if remark else ''}\n{mutant.difference(source)}")
        print(report, flush=True)
        if fate == "survived":
            survivors.append(report)

    counted = tally["killed"] + tally["survived"]
    if not counted:
        fail("no mutant could be built")
    rate = 100 * tally["killed"] / counted
    print(f"\n{tally['killed']} of {counted} mutants were killed, {rate:.1f} %; not counted: "
          f"{tally['invalid']} that do not compile, {tally['same']} that make the same program")
    for survivor in survivors:
        print(survivor)
    return 0 if rate >= 90 else 1


if __name__ == "__main__":
    sys.exit(main())
