local function run(n)
    local text = (("a"):rep(99) .. "b"):rep(n)
    assert(not text:find(("a"):rep(100), 1, true))
    assert(#text:gsub("ab", "c") == 99 * n)
    local pieces = {}
    for piece in text:gmatch("[^b]*") do pieces[#pieces + 1] = piece end
    assert(#pieces == n + 1)
end

local n = tonumber(io.read())
for _ = 1, tonumber(io.read()) do run(n) end
