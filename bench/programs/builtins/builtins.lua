local min, max, abs, floor, sqrt = math.min, math.max, math.abs, math.floor, math.sqrt

local function run(n)
    local total = 0
    for i = 1, n do
        local bounded = min(max(i % 1000, 10), 500)
        total = total + bounded + abs(i % 17 - 8) + floor(sqrt(i))
    end
    return total
end

print(run(tonumber(io.read())))
