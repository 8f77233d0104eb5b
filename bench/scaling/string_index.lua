local function run(n)
    local text = ("a"):rep(n - 1) .. "e"
    local found = 0
    for i = 1, #text do
        if text:sub(i, i) == "e" then found = found + 1 end
    end
    assert(found == 1)
end

local n = tonumber(io.read())
for _ = 1, tonumber(io.read()) do run(n) end
