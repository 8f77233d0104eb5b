function compare(a, b) {
    return a.top * b.bottom - b.top * a.bottom;
}

function run(n) {
    const fractions = [];
    let seed = 42;
    for (let i = 1; i <= n; i++) {
        seed = seed * 16807 % 2147483647;
        fractions.push({top: seed % 1000, bottom: i % 97 + 1});
    }
    fractions.sort(compare);
    let hash = 0;
    for (const fraction of fractions) {
        hash = (hash * 31 + Math.floor(1000 * fraction.top / fraction.bottom)) % 1000003;
    }
    return hash;
}

console.log(run(Number(require("fs").readFileSync(0))));
