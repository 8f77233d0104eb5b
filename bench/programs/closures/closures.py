def make_counter(step):
    count = 0

    def next_count():
        nonlocal count
        count += step
        return count

    return next_count


def twice(f, x):
    return f(f(x))


def run(n):
    counters = [make_counter(step) for step in range(1, 9)]
    total = 0
    for i in range(n):
        count = counters[i % 8]()
        total = (total + twice(lambda x: x + i, count)) % 1000003
    return total


print(run(int(input())))
