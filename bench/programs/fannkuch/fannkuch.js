function countFlips(permutation) {
    const order = permutation.slice();
    let flips = 0;
    let first = order[0];
    while (first !== 0) {
        let low = 0;
        let high = first;
        while (low < high) {
            const kept = order[low];
            order[low] = order[high];
            order[high] = kept;
            low++;
            high--;
        }
        flips++;
        first = order[0];
    }
    return flips;
}

// Makes the next permutation in place; false after the last.
function advance(permutation, turns) {
    for (let i = 1; i < permutation.length; i++) {
        const first = permutation[0];
        for (let j = 1; j <= i; j++) permutation[j - 1] = permutation[j];
        permutation[i] = first;
        turns[i]++;
        if (turns[i] <= i) return true;
        turns[i] = 0;
    }
    return false;
}

function run(n) {
    const permutation = Array.from({length: n}, (_, i) => i);
    const turns = new Array(n).fill(0);
    let most = 0;
    let total = 0;
    do {
        const flips = countFlips(permutation);
        if (flips > most) most = flips;
        total += flips;
    } while (advance(permutation, turns));
    return total * 100 + most;
}

console.log(run(Number(require("fs").readFileSync(0))));
