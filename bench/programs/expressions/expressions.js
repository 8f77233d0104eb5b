function parse(text) {
    let at = 0;

    function parseFactor() {
        if (text[at] === "(") {
            at++;
            const inner = parseSum();
            at++;
            return inner;
        }
        const start = at;
        while (at < text.length && text[at] >= "0" && text[at] <= "9") at++;
        return {kind: "number", value: Number(text.slice(start, at))};
    }

    function parseProduct() {
        let left = parseFactor();
        while (text[at] === "*") {
            at++;
            left = {kind: "product", left, right: parseFactor()};
        }
        return left;
    }

    function parseSum() {
        let left = parseProduct();
        while (text[at] === "+") {
            at++;
            left = {kind: "sum", left, right: parseProduct()};
        }
        return left;
    }

    return parseSum();
}

function evaluate(tree) {
    if (tree.kind === "number") return tree.value;
    const left = evaluate(tree.left);
    const right = evaluate(tree.right);
    if (tree.kind === "sum") return (left + right) % 10007;
    return left * right % 10007;
}

function run(n) {
    let total = 0;
    for (let i = 1; i <= n; i++) {
        const tree = parse(`(${i}+12)*3+(7*(2+${i % 11})+4*5)*(1+2*3)+100`);
        for (let round = 0; round < 5; round++) total = (total + evaluate(tree)) % 1000003;
    }
    return total;
}

console.log(run(Number(require("fs").readFileSync(0))));
