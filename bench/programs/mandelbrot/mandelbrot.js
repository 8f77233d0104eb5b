function stays(cx, cy) {
    let x = 0.0;
    let y = 0.0;
    for (let step = 0; step < 50; step++) {
        const xx = x * x;
        const yy = y * y;
        if (xx + yy > 4.0) return false;
        y = 2.0 * x * y + cy;
        x = xx - yy + cx;
    }
    return true;
}

function run(n) {
    let inside = 0;
    for (let row = 0; row < n; row++) {
        const cy = 2.0 * row / n - 1.0;
        for (let column = 0; column < n; column++) {
            if (stays(2.0 * column / n - 1.5, cy)) inside++;
        }
    }
    return inside;
}

console.log(run(Number(require("fs").readFileSync(0))));
