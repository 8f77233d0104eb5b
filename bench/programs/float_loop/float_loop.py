from math import floor


def run(n):
    x = 0.5
    total = 0.0
    for i in range(1, n + 1):
        x = x * 0.999 + 1.0 / i
        if x > 1.5:
            x -= 1.25
        total += x * x
    return total


print(floor(run(int(input())) * 1000))
