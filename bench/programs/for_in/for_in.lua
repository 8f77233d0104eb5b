local function run(n)
    local list = {}
    for i = 0, 199 do list[i + 1] = i end
    local stock = {}
    for i = 1, 50 do stock["item" .. i] = i end
    local text = ("abcde"):rep(40)
    local total = 0
    for _ = 1, n do
        for _, x in ipairs(list) do total = total + x % 3 end
        for _, count in pairs(stock) do total = total + count end
        for c in text:gmatch(".") do
            if c == "e" then total = total + 1 end
        end
        for i = 0, 199 do total = total + i % 5 end
    end
    return total
end

print(run(tonumber(io.read())))
