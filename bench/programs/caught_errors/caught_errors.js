class Refused extends Error {
    constructor(code, amount) {
        super();
        this.code = code;
        this.amount = amount;
    }
}

function check(order) {
    if (order.amount > 90) throw new Refused(7, order.amount);
    return order.customer.discount + order.amount;
}

function run(n) {
    const customer = {discount: 2};
    let total = 0;
    for (let i = 1; i <= n; i++) {
        const order = {amount: i % 100, customer};
        if (i % 10 === 0) order.customer = null;
        try {
            total += check(order);
        } catch (problem) {
            if (problem instanceof Refused) total += problem.code;
            else total += 1;
        }
    }
    return total;
}

console.log(run(Number(require("fs").readFileSync(0))));
