def run(n):
    sides = list(range(1, n + 1))
    found = 0
    for a in sides:
        for b in sides:
            square = a * a + b * b
            for c in sides:
                if c * c == square:
                    found += 1
    return found


print(run(int(input())))
