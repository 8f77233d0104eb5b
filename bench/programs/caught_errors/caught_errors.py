class Refused(Exception):
    def __init__(self, code, amount):
        self.code = code
        self.amount = amount


def check(order):
    if order["amount"] > 90:
        raise Refused(7, order["amount"])
    return order["customer"]["discount"] + order["amount"]


def run(n):
    customer = {"discount": 2}
    total = 0
    for i in range(1, n + 1):
        order = {"amount": i % 100, "customer": customer}
        if i % 10 == 0:
            order["customer"] = None
        try:
            total += check(order)
        except Refused as problem:
            total += problem.code
        except TypeError:
            total += 1
    return total


print(run(int(input())))
