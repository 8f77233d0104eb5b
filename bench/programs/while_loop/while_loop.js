function gcd(a, b) {
    while (b !== 0) {
        const rest = a % b;
        a = b;
        b = rest;
    }
    return a;
}

function run(n) {
    let coprime = 0;
    for (let a = 1; a <= n; a++) {
        for (let b = 1; b <= a; b++) {
            if (gcd(a, b) === 1) coprime++;
        }
    }
    return coprime;
}

console.log(run(Number(require("fs").readFileSync(0))));
