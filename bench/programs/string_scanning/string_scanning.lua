local function scan(text)
    local words, numbers, hash = 0, 0, 0
    local inWord = false
    local space, comma, zero, nine = (" ,09"):byte(1, 4)
    for i = 1, #text do
        local c = text:byte(i)
        if c == space or c == comma then
            inWord = false
        else
            if not inWord then words = words + 1 end
            if c >= zero and c <= nine then numbers = numbers + 1 end
            inWord = true
        end
        hash = (hash * 31 + c) % 65521
    end
    return words + numbers + hash
end

local text = ("the quick brown fox, 4 years old, jumps over 12 lazy dogs "):rep(tonumber(io.read()))
print(scan(text))
