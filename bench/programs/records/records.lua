local function openAccounts(count)
    local accounts = {}
    for i = 0, count - 1 do
        accounts[i] = {id = i, balance = 1000, paid = 0, received = 0, refused = 0}
    end
    return accounts
end

local function transfer(from, to, amount)
    if from.balance < amount then
        from.refused = from.refused + 1
    else
        from.balance = from.balance - amount
        to.balance = to.balance + amount
        from.paid = from.paid + 1
        to.received = to.received + 1
    end
end

local function run(n)
    local accounts = openAccounts(100)
    for i = 1, n do
        transfer(accounts[i * 7 % 100], accounts[i * i % 97], i % 900)
    end
    local hash = 0
    for i = 0, 99 do
        local account = accounts[i]
        hash = (hash * 31 + account.balance + account.id) % 1000003
        hash = (hash * 31 + account.paid + account.received * 3 + account.refused * 5) % 1000003
    end
    return hash
end

print(run(tonumber(io.read())))
