local function run(n)
    local numbers = {}
    for i = 1, n do numbers[i] = 0 end
    for i = 2, n do numbers[i] = numbers[i - 1] + 1 end
    assert(numbers[n] == n - 1)
end

local n = tonumber(io.read())
for _ = 1, tonumber(io.read()) do run(n) end
