function run(n) {
    const waiting = [1];
    let visited = 0;
    let hash = 0;
    while (waiting.length > 0) {
        const x = waiting.pop();
        visited++;
        hash = (hash * 31 + x) % 1000003;
        if (2 * x <= n) {
            waiting.push(2 * x);
            if (2 * x + 1 <= n) waiting.push(2 * x + 1);
        }
    }
    return visited + hash;
}

console.log(run(Number(require("fs").readFileSync(0))));
