local function element(i, j)
    return 1.0 / ((i + j) * (i + j + 1) / 2 + i + 1)
end

local function timesMatrix(v, n)
    local result = {}
    for i = 0, n - 1 do
        local total = 0.0
        for j = 0, n - 1 do total = total + element(i, j) * v[j + 1] end
        result[i + 1] = total
    end
    return result
end

local function timesTransposed(v, n)
    local result = {}
    for i = 0, n - 1 do
        local total = 0.0
        for j = 0, n - 1 do total = total + element(j, i) * v[j + 1] end
        result[i + 1] = total
    end
    return result
end

local function spectralNorm(n)
    local u = {}
    for i = 1, n do u[i] = 1.0 end
    local v
    for _ = 1, 10 do
        v = timesTransposed(timesMatrix(u, n), n)
        u = timesTransposed(timesMatrix(v, n), n)
    end
    local uv, vv = 0.0, 0.0
    for i = 1, n do
        uv = uv + u[i] * v[i]
        vv = vv + v[i] * v[i]
    end
    return math.sqrt(uv / vv)
end

print(math.floor(spectralNorm(tonumber(io.read())) * 1000000000))
