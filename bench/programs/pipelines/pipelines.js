function run(n) {
    const numbers = Array.from({length: 1000}, (_, i) => i);
    let total = 0;
    for (let round = 1; round <= n; round++) {
        const odd = numbers.filter((x) => x % 2 === 1);
        const squares = odd.map((x) => x * x + round);
        total = (total + squares.reduce((sum, x) => sum + x % 7, 0)) % 1000003;
    }
    return total;
}

console.log(run(Number(require("fs").readFileSync(0))));
