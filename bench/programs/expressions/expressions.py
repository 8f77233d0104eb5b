class Number:
    __slots__ = ("value",)
    kind = "number"

    def __init__(self, value):
        self.value = value


class Operation:
    __slots__ = ("kind", "left", "right")

    def __init__(self, kind, left, right):
        self.kind = kind
        self.left = left
        self.right = right


def parse(text):
    at = 0

    def parse_factor():
        nonlocal at
        if text[at] == "(":
            at += 1
            inner = parse_sum()
            at += 1
            return inner
        start = at
        while at < len(text) and "0" <= text[at] <= "9":
            at += 1
        return Number(int(text[start:at]))

    def parse_product():
        nonlocal at
        left = parse_factor()
        while at < len(text) and text[at] == "*":
            at += 1
            left = Operation("product", left, parse_factor())
        return left

    def parse_sum():
        nonlocal at
        left = parse_product()
        while at < len(text) and text[at] == "+":
            at += 1
            left = Operation("sum", left, parse_product())
        return left

    return parse_sum()


def evaluate(tree):
    if tree.kind == "number":
        return tree.value
    left = evaluate(tree.left)
    right = evaluate(tree.right)
    if tree.kind == "sum":
        return (left + right) % 10007
    return left * right % 10007


def run(n):
    total = 0
    for i in range(1, n + 1):
        tree = parse(f"({i}+12)*3+(7*(2+{i % 11})+4*5)*(1+2*3)+100")
        for _ in range(5):
            total = (total + evaluate(tree)) % 1000003
    return total


print(run(int(input())))
