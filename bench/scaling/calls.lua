local max = math.max

local function next(i) return i + 1 end

local function run(n)
    local i = 0
    while i < n do i = max(next(i), i) end
    assert(i == n)
end

local n = tonumber(io.read())
for _ = 1, tonumber(io.read()) do run(n) end
