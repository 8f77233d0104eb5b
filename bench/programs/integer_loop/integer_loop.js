function run(n) {
    let hash = 0;
    for (let i = 1; i <= n; i++) {
        if (i % 3 === 0) {
            hash = (hash * 31 + i) % 65521;
        } else {
            hash += i % 7;
        }
    }
    return hash;
}

console.log(run(Number(require("fs").readFileSync(0))));
