function element(i, j) {
    return 1.0 / ((i + j) * (i + j + 1) / 2 + i + 1);
}

function timesMatrix(v, n) {
    const result = [];
    for (let i = 0; i < n; i++) {
        let total = 0.0;
        for (let j = 0; j < n; j++) total += element(i, j) * v[j];
        result.push(total);
    }
    return result;
}

function timesTransposed(v, n) {
    const result = [];
    for (let i = 0; i < n; i++) {
        let total = 0.0;
        for (let j = 0; j < n; j++) total += element(j, i) * v[j];
        result.push(total);
    }
    return result;
}

function spectralNorm(n) {
    let u = new Array(n).fill(1.0);
    let v = null;
    for (let i = 0; i < 10; i++) {
        v = timesTransposed(timesMatrix(u, n), n);
        u = timesTransposed(timesMatrix(v, n), n);
    }
    let uv = 0.0;
    let vv = 0.0;
    for (let i = 0; i < n; i++) {
        uv += u[i] * v[i];
        vv += v[i] * v[i];
    }
    return Math.sqrt(uv / vv);
}

console.log(Math.floor(spectralNorm(Number(require("fs").readFileSync(0))) * 1000000000));
