function makeMatrix(n, seed) {
    return Array.from({length: n}, (_, i) =>
        Array.from({length: n}, (_, j) => (i * seed + j) % 10 / 4));
}

function multiply(a, b, n) {
    const rows = [];
    for (const left of a) {
        const row = [];
        for (let j = 0; j < n; j++) {
            let total = 0.0;
            for (let k = 0; k < n; k++) total += left[k] * b[k][j];
            row.push(total);
        }
        rows.push(row);
    }
    return rows;
}

function run(n) {
    const product = multiply(makeMatrix(n, 3), makeMatrix(n, 7), n);
    let trace = 0.0;
    for (let i = 0; i < n; i++) trace += product[i][i];
    return trace;
}

console.log(Math.floor(run(Number(require("fs").readFileSync(0))) * 16));
