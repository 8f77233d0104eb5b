local floor = math.floor

local function run(n)
    local names = {}
    for i = 0, n - 1 do names[#names + 1] = "user" .. i end
    local visits = {}
    local count = 0
    for round = 1, 3 do
        for _, name in ipairs(names) do
            local before = visits[name]
            if not before then count = count + 1 end
            visits[name] = (before or 0) + round
        end
    end
    local total = 0
    for i = 0, n + floor(n / 2) do
        local name = "user" .. i
        if visits[name] then total = total + visits[name] end
    end
    for _, name in ipairs(names) do
        if visits[name] ~= 6 then total = total + 1 end
    end
    return total + count
end

print(run(tonumber(io.read())))
