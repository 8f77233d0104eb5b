def run(n):
    seen = {}
    seed = 42
    for _ in range(n):
        seed = seed * 16807 % 2147483647
        key = seed % (2 * n) * 1001
        seen[key] = seen.get(key, 0) + 1
    total = 0
    for i in range(2 * n):
        times = seen.get(i * 1001)
        if times is not None:
            total += times * times
    return total + len(seen)


print(run(int(input())))
