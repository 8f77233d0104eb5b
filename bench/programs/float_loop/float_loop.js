function run(n) {
    let x = 0.5;
    let total = 0.0;
    for (let i = 1; i <= n; i++) {
        x = x * 0.999 + 1.0 / i;
        if (x > 1.5) x -= 1.25;
        total += x * x;
    }
    return total;
}

console.log(Math.floor(run(Number(require("fs").readFileSync(0))) * 1000));
