local function gcd(a, b)
    while b ~= 0 do
        a, b = b, a % b
    end
    return a
end

local function run(n)
    local coprime = 0
    for a = 1, n do
        for b = 1, a do
            if gcd(a, b) == 1 then coprime = coprime + 1 end
        end
    end
    return coprime
end

print(run(tonumber(io.read())))
