# A slice assignment could cross out all multiples at once; the element is what is measured.
def count_primes(n):
    is_prime = [True] * (n + 1)
    count = 0
    for i in range(2, n + 1):
        if is_prime[i]:
            count += 1
            for multiple in range(i * i, n + 1, i):
                is_prime[multiple] = False
    return count


print(count_primes(int(input())))
