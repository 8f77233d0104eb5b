local function isLess(a, b)
    return a.top * b.bottom < b.top * a.bottom
end

local function run(n)
    local fractions = {}
    local seed = 42
    for i = 1, n do
        seed = seed * 16807 % 2147483647
        fractions[i] = {top = seed % 1000, bottom = i % 97 + 1}
    end
    table.sort(fractions, isLess)
    local hash = 0
    for _, fraction in ipairs(fractions) do
        hash = (hash * 31 + math.floor(1000 * fraction.top / fraction.bottom)) % 1000003
    end
    return hash
end

print(run(tonumber(io.read())))
