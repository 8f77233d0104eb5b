function solve(row, size, columns, rising, falling) {
    if (row === size) return 1;
    let found = 0;
    for (let c = 0; c < size; c++) {
        const up = row + c;
        const down = row - c + size;
        if (!(columns[c] || rising[up] || falling[down])) {
            columns[c] = rising[up] = falling[down] = true;
            found += solve(row + 1, size, columns, rising, falling);
            columns[c] = rising[up] = falling[down] = false;
        }
    }
    return found;
}

function flags(count) {
    return new Array(count).fill(false);
}

function queens(size) {
    return solve(0, size, flags(size), flags(2 * size), flags(2 * size));
}

console.log(queens(Number(require("fs").readFileSync(0))));
