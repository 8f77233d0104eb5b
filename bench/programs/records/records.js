function openAccounts(count) {
    const accounts = [];
    for (let i = 0; i < count; i++) {
        accounts.push({id: i, balance: 1000, paid: 0, received: 0, refused: 0});
    }
    return accounts;
}

function transfer(from, to, amount) {
    if (from.balance < amount) {
        from.refused++;
    } else {
        from.balance -= amount;
        to.balance += amount;
        from.paid++;
        to.received++;
    }
}

function run(n) {
    const accounts = openAccounts(100);
    for (let i = 1; i <= n; i++) {
        transfer(accounts[i * 7 % 100], accounts[i * i % 97], i % 900);
    }
    let hash = 0;
    for (const account of accounts) {
        hash = (hash * 31 + account.balance + account.id) % 1000003;
        hash = (hash * 31 + account.paid + account.received * 3 + account.refused * 5) % 1000003;
    }
    return hash;
}

console.log(run(Number(require("fs").readFileSync(0))));
