def build(n):
    pieces = []
    for i in range(1, n + 1):
        pieces.append(str(i))
        if i % 10 == 0:
            pieces.append("\n")
        else:
            pieces.append(", ")
    return "".join(pieces)


text = build(int(input()))
print(len(text) + len(text.split("\n")))
