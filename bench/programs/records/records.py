class Account:
    __slots__ = ("id", "balance", "paid", "received", "refused")

    def __init__(self, id):
        self.id = id
        self.balance = 1000
        self.paid = 0
        self.received = 0
        self.refused = 0


def transfer(source, target, amount):
    if source.balance < amount:
        source.refused += 1
    else:
        source.balance -= amount
        target.balance += amount
        source.paid += 1
        target.received += 1


def run(n):
    accounts = [Account(i) for i in range(100)]
    for i in range(1, n + 1):
        transfer(accounts[i * 7 % 100], accounts[i * i % 97], i % 900)
    hash = 0
    for account in accounts:
        hash = (hash * 31 + account.balance + account.id) % 1000003
        hash = (hash * 31 + account.paid + account.received * 3 + account.refused * 5) % 1000003
    return hash


print(run(int(input())))
