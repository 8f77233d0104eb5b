local function run(n)
    local sides = {}
    for i = 1, n do sides[i] = i end
    local found = 0
    for _, a in ipairs(sides) do
        for _, b in ipairs(sides) do
            local square = a * a + b * b
            for _, c in ipairs(sides) do
                if c * c == square then found = found + 1 end
            end
        end
    end
    return found
end

print(run(tonumber(io.read())))
