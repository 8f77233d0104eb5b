"""What script/bench starts: reads the command line, measures, and prints."""

import argparse
import os
import sys
from dataclasses import dataclass

import instructions
import report
import scaling
from launcher import Failed, Launcher
from programs import (PEERS, ROOT, all_programs, install, pellum, tree_walker, version)
from rounds import measure


@dataclass(frozen=True)
class Unit:
    name: str
    digits: int


def arguments():
    known = [peer.name for peer in PEERS]
    parser = argparse.ArgumentParser(prog="script/bench", description="Measures Pellum.")
    parser.add_argument("--only", metavar="NAME[,NAME]", help="measure these programs alone")
    parser.add_argument("--runs", type=int, default=5, metavar="N",
                        help="rounds, of which the fastest counts (default: 5)")
    parser.add_argument("--peers", default=",".join(known), metavar="NAME[,NAME]",
                        help="compare with these alone (default: %(default)s)")
    parser.add_argument("--program", default=os.path.join(ROOT, "build", "bench", "pellum"),
                        metavar="FILE", help="measure this pellum instead of building one")
    parser.add_argument("--compare", metavar="FILE",
                        help="compare with this pellum, rather than with other languages")
    parser.add_argument("--instructions", action="store_true",
                        help="with --compare: count instructions rather than time")
    given = parser.parse_args()
    if given.runs < 1:
        parser.error("--runs must be at least 1")
    if given.instructions and not given.compare:
        parser.error("--instructions needs --compare")
    return given


def chosen(wanted, known, what):
    """Those of `known` whose names stand in the list `wanted`."""
    names = wanted.split(",")
    for name in names:
        if name not in [each.name for each in known]:
            raise Failed(f"there is no {what} {name}")
    return [each for each in known if each.name in names]


def progress(text):
    """To a terminal alone: what is being measured."""
    if sys.stderr.isatty():
        print(f"\r\033[K{text}", end="", file=sys.stderr, flush=True)


def compare(given, programs, launcher):
    new = pellum(os.path.abspath(given.program))
    old = pellum(os.path.abspath(given.compare), "old")
    amounts = {}
    for program in programs:
        progress(program.name)
        if given.instructions:
            amounts[program.name] = [instructions.count(program, language) / 1e6
                                     for language in (old, new)]
        else:
            costs = measure(program, [old, new], given.runs, launcher)
            amounts[program.name] = [costs["old"].cpu * 1e3, costs["pellum"].cpu * 1e3]
    progress("")
    unit = Unit("million instructions", 1) if given.instructions else Unit("ms", 1)
    report.comparison(unit, amounts)


def compare_with_peers(given, programs, launcher):
    peers = chosen(given.peers, PEERS, "peer")
    install(peers)
    this = pellum(os.path.abspath(given.program))
    tree = tree_walker(this.command[0])
    names = [peer.name for peer in peers]
    print("; ".join(version(language) for language in [this, *peers]) + ".")
    load = os.getloadavg()[0]
    print(f"Least CPU time of {given.runs} rounds; {os.cpu_count()} processors, "
          f"load {load:.1f} at the start.\n")
    goals = report.Goals()
    costs = {}
    for program in programs:
        progress(program.name)
        costs[program.name] = measure(program, [this, *peers, tree], given.runs, launcher)
    progress("")
    report.peers(costs, names, goals)
    if not given.only:
        progress("starting up")
        times = scaling.startups([this, *peers], launcher, given.runs)
        progress("")
        report.startup(times, goals)
        progress("scaling")
        lua = chosen("lua5.4", PEERS, "peer")
        install(lua)
        growth = scaling.data_growth([this, *lua], launcher, given.runs)
        speed, parsing, longer = scaling.front_end(this, tree, times["pellum"], launcher,
                                                   given.runs)
        progress("")
        report.growth(growth, longer, goals)
        print(f"The front end makes {parsing:.1f} MB/s of source into a tree, and {speed:.1f} MB/s "
              "into bytecode.\n")
        goals.at_least("MB/s of source made into bytecode", 20, speed)
    goals.print()


def main():
    given = arguments()
    programs = all_programs()
    if given.only:
        programs = chosen(given.only, programs, "program")
    launcher = Launcher(os.path.join(ROOT, "build", "bench"))
    if given.compare:
        compare(given, programs, launcher)
    else:
        compare_with_peers(given, programs, launcher)


if __name__ == "__main__":
    try:
        main()
    except Failed as problem:
        sys.exit(f"pellum: {problem}")
