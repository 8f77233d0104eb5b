local function split(text, separator)
    local fields = {}
    local start = 1
    while true do
        local from, to = text:find(separator, start, true)
        if not from then break end
        fields[#fields + 1] = text:sub(start, from - 1)
        start = to + 1
    end
    fields[#fields + 1] = text:sub(start)
    return fields
end

local function splitWords(text)
    local words = {}
    for word in text:gmatch("%S+") do words[#words + 1] = word end
    return words
end

local function run(n)
    local line = "2024-05-17,order 4711,3 apples,delivered,,12 Mill Lane"
    local total = 0
    for _ = 1, n do
        local fields = split(line, ",")
        local words = splitWords(fields[6])
        words[#words + 1] = fields[1]
        local text = table.concat(words, " ") .. table.concat(fields, ";")
        total = total + #fields + #words + #text
    end
    return total
end

print(run(tonumber(io.read())))
