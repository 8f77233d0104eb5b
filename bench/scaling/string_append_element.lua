local function run(n)
    local page = {text = {}, lines = {{}}}
    for _ = 1, n do
        table.insert(page.text, "piece")
        table.insert(page.lines[1], "piece")
    end
    assert(table.concat(page.text) == table.concat(page.lines[1]))
end

local n = tonumber(io.read())
for _ = 1, tonumber(io.read()) do run(n) end
