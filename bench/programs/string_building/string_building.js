function build(n) {
    let text = "";
    for (let i = 1; i <= n; i++) {
        text += String(i);
        if (i % 10 === 0) text += "\n";
        else text += ", ";
    }
    return text;
}

const text = build(Number(require("fs").readFileSync(0)));
console.log(text.length + text.split("\n").length);
