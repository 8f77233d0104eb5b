local function run(n)
    local numbers = {}
    for i = 1, n do numbers[i * 7] = i end
    for i = 1, n do assert(numbers[i * 7] == i) end
end

local n = tonumber(io.read())
for _ = 1, tonumber(io.read()) do run(n) end
