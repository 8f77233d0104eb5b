function makeCounter(step) {
    let count = 0;
    return () => {
        count += step;
        return count;
    };
}

function twice(f, x) {
    return f(f(x));
}

function run(n) {
    const counters = [];
    for (let step = 1; step <= 8; step++) counters.push(makeCounter(step));
    let total = 0;
    for (let i = 0; i < n; i++) {
        const count = counters[i % 8]();
        const shift = (x) => x + i;
        total = (total + twice(shift, count)) % 1000003;
    }
    return total;
}

console.log(run(Number(require("fs").readFileSync(0))));
