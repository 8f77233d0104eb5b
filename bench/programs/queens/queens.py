def solve(row, size, columns, rising, falling):
    if row == size:
        return 1
    found = 0
    for c in range(size):
        up = row + c
        down = row - c + size
        if not (columns[c] or rising[up] or falling[down]):
            columns[c] = rising[up] = falling[down] = True
            found += solve(row + 1, size, columns, rising, falling)
            columns[c] = rising[up] = falling[down] = False
    return found


def queens(size):
    return solve(0, size, [False] * size, [False] * (2 * size), [False] * (2 * size))


print(queens(int(input())))
