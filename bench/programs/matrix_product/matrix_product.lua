local function makeMatrix(n, seed)
    local rows = {}
    for i = 0, n - 1 do
        local row = {}
        for j = 0, n - 1 do row[j + 1] = (i * seed + j) % 10 / 4 end
        rows[i + 1] = row
    end
    return rows
end

local function multiply(a, b, n)
    local rows = {}
    for i = 1, n do
        local left = a[i]
        local row = {}
        for j = 1, n do
            local total = 0.0
            for k = 1, n do total = total + left[k] * b[k][j] end
            row[j] = total
        end
        rows[i] = row
    end
    return rows
end

local function run(n)
    local product = multiply(makeMatrix(n, 3), makeMatrix(n, 7), n)
    local trace = 0.0
    for i = 1, n do trace = trace + product[i][i] end
    return trace
end

print(math.floor(run(tonumber(io.read())) * 16))
