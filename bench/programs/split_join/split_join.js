function run(n) {
    const line = "2024-05-17,order 4711,3 apples,delivered,,12 Mill Lane";
    let total = 0;
    for (let i = 0; i < n; i++) {
        const fields = line.split(",");
        const words = fields[5].split(/\s+/);
        words.push(fields[0]);
        const text = words.join(" ") + fields.join(";");
        total += fields.length + words.length + text.length;
    }
    return total;
}

console.log(run(Number(require("fs").readFileSync(0))));
