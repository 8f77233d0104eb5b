class Tree:
    __slots__ = ("left", "right")

    def __init__(self, left, right):
        self.left = left
        self.right = right


def make_tree(depth):
    if depth == 0:
        return Tree(None, None)
    return Tree(make_tree(depth - 1), make_tree(depth - 1))


def count_nodes(tree):
    if tree.left is None:
        return 1
    return 1 + count_nodes(tree.left) + count_nodes(tree.right)


def run(depth):
    lasting = make_tree(depth)
    nodes = 0
    for size in range(1, depth):
        for _ in range(2 ** (depth - 1 - size)):
            nodes += count_nodes(make_tree(size))
    return nodes + count_nodes(lasting)


print(run(int(input())))
