function run(n) {
    const names = [];
    for (let i = 0; i < n; i++) names.push(`user${i}`);
    const visits = new Map();
    for (let round = 1; round <= 3; round++) {
        for (const name of names) visits.set(name, (visits.get(name) ?? 0) + round);
    }
    let total = 0;
    for (let i = 0; i <= n + Math.floor(n / 2); i++) {
        const name = `user${i}`;
        if (visits.has(name)) total += visits.get(name);
    }
    for (const name of names) {
        if (visits.get(name) !== 6) total++;
    }
    return total + visits.size;
}

console.log(run(Number(require("fs").readFileSync(0))));
