local function run(n)
    local waiting = {1}
    local visited, hash = 0, 0
    while #waiting > 0 do
        local x = table.remove(waiting)
        visited = visited + 1
        hash = (hash * 31 + x) % 1000003
        if 2 * x <= n then
            waiting[#waiting + 1] = 2 * x
            if 2 * x + 1 <= n then waiting[#waiting + 1] = 2 * x + 1 end
        end
    end
    return visited + hash
end

print(run(tonumber(io.read())))
