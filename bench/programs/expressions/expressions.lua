local function parse(text)
    local at = 1
    local plus, times, open, zero, nine = ("+*(09"):byte(1, 5)
    local parseSum

    local function parseFactor()
        if text:byte(at) == open then
            at = at + 1
            local inner = parseSum()
            at = at + 1
            return inner
        end
        local start = at
        while at <= #text and text:byte(at) >= zero and text:byte(at) <= nine do at = at + 1 end
        return {kind = "number", value = tonumber(text:sub(start, at - 1))}
    end

    local function parseProduct()
        local left = parseFactor()
        while text:byte(at) == times do
            at = at + 1
            left = {kind = "product", left = left, right = parseFactor()}
        end
        return left
    end

    function parseSum()
        local left = parseProduct()
        while text:byte(at) == plus do
            at = at + 1
            left = {kind = "sum", left = left, right = parseProduct()}
        end
        return left
    end

    return parseSum()
end

local function evaluate(tree)
    if tree.kind == "number" then return tree.value end
    local left = evaluate(tree.left)
    local right = evaluate(tree.right)
    if tree.kind == "sum" then return (left + right) % 10007 end
    return left * right % 10007
end

local function run(n)
    local total = 0
    for i = 1, n do
        local tree = parse("(" .. i .. "+12)*3+(7*(2+" .. i % 11 .. ")+4*5)*(1+2*3)+100")
        for _ = 1, 5 do total = (total + evaluate(tree)) % 1000003 end
    end
    return total
end

print(run(tonumber(io.read())))
