from math import floor, sqrt


class Body:
    __slots__ = ("x", "y", "z", "vx", "vy", "vz", "mass")

    def __init__(self, i):
        self.x = 2.0 * i
        self.y = 0.5 * i
        self.z = 0.25 * i
        self.vx = 0.0
        self.vy = 0.0
        self.vz = 0.0
        self.mass = 0.02 * i


def solar_system():
    sun = Body(0)
    sun.mass = 40.0
    bodies = [sun]
    for i in range(1, 5):
        planet = Body(i)
        planet.vz = sqrt(sun.mass / planet.x)
        bodies.append(planet)
    return bodies


def advance(bodies, dt):
    count = len(bodies)
    for i in range(count):
        a = bodies[i]
        for j in range(i + 1, count):
            b = bodies[j]
            dx = a.x - b.x
            dy = a.y - b.y
            dz = a.z - b.z
            square = dx * dx + dy * dy + dz * dz
            pull = dt / (square * sqrt(square))
            pull_of_b = b.mass * pull
            a.vx -= dx * pull_of_b
            a.vy -= dy * pull_of_b
            a.vz -= dz * pull_of_b
            pull_of_a = a.mass * pull
            b.vx += dx * pull_of_a
            b.vy += dy * pull_of_a
            b.vz += dz * pull_of_a
    for body in bodies:
        body.x += dt * body.vx
        body.y += dt * body.vy
        body.z += dt * body.vz


def energy(bodies):
    total = 0.0
    count = len(bodies)
    for i in range(count):
        a = bodies[i]
        total += 0.5 * a.mass * (a.vx * a.vx + a.vy * a.vy + a.vz * a.vz)
        for j in range(i + 1, count):
            b = bodies[j]
            dx = a.x - b.x
            dy = a.y - b.y
            dz = a.z - b.z
            total -= a.mass * b.mass / sqrt(dx * dx + dy * dy + dz * dz)
    return total


steps = int(input())
bodies = solar_system()
for _ in range(steps):
    advance(bodies, 0.001)
print(floor(energy(bodies) * 1000000000))
