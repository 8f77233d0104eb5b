local function run(n)
    local numbers = {}
    for i = 1, n do numbers[i * 7] = i end
    for i = n, 1, -1 do
        assert(numbers[i * 7])
        numbers[i * 7] = nil
    end
end

local n = tonumber(io.read())
for _ = 1, tonumber(io.read()) do run(n) end
