local function run(n)
    local hash = 0
    for i = 1, n do
        if i % 3 == 0 then
            hash = (hash * 31 + i) % 65521
        else
            hash = hash + i % 7
        end
    end
    return hash
end

print(run(tonumber(io.read())))
