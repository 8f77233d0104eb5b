def scan(text):
    words = 0
    numbers = 0
    hash = 0
    in_word = False
    for c in text:
        if c == " " or c == ",":
            in_word = False
        else:
            if not in_word:
                words += 1
            if "0" <= c <= "9":
                numbers += 1
            in_word = True
        hash = (hash * 31 + ord(c)) % 65521
    return words + numbers + hash


text = "the quick brown fox, 4 years old, jumps over 12 lazy dogs " * int(input())
print(scan(text))
