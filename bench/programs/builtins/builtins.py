from math import floor, sqrt


def run(n):
    total = 0
    for i in range(1, n + 1):
        bounded = min(max(i % 1000, 10), 500)
        total += bounded + abs(i % 17 - 8) + floor(sqrt(i))
    return total


print(run(int(input())))
