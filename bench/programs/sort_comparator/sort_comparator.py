from functools import cmp_to_key
from math import floor


class Fraction:
    __slots__ = ("top", "bottom")

    def __init__(self, top, bottom):
        self.top = top
        self.bottom = bottom


def compare(a, b):
    return a.top * b.bottom - b.top * a.bottom


def run(n):
    fractions = []
    seed = 42
    for i in range(1, n + 1):
        seed = seed * 16807 % 2147483647
        fractions.append(Fraction(seed % 1000, i % 97 + 1))
    fractions.sort(key=cmp_to_key(compare))
    hash = 0
    for fraction in fractions:
        hash = (hash * 31 + floor(1000 * fraction.top / fraction.bottom)) % 1000003
    return hash


print(run(int(input())))
