function run(n) {
    const list = Array.from({length: 200}, (_, i) => i);
    const stock = new Map();
    for (let i = 1; i <= 50; i++) stock.set(`item${i}`, i);
    const text = "abcde".repeat(40);
    let total = 0;
    for (let round = 0; round < n; round++) {
        for (const x of list) total += x % 3;
        for (const name of stock.keys()) total += stock.get(name);
        for (const c of text) {
            if (c === "e") total++;
        }
        for (let i = 0; i < 200; i++) total += i % 5;
    }
    return total;
}

console.log(run(Number(require("fs").readFileSync(0))));
