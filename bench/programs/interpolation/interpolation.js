function run(n) {
    let total = 0;
    for (let i = 1; i <= n; i++) {
        const line = `order ${i}: ${i % 7} pieces at ${i + 0.5}, ${i * 3} in all`;
        total += line.length;
    }
    return total;
}

console.log(run(Number(require("fs").readFileSync(0))));
