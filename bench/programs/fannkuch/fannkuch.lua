local function countFlips(permutation)
    local order = {}
    for i = 1, #permutation do order[i] = permutation[i] end
    local flips = 0
    local first = order[1]
    while first ~= 1 do
        local low, high = 1, first
        while low < high do
            order[low], order[high] = order[high], order[low]
            low = low + 1
            high = high - 1
        end
        flips = flips + 1
        first = order[1]
    end
    return flips
end

-- Makes the next permutation in place; false after the last.
local function advance(permutation, turns)
    for i = 2, #permutation do
        local first = permutation[1]
        for j = 2, i do permutation[j - 1] = permutation[j] end
        permutation[i] = first
        turns[i] = turns[i] + 1
        if turns[i] < i then return true end
        turns[i] = 0
    end
    return false
end

local function run(n)
    local permutation, turns = {}, {}
    for i = 1, n do
        permutation[i] = i
        turns[i] = 0
    end
    local most, total = 0, 0
    repeat
        local flips = countFlips(permutation)
        if flips > most then most = flips end
        total = total + flips
    until not advance(permutation, turns)
    return total * 100 + most
end

print(run(tonumber(io.read())))
