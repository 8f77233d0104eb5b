local function depth(n)
    if n == 0 then return 0 end
    return 1 + depth(n - 1)
end

local function run(n)
    for _ = 1, math.floor(n / 1000) do assert(depth(1000) == 1000) end
end

local n = tonumber(io.read())
for _ = 1, tonumber(io.read()) do run(n) end
