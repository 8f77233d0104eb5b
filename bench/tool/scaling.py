"""How cost grows: with the amount of data, and of the front end with the length of a source."""

import os
import tempfile

from programs import BENCH

SMALL = 1000
LARGE = 10 * SMALL  # small enough for most to stay in the processor's caches
ENOUGH = 0.05  # seconds that a measurement should take at least


def startup(language, launcher, runs):
    """The CPU seconds of an empty program."""
    with tempfile.NamedTemporaryFile("w", suffix=f".{language.extension}") as empty:
        return min(launcher.run([*language.command, empty.name], count=20).cpu
                   for _ in range(runs))


def startups(languages, launcher, runs):
    """The CPU seconds of an empty program in each language, by name; the languages take turns."""
    rounds = [[startup(language, launcher, 1) for language in languages] for _ in range(runs)]
    return {language.name: min(times) for language, times in zip(languages, zip(*rounds))}


def growth(command, launcher, runs):
    """How much longer a program takes for ten times as much data. It works through n items some
    number of times; with ten times the items it gets a tenth of the rounds, so that starting up and
    asking the system for memory weigh the same."""
    rounds = 10
    while launcher.run(command, f"{SMALL}\n{rounds}").cpu < ENOUGH:
        rounds *= 2
    small, large = [], []
    for _ in range(runs):
        small.append(launcher.run(command, f"{SMALL}\n{rounds}").cpu)
        large.append(launcher.run(command, f"{LARGE}\n{rounds // 10}").cpu)
    return 10 * min(large) / min(small)


def data_growth(languages, launcher, runs):
    """The growth of each program under scaling/, by its name, for each language."""
    folder = os.path.join(BENCH, "scaling")
    names = sorted({os.path.splitext(file)[0] for file in os.listdir(folder)})
    return {name: [growth([*language.command, os.path.join(folder, f"{name}.{language.extension}")],
                          launcher, runs) for language in languages] for name in names}


FUNCTION = '''\
# Function number {n}: what it does matters less than that it looks like a program.
function work{n}(items, limit)
    let total = 0
    let names = {{first: "one", second: 'two', "third one": [1, 2.5, {n}]}}
    for i = 0, len(items) - 1 do
        if items[i] > limit and not (i % 2 == 0) then
            total += items[i] * {n} - names.first
        elif items[i] == nil or total >= 1000 then
            names.second = "item ${{i}} of ${{len(items)}}"
        else
            total = max(total, items[i] // 2) ^ 2
        end
    end
    while total < limit do
        let step = function(x, y) return x + y * 3 end
        total = step(total, 1)
    end
    return total
end
'''


def front_end_cost(command, functions, base, launcher, runs):
    """The bytes of a source of so many functions, none of them called, and the CPU seconds that it
    takes to read it."""
    text = "\n".join(FUNCTION.format(n=n) for n in range(functions))
    with tempfile.NamedTemporaryFile("w", suffix=".pellum") as source:
        source.write(text)
        source.flush()
        cpu = min(launcher.run([*command, source.name]).cpu for _ in range(runs))
    return len(text), cpu - base


def front_end(pellum, tree, base, launcher, runs):
    """Megabytes per second up to bytecode, the same up to the tree alone, and how much longer a
    source ten times as long takes."""
    _, short = front_end_cost(pellum.command, 1000, base, launcher, runs)
    size, long = front_end_cost(pellum.command, 10000, base, launcher, runs)
    _, parsed = front_end_cost(tree.command, 10000, base, launcher, runs)
    return size / long / 1e6, size / parsed / 1e6, long / short
