def run(n):
    items = list(range(200))
    stock = {f"item{i}": i for i in range(1, 51)}
    text = "abcde" * 40
    total = 0
    for _ in range(n):
        for x in items:
            total += x % 3
        for name in stock:
            total += stock[name]
        for c in text:
            if c == "e":
                total += 1
        for i in range(200):
            total += i % 5
    return total


print(run(int(input())))
