from math import floor, sqrt


def element(i, j):
    return 1.0 / ((i + j) * (i + j + 1) / 2 + i + 1)


def times_matrix(v, n):
    result = []
    for i in range(n):
        total = 0.0
        for j in range(n):
            total += element(i, j) * v[j]
        result.append(total)
    return result


def times_transposed(v, n):
    result = []
    for i in range(n):
        total = 0.0
        for j in range(n):
            total += element(j, i) * v[j]
        result.append(total)
    return result


def spectral_norm(n):
    u = [1.0] * n
    for _ in range(10):
        v = times_transposed(times_matrix(u, n), n)
        u = times_transposed(times_matrix(v, n), n)
    uv = 0.0
    vv = 0.0
    for i in range(n):
        uv += u[i] * v[i]
        vv += v[i] * v[i]
    return sqrt(uv / vv)


print(floor(spectral_norm(int(input())) * 1000000000))
