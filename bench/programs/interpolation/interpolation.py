def run(n):
    total = 0
    for i in range(1, n + 1):
        line = f"order {i}: {i % 7} pieces at {i + 0.5}, {i * 3} in all"
        total += len(line)
    return total


print(run(int(input())))
