local sqrt = math.sqrt

local function newBody(i)
    return {x = 2.0 * i, y = 0.5 * i, z = 0.25 * i, vx = 0.0, vy = 0.0, vz = 0.0, mass = 0.02 * i}
end

local function solarSystem()
    local sun = newBody(0)
    sun.mass = 40.0
    local bodies = {sun}
    for i = 1, 4 do
        local planet = newBody(i)
        planet.vz = sqrt(sun.mass / planet.x)
        bodies[#bodies + 1] = planet
    end
    return bodies
end

local function advance(bodies, dt)
    local count = #bodies
    for i = 1, count do
        local a = bodies[i]
        for j = i + 1, count do
            local b = bodies[j]
            local dx = a.x - b.x
            local dy = a.y - b.y
            local dz = a.z - b.z
            local square = dx * dx + dy * dy + dz * dz
            local pull = dt / (square * sqrt(square))
            local pullOfB = b.mass * pull
            a.vx = a.vx - dx * pullOfB
            a.vy = a.vy - dy * pullOfB
            a.vz = a.vz - dz * pullOfB
            local pullOfA = a.mass * pull
            b.vx = b.vx + dx * pullOfA
            b.vy = b.vy + dy * pullOfA
            b.vz = b.vz + dz * pullOfA
        end
    end
    for _, body in ipairs(bodies) do
        body.x = body.x + dt * body.vx
        body.y = body.y + dt * body.vy
        body.z = body.z + dt * body.vz
    end
end

local function energy(bodies)
    local total = 0.0
    local count = #bodies
    for i = 1, count do
        local a = bodies[i]
        total = total + 0.5 * a.mass * (a.vx * a.vx + a.vy * a.vy + a.vz * a.vz)
        for j = i + 1, count do
            local b = bodies[j]
            local dx = a.x - b.x
            local dy = a.y - b.y
            local dz = a.z - b.z
            total = total - a.mass * b.mass / sqrt(dx * dx + dy * dy + dz * dz)
        end
    end
    return total
end

local steps = tonumber(io.read())
local bodies = solarSystem()
for _ = 1, steps do advance(bodies, 0.001) end
print(string.format("%.0f", math.floor(energy(bodies) * 1000000000)))
