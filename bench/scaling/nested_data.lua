local function run(n)
    local chain
    for i = 1, n do chain = {number = i, next = chain} end
    assert(chain.number == n)
end

local n = tonumber(io.read())
for _ = 1, tonumber(io.read()) do run(n) end
