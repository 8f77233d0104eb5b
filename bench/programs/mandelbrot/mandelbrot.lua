local function stays(cx, cy)
    local x, y = 0.0, 0.0
    for _ = 1, 50 do
        local xx = x * x
        local yy = y * y
        if xx + yy > 4.0 then return false end
        y = 2.0 * x * y + cy
        x = xx - yy + cx
    end
    return true
end

local function run(n)
    local inside = 0
    for row = 0, n - 1 do
        local cy = 2.0 * row / n - 1.0
        for column = 0, n - 1 do
            if stays(2.0 * column / n - 1.5, cy) then inside = inside + 1 end
        end
    end
    return inside
end

print(run(tonumber(io.read())))
