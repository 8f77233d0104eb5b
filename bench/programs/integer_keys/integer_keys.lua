local function run(n)
    local seen = {}
    local count = 0
    local seed = 42
    for _ = 1, n do
        seed = seed * 16807 % 2147483647
        local key = seed % (2 * n) * 1001
        local before = seen[key]
        if not before then count = count + 1 end
        seen[key] = (before or 0) + 1
    end
    local total = 0
    for i = 0, 2 * n - 1 do
        local times = seen[i * 1001]
        if times then total = total + times * times end
    end
    return total + count
end

print(run(tonumber(io.read())))
