from functools import reduce


def run(n):
    total = 0
    for round in range(1, n + 1):
        odd = filter(lambda x: x % 2 == 1, range(1000))
        squares = map(lambda x: x * x + round, odd)
        total = (total + reduce(lambda sum, x: sum + x % 7, squares, 0)) % 1000003
    return total


print(run(int(input())))
