function run(n) {
    const seen = new Map();
    let seed = 42;
    for (let i = 0; i < n; i++) {
        seed = seed * 16807 % 2147483647;
        const key = seed % (2 * n) * 1001;
        seen.set(key, (seen.get(key) ?? 0) + 1);
    }
    let total = 0;
    for (let i = 0; i < 2 * n; i++) {
        const times = seen.get(i * 1001);
        if (times !== undefined) total += times * times;
    }
    return total + seen.size;
}

console.log(run(Number(require("fs").readFileSync(0))));
