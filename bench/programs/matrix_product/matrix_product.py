from math import floor


def make_matrix(n, seed):
    return [[(i * seed + j) % 10 / 4 for j in range(n)] for i in range(n)]


def multiply(a, b, n):
    rows = []
    for left in a:
        row = []
        for j in range(n):
            total = 0.0
            for k in range(n):
                total += left[k] * b[k][j]
            row.append(total)
        rows.append(row)
    return rows


def run(n):
    product = multiply(make_matrix(n, 3), make_matrix(n, 7), n)
    trace = 0.0
    for i in range(n):
        trace += product[i][i]
    return trace


print(floor(run(int(input())) * 16))
