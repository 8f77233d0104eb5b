local function run(n)
    local numbers = {}
    for i = 1, n do numbers[#numbers + 1] = i end
    for _ = 1, n do table.remove(numbers) end
end

local n = tonumber(io.read())
for _ = 1, tonumber(io.read()) do run(n) end
