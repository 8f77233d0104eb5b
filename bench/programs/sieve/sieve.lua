local function countPrimes(n)
    local isPrime = {}
    for i = 1, n do isPrime[i] = true end
    local count = 0
    for i = 2, n do
        if isPrime[i] then
            count = count + 1
            for multiple = i * i, n, i do
                isPrime[multiple] = false
            end
        end
    end
    return count
end

print(countPrimes(tonumber(io.read())))
