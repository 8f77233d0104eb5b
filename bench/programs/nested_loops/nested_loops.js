function run(n) {
    const sides = [];
    for (let i = 1; i <= n; i++) sides.push(i);
    let found = 0;
    for (const a of sides) {
        for (const b of sides) {
            const square = a * a + b * b;
            for (const c of sides) {
                if (c * c === square) found++;
            }
        }
    }
    return found;
}

console.log(run(Number(require("fs").readFileSync(0))));
