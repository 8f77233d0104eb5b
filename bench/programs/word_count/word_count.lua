local function makeText(n)
    local syllables = {"ka", "lo", "mi", "ne", "pu", "ra", "si", "to"}
    local seed = 42
    local words = {}
    for i = 1, n do
        seed = seed * 16807 % 2147483647
        local word = syllables[seed % 8 + 1] .. syllables[seed % 7 + 1]
        if seed % 3 == 0 then word = word .. syllables[seed % 5 + 1] end
        words[i] = word
    end
    return table.concat(words, " ")
end

local function run(n)
    local counts = {}
    for word in makeText(n):gmatch("%S+") do
        counts[word] = (counts[word] or 0) + 1
    end
    local order = {}
    for word in pairs(counts) do order[#order + 1] = word end
    table.sort(order, function(a, b)
        if counts[a] ~= counts[b] then return counts[a] > counts[b] end
        return a < b
    end)
    local hash = 0
    for _, word in ipairs(order) do
        hash = (hash * 31 + counts[word] * #word + word:byte()) % 1000003
    end
    return hash
end

print(run(tonumber(io.read())))
