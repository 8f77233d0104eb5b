def run(n):
    numbers = []
    words = []
    seed = 42
    for i in range(1, n + 1):
        seed = seed * 16807 % 2147483647
        numbers.append(seed)
        if i % 4 == 0:
            words.append(f"w{seed % 100000}")
    numbers.sort()
    words.sort()
    hash = 0
    for number in numbers:
        hash = (hash * 31 + number) % 1000003
    for word in words:
        hash = (hash * 31 + ord(word[1]) + len(word)) % 1000003
    return hash


print(run(int(input())))
