local function check(order)
    if order.amount > 90 then error({code = 7, amount = order.amount}) end
    return order.customer.discount + order.amount
end

local function run(n)
    local customer = {discount = 2}
    local total = 0
    for i = 1, n do
        local order = {amount = i % 100, customer = customer}
        if i % 10 == 0 then order.customer = nil end
        local ok, result = pcall(check, order)
        if ok then
            total = total + result
        elseif type(result) == "table" then
            total = total + result.code
        else
            total = total + 1
        end
    end
    return total
end

print(run(tonumber(io.read())))
