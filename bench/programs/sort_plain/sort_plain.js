function run(n) {
    const numbers = new Float64Array(n);  // a plain array would sort numbers as texts
    const words = [];
    let seed = 42;
    for (let i = 0; i < n; i++) {
        seed = seed * 16807 % 2147483647;
        numbers[i] = seed;
        if (i % 4 === 3) words.push(`w${seed % 100000}`);
    }
    numbers.sort();
    words.sort();
    let hash = 0;
    for (const number of numbers) hash = (hash * 31 + number) % 1000003;
    for (const word of words) hash = (hash * 31 + word.charCodeAt(1) + word.length) % 1000003;
    return hash;
}

console.log(run(Number(require("fs").readFileSync(0))));
