local function makeCounter(step)
    local count = 0
    return function()
        count = count + step
        return count
    end
end

local function twice(f, x)
    return f(f(x))
end

local function run(n)
    local counters = {}
    for step = 1, 8 do counters[step] = makeCounter(step) end
    local total = 0
    for i = 0, n - 1 do
        local count = counters[i % 8 + 1]()
        local shift = function(x) return x + i end
        total = (total + twice(shift, count)) % 1000003
    end
    return total
end

print(run(tonumber(io.read())))
