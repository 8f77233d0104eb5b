local function solve(row, size, columns, rising, falling)
    if row > size then return 1 end
    local found = 0
    for c = 1, size do
        local up = row + c
        local down = row - c + size
        if not (columns[c] or rising[up] or falling[down]) then
            columns[c] = true
            rising[up] = true
            falling[down] = true
            found = found + solve(row + 1, size, columns, rising, falling)
            columns[c] = false
            rising[up] = false
            falling[down] = false
        end
    end
    return found
end

local function flags(count)
    local list = {}
    for i = 1, count do list[i] = false end
    return list
end

local function queens(size)
    return solve(1, size, flags(size), flags(2 * size), flags(2 * size))
end

print(queens(tonumber(io.read())))
