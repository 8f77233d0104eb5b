local function run(n)
    local pieces = {}
    local older = ""
    for i = 1, n do
        pieces[#pieces + 1] = "piece"
        if i % 100 == 0 then older = pieces[i] end
    end
    local text = table.concat(pieces)
    assert(#text == 5 * n and #older <= #text)
end

local n = tonumber(io.read())
for _ = 1, tonumber(io.read()) do run(n) end
