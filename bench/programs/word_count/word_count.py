def make_text(n):
    syllables = ["ka", "lo", "mi", "ne", "pu", "ra", "si", "to"]
    seed = 42
    words = []
    for _ in range(n):
        seed = seed * 16807 % 2147483647
        word = syllables[seed % 8] + syllables[seed % 7]
        if seed % 3 == 0:
            word += syllables[seed % 5]
        words.append(word)
    return " ".join(words)


def run(n):
    counts = {}
    for word in make_text(n).split():
        counts[word] = counts.get(word, 0) + 1
    hash = 0
    for word in sorted(counts, key=lambda word: (-counts[word], word)):
        hash = (hash * 31 + counts[word] * len(word) + ord(word[0])) % 1000003
    return hash


print(run(int(input())))
