"""The tables that are printed, in Markdown."""

from rounds import geometric_mean


def table(heading, rows):
    """The first column is text, the others are numbers."""
    print(f"| {' | '.join(heading)} |")
    print(f"|---|{'---:|' * (len(heading) - 1)}")
    for row in rows:
        print(f"| {' | '.join(row)} |")
    print(flush=True)


def milliseconds(seconds):
    return f"{seconds * 1e3:.0f}"


class Goals:
    """What is wanted beside what was measured."""

    def __init__(self):
        self.rows = []

    def at_most(self, what, limit, measured, digits=2):
        self.add(what, f"at most {limit}", f"{measured:.{digits}f}", measured <= limit)

    def at_least(self, what, limit, measured):
        self.add(what, f"at least {limit}", f"{measured:.1f}", measured >= limit)

    def none(self, what, exceptions):
        """`exceptions` are the names of what should not be."""
        self.add(what, "none", ", ".join(exceptions) or "none", not exceptions)

    def add(self, what, wanted, measured, is_met):
        self.rows.append((what, wanted, measured, "met" if is_met else "**not met**"))

    def print(self):
        table(("goal", "wanted", "measured", ""), self.rows)


def peers(costs, names, goals):
    """`costs` maps the name of each program to its costs by language."""
    def ratios(peer, field):
        return [getattr(cost["pellum"], field) / getattr(cost[peer], field)
                for cost in costs.values()]

    rows = [[name, milliseconds(cost["pellum"].cpu)] +
            [f"{cost['pellum'].cpu / cost[peer].cpu:.2f}" for peer in names]
            for name, cost in costs.items()]
    rows.append(["**geometric mean**", ""] +
                [f"**{geometric_mean(ratios(peer, 'cpu')):.2f}**" for peer in names])
    print("CPU time of pellum in milliseconds, and divided by that of each peer:\n")
    table(["program", "ms", *names], rows)

    for peer in names:
        if peer == "luajit":
            goals.at_most(f"CPU time against {peer}, geometric mean", 1.0,
                          geometric_mean(ratios(peer, "cpu")))
            continue
        if peer == "lua5.4":
            goals.at_most(f"CPU time against {peer}, geometric mean", 0.6,
                          geometric_mean(ratios(peer, "cpu")))
        slower = [name for name, ratio in zip(costs, ratios(peer, "cpu")) if ratio > 1.0]
        goals.none(f"programs slower than {peer}", slower)

    if "lua5.4" not in names:
        return
    rows = [[name, f"{cost['pellum'].peak / 1024:.1f}", f"{cost['lua5.4'].peak / 1024:.1f}",
             f"{cost['pellum'].peak / cost['lua5.4'].peak:.2f}",
             f"{cost['tree'].cpu / cost['lua5.4'].cpu:.2f}"] for name, cost in costs.items()]
    memory = geometric_mean(ratios("lua5.4", "peak"))
    walking = geometric_mean([cost["tree"].cpu / cost["lua5.4"].cpu for cost in costs.values()])
    rows.append(["**geometric mean**", "", "", f"**{memory:.2f}**", f"**{walking:.2f}**"])
    print("Peak memory in megabytes, its ratio, and CPU time of the tree-walker divided by that of "
          "lua5.4:\n")
    table(("program", "pellum", "lua5.4", "memory", "tree-walker"), rows)
    goals.at_most("peak memory against lua5.4, geometric mean", 1.5, memory)
    goals.at_most("tree-walker against lua5.4, geometric mean", 6.0, walking)


def startup(times, goals):
    print("CPU time of an empty program:\n")
    table(("program", "ms"), [(name, f"{time * 1e3:.2f}") for name, time in times.items()])
    if "lua5.4" in times:
        goals.at_most("start-up against lua5.4", 1.3, times["pellum"] / times["lua5.4"])


def growth(ratios, front_end, goals):
    """`ratios` maps the name of each program to its growth in pellum and in lua5.4. What no longer
    fits into a cache costs more in any language, so both must be exceeded, 11 and lua5.4's."""
    print("How much longer ten times as much takes:\n")
    rows = [(name, f"{this:.1f}", f"{peer:.1f}") for name, (this, peer) in ratios.items()]
    table(("what", "pellum", "lua5.4"), [*rows, ("front_end", f"{front_end:.1f}", "")])
    steep = [name for name, (this, peer) in ratios.items() if this > 11 and this > 1.1 * peer]
    if front_end > 11:
        steep.append("front_end")
    goals.none("cost that grows more than 11-fold, and more than in lua5.4", steep)


def comparison(unit, amounts):
    """`amounts` maps the name of each program to a pair, the other build's and this one's."""
    rows = [(name, f"{old:.{unit.digits}f}", f"{new:.{unit.digits}f}", f"{new / old:.3f}")
            for name, (old, new) in amounts.items()]
    mean = geometric_mean([new / old for old, new in amounts.values()])
    rows.append(("**geometric mean**", "", "", f"**{mean:.3f}**"))
    table(("program", f"other, {unit.name}", f"this, {unit.name}", "ratio"), rows)
