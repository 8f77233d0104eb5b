function run(n) {
    let total = 0;
    for (let i = 1; i <= n; i++) {
        const bounded = Math.min(Math.max(i % 1000, 10), 500);
        total += bounded + Math.abs(i % 17 - 8) + Math.floor(Math.sqrt(i));
    }
    return total;
}

console.log(run(Number(require("fs").readFileSync(0))));
