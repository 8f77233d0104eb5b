def run(n):
    hash = 0
    for i in range(1, n + 1):
        if i % 3 == 0:
            hash = (hash * 31 + i) % 65521
        else:
            hash += i % 7
    return hash


print(run(int(input())))
