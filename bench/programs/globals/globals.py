position = 0
velocity = 3
bounces = 0
limit = 1000


def bounce():
    global velocity, bounces
    velocity = -velocity
    bounces += 1


def step():
    global position
    position += velocity
    if position < 0:
        bounce()
    if position > limit:
        bounce()


steps = int(input())
taken = 0
while taken < steps:
    step()
    taken += 1
print(bounces * 10000 + position)
