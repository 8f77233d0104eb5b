def run(n):
    line = "2024-05-17,order 4711,3 apples,delivered,,12 Mill Lane"
    total = 0
    for _ in range(n):
        fields = line.split(",")
        words = fields[5].split()
        words.append(fields[0])
        text = " ".join(words) + ";".join(fields)
        total += len(fields) + len(words) + len(text)
    return total


print(run(int(input())))
