function countPrimes(n) {
    const isPrime = new Array(n + 1).fill(true);
    let count = 0;
    for (let i = 2; i <= n; i++) {
        if (isPrime[i]) {
            count++;
            for (let multiple = i * i; multiple <= n; multiple += i) {
                isPrime[multiple] = false;
            }
        }
    }
    return count;
}

console.log(countPrimes(Number(require("fs").readFileSync(0))));
