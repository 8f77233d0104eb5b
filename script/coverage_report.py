"""coverage_report.py LINES BRANCHES < EXPORT   prints what script/coverage has found.

Reads the export of llvm-cov, names everything in src/ that never ran, prints a table of the files,
and ends with 1 when less than LINES percent of the lines or BRANCHES percent of the branches have
been taken.

A line counts when any instance of a template or any inlined copy has run it; one that holds nothing
but closing brackets is none. Each condition of an
`if`, a loop, `?:`, `&&` or `||`, and each `case`, is two branches, one for either way; in a macro
it is two branches for every use of the macro. The way past all cases of a `switch` without a
`default` does not count: such a switch names every enumerator, and the compilers see to it.

A remark `// not counted: REASON` takes its line out of the count, or the next line where it stands
alone.
"""

import collections
import json
import os
import re
import sys

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
MARK = re.compile(r"^(.*)// not counted: \S")
CLOSING = re.compile(r"[\s})\];]*$")
EXPANSION = 1  # the kind of a region that stands for the use of a macro


class Source:
    """A file, and how often each of its lines and branches has been taken."""

    def __init__(self, path):
        self.name = os.path.relpath(path, ROOT)
        with open(path, encoding="utf-8") as text:
            self.text = text.read().split("\n")
        marks = [(number, MARK.match(line)) for number, line in enumerate(self.text, 1)]
        self.left_out = {number if mark[1].strip() else number + 1
                         for number, mark in marks if mark}
        self.no_code = {number for number, line in enumerate(self.text, 1) if CLOSING.match(line)}
        self.lines = collections.Counter()
        self.branches = collections.defaultdict(lambda: [0, 0])

    def counts_at(self, line, column):
        is_switch = self.text[line - 1][:column - 1].endswith("switch (")
        return line not in self.left_out and not is_switch

    def add_branch(self, place, was_true, was_false):
        if self.counts_at(*place[0]):
            self.branches[place][0] += was_true
            self.branches[place][1] += was_false

    def missed(self):
        """What was never taken, as (line, text), in the order of the lines."""
        found = [(line, "never runs") for line, count in self.lines.items() if not count]
        for place, (was_true, was_false) in self.branches.items():
            if was_true and was_false:
                continue
            (line, column), *uses = place[:-1]
            never = "true" if was_false else "false" if was_true else "asked"
            macro = "".join(f", in the macro's use at line {use}" for use, _ in uses)
            copy = f", copy {place[-1]}" if place[-1] > 1 else ""
            found.append((line, f"condition at column {column} is never {never}{macro}{copy}"))
        return sorted(found)

    def tally(self):
        """Lines, those that ran, branches, those taken."""
        taken = sum(bool(way) for ways in self.branches.values() for way in ways)
        return (len(self.lines), sum(bool(count) for count in self.lines.values()),
                2 * len(self.branches), taken)


def line_counts(segments):
    """How often each line ran that has code, from the places where the count changes."""
    starting = collections.defaultdict(list)
    for line, _, count, has_count, is_entry, is_gap in segments:
        starting[line].append((count, has_count, is_entry, is_gap))
    if not starting:
        return
    around = (0, False, False, False)  # what the line before ends in
    for line in range(min(starting), max(starting) + 1):
        here = starting.get(line, [])
        entered = [count for count, has_count, is_entry, is_gap in here
                   if has_count and is_entry and not is_gap]
        is_skipped = bool(here) and not here[0][1] and here[0][2]  # a remark or a blank line
        if not is_skipped and (around[1] or entered):
            yield line, max(entered + ([around[0]] if around[1] else []))
        if here:
            around = here[-1]


def add_branches(function, source_of):
    """Adds the branches of one function, or of one instance of a template.

    A place is where a condition is written, then the uses of the macros around it, then which copy
    this is of what a macro repeats.
    """
    uses = {region[6]: (region[5], tuple(region[:2]))
            for region in function["regions"] if region[7] == EXPANSION}
    copies = collections.Counter()
    for line, column, _, _, was_true, was_false, file_id, *_ in function["branches"]:
        source = source_of(function["filenames"][file_id])
        if not source:
            continue
        place = [(line, column)]
        while file_id in uses:
            file_id, use = uses[file_id]
            place.append(use)
        copies[tuple(place)] += 1
        place.append(copies[tuple(place)])
        source.add_branch(tuple(place), was_true, was_false)


def read_export(stream):
    export = json.load(stream)["data"][0]
    sources = {}

    def source_of(name):
        path = os.path.normpath(name)
        if not path.startswith(os.path.join(ROOT, "src", "")):
            return None
        if path not in sources:
            sources[path] = Source(path)
        return sources[path]

    for file in export["files"]:
        source = source_of(file["filename"])
        if source:  # which may come twice, under two ways to spell its path
            without = source.left_out | source.no_code
            source.lines.update({line: count for line, count in line_counts(file["segments"])
                                 if line not in without})
    for function in export["functions"]:
        add_branches(function, source_of)
    return sorted(sources.values(), key=lambda source: source.name)


def percent(taken, count):
    return 100.0 * taken / count if count else 100.0


def print_row(name, tally):
    lines, ran, branches, taken = tally
    print(f"{name:<32}{lines:>7}{lines - ran:>7}{percent(ran, lines):>9.2f} %"
          f"{branches:>8}{branches - taken:>7}{percent(taken, branches):>9.2f} %")


def main():
    wanted_lines, wanted_branches = float(sys.argv[1]), float(sys.argv[2])
    sources = read_export(sys.stdin)
    for source in sources:
        for line, text in source.missed():
            print(f"{source.name}:{line}: {text}")
    print(f"\n{'':<32}{'lines':>7}{'missed':>7}{'':>11}{'branches':>8}{'missed':>7}")
    for source in sources:
        print_row(source.name, source.tally())
    total = [sum(column) for column in zip(*(source.tally() for source in sources))]
    print_row("all of src/", total)
    print(f"{sum(len(source.left_out) for source in sources)} lines are not counted")
    lines, branches = percent(total[1], total[0]), percent(total[3], total[2])
    if lines < wanted_lines or branches < wanted_branches:
        print(f"wanted are {wanted_lines:g} % of the lines and {wanted_branches:g} % of the branches")
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
