local function run(n)
    local x = 0.5
    local total = 0.0
    for i = 1, n do
        x = x * 0.999 + 1.0 / i
        if x > 1.5 then x = x - 1.25 end
        total = total + x * x
    end
    return total
end

print(math.floor(run(tonumber(io.read())) * 1000))
