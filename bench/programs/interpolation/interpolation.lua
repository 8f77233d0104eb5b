local function run(n)
    local total = 0
    for i = 1, n do
        local line = "order " .. i .. ": " .. i % 7 .. " pieces at " .. i + 0.5 ..
            ", " .. i * 3 .. " in all"
        total = total + #line
    end
    return total
end

print(run(tonumber(io.read())))
