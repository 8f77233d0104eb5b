local function run(numbers)
    local total = 0
    for key in pairs(numbers) do total = total + numbers[key] end
    local copied, items = {}, {}
    for key, value in pairs(numbers) do copied[key] = value end
    for key, value in pairs(copied) do items[#items + 1] = {key, value} end
    for _, pair in ipairs(items) do total = total - pair[2] end
    assert(total == 0)
end

local n = tonumber(io.read())
local numbers = {}
for i = 1, n do numbers[i * 7] = i end
for _ = 1, tonumber(io.read()) do run(numbers) end
