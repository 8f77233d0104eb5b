local function build(n)
    local pieces = {}
    for i = 1, n do
        pieces[#pieces + 1] = tostring(i)
        if i % 10 == 0 then
            pieces[#pieces + 1] = "\n"
        else
            pieces[#pieces + 1] = ", "
        end
    end
    return table.concat(pieces)
end

local text = build(tonumber(io.read()))
local lines = 1
for _ in text:gmatch("\n") do lines = lines + 1 end
print(#text + lines)
