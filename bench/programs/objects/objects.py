class Turtle:
    __slots__ = ("name", "x", "y", "dx", "dy")

    def __init__(self, name):
        self.name = name
        self.x = 0
        self.y = 0
        self.dx = 1
        self.dy = 0

    def forward(self, steps):
        self.x += self.dx * steps
        self.y += self.dy * steps

    def left(self):
        self.dx, self.dy = -self.dy, self.dx

    def distance(self):
        return abs(self.x) + abs(self.y)


def run(n):
    turtles = [Turtle(f"turtle {i}") for i in range(10)]
    total = 0
    for i in range(1, n + 1):
        turtle = turtles[i % 10]
        turtle.forward(i % 5)
        if i % 3 == 0:
            turtle.left()
        total = (total + turtle.distance()) % 1000003
    return total


print(run(int(input())))
