# Slices would turn and rotate at once; moving elements is what is measured.
def count_flips(permutation):
    order = permutation[:]
    flips = 0
    first = order[0]
    while first != 0:
        low = 0
        high = first
        while low < high:
            order[low], order[high] = order[high], order[low]
            low += 1
            high -= 1
        flips += 1
        first = order[0]
    return flips


def advance(permutation, turns):
    """Makes the next permutation in place; false after the last."""
    for i in range(1, len(permutation)):
        first = permutation[0]
        for j in range(1, i + 1):
            permutation[j - 1] = permutation[j]
        permutation[i] = first
        turns[i] += 1
        if turns[i] <= i:
            return True
        turns[i] = 0
    return False


def run(n):
    permutation = list(range(n))
    turns = [0] * n
    most = 0
    total = 0
    goes_on = True
    while goes_on:
        flips = count_flips(permutation)
        if flips > most:
            most = flips
        total += flips
        goes_on = advance(permutation, turns)
    return total * 100 + most


print(run(int(input())))
