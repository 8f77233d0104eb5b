local function run(n)
    local numbers, words = {}, {}
    local seed = 42
    for i = 1, n do
        seed = seed * 16807 % 2147483647
        numbers[i] = seed
        if i % 4 == 0 then words[#words + 1] = "w" .. seed % 100000 end
    end
    table.sort(numbers)
    table.sort(words)
    local hash = 0
    for i = 1, n do hash = (hash * 31 + numbers[i]) % 1000003 end
    for _, word in ipairs(words) do hash = (hash * 31 + word:byte(2) + #word) % 1000003 end
    return hash
end

print(run(tonumber(io.read())))
