"""Measures programs: all languages in turn, several rounds, the least of all rounds counts."""

import math
from dataclasses import dataclass

from launcher import Failed


@dataclass(frozen=True)
class Cost:
    cpu: float  # seconds
    peak: int  # kilobytes


def measure(program, languages, runs, launcher):
    """The cost of a program in each language, by the language's name. Other work on the machine can
    only make a run slower, so the fastest says most. Languages that disagree about the result are
    an error."""
    samples = {language.name: [] for language in languages}
    for _ in range(runs):
        for language in languages:
            samples[language.name].append(program.run(language, launcher))
        outputs = {name: taken[-1].output for name, taken in samples.items()}
        if len(set(outputs.values())) > 1:
            answers = ", ".join(f"{name} {output.strip()}" for name, output in outputs.items())
            raise Failed(f"the results of {program.name} differ: {answers}")
    return {name: Cost(min(sample.cpu for sample in taken), min(sample.peak for sample in taken))
            for name, taken in samples.items()}


def geometric_mean(ratios):
    return math.exp(sum(map(math.log, ratios)) / len(ratios))
