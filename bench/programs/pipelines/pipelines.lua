local function range(n)
    local list = {}
    for i = 1, n do list[i] = i - 1 end
    return list
end

local function filter(isWanted, list)
    local found = {}
    for _, x in ipairs(list) do
        if isWanted(x) then found[#found + 1] = x end
    end
    return found
end

local function map(f, list)
    local results = {}
    for i, x in ipairs(list) do results[i] = f(x) end
    return results
end

local function reduce(f, list, result)
    for _, x in ipairs(list) do result = f(result, x) end
    return result
end

local function run(n)
    local total = 0
    for round = 1, n do
        local odd = filter(function(x) return x % 2 == 1 end, range(1000))
        local squares = map(function(x) return x * x + round end, odd)
        total = (total + reduce(function(sum, x) return sum + x % 7 end, squares, 0)) % 1000003
    end
    return total
end

print(run(tonumber(io.read())))
