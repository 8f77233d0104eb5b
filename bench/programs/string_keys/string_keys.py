def run(n):
    names = [f"user{i}" for i in range(n)]
    visits = {}
    for round in range(1, 4):
        for name in names:
            visits[name] = visits.get(name, 0) + round
    total = 0
    for i in range(n + n // 2 + 1):
        name = f"user{i}"
        if name in visits:
            total += visits[name]
    for name in names:
        if visits[name] != 6:
            total += 1
    return total + len(visits)


print(run(int(input())))
