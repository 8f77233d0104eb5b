def run(n):
    waiting = [1]
    visited = 0
    hash = 0
    while waiting:
        x = waiting.pop()
        visited += 1
        hash = (hash * 31 + x) % 1000003
        if 2 * x <= n:
            waiting.append(2 * x)
            if 2 * x + 1 <= n:
                waiting.append(2 * x + 1)
    return visited + hash


print(run(int(input())))
