position = 0
velocity = 3
bounces = 0
limit = 1000

function bounce()
    velocity = -velocity
    bounces = bounces + 1
end

function step()
    position = position + velocity
    if position < 0 then bounce() end
    if position > limit then bounce() end
end

steps = tonumber(io.read())
taken = 0
while taken < steps do
    step()
    taken = taken + 1
end
print(bounces * 10000 + position)
