local function makeTree(depth)
    if depth == 0 then return {left = nil, right = nil} end
    return {left = makeTree(depth - 1), right = makeTree(depth - 1)}
end

local function countNodes(tree)
    if tree.left == nil then return 1 end
    return 1 + countNodes(tree.left) + countNodes(tree.right)
end

local function run(depth)
    local lasting = makeTree(depth)
    local nodes = 0
    for size = 1, depth - 1 do
        for _ = 1, 2 ^ (depth - 1 - size) do nodes = nodes + countNodes(makeTree(size)) end
    end
    return nodes + countNodes(lasting)
end

print(run(tonumber(io.read())))
