function makeText(n) {
    const syllables = ["ka", "lo", "mi", "ne", "pu", "ra", "si", "to"];
    let seed = 42;
    const words = [];
    for (let i = 0; i < n; i++) {
        seed = seed * 16807 % 2147483647;
        let word = syllables[seed % 8] + syllables[seed % 7];
        if (seed % 3 === 0) word += syllables[seed % 5];
        words.push(word);
    }
    return words.join(" ");
}

function run(n) {
    const counts = new Map();
    for (const word of makeText(n).split(" ")) counts.set(word, (counts.get(word) ?? 0) + 1);
    const order = [...counts.keys()].sort((a, b) => {
        if (counts.get(a) !== counts.get(b)) return counts.get(b) - counts.get(a);
        return a < b ? -1 : 1;
    });
    let hash = 0;
    for (const word of order) {
        hash = (hash * 31 + counts.get(word) * word.length + word.charCodeAt(0)) % 1000003;
    }
    return hash;
}

console.log(run(Number(require("fs").readFileSync(0))));
