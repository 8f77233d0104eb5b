# math.gcd exists; the loop is what is measured.
def gcd(a, b):
    while b != 0:
        a, b = b, a % b
    return a


def run(n):
    coprime = 0
    for a in range(1, n + 1):
        for b in range(1, a + 1):
            if gcd(a, b) == 1:
                coprime += 1
    return coprime


print(run(int(input())))
