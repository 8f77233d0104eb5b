local Turtle = {}
Turtle.__index = Turtle

function Turtle.new(name)
    return setmetatable({name = name, x = 0, y = 0, dx = 1, dy = 0}, Turtle)
end

function Turtle:forward(steps)
    self.x = self.x + self.dx * steps
    self.y = self.y + self.dy * steps
end

function Turtle:left()
    self.dx, self.dy = -self.dy, self.dx
end

function Turtle:distance()
    return math.abs(self.x) + math.abs(self.y)
end

local function run(n)
    local turtles = {}
    for i = 1, 10 do turtles[i] = Turtle.new("turtle " .. i) end
    local total = 0
    for i = 1, n do
        local turtle = turtles[i % 10 + 1]
        turtle:forward(i % 5)
        if i % 3 == 0 then turtle:left() end
        total = (total + turtle:distance()) % 1000003
    end
    return total
end

print(run(tonumber(io.read())))
