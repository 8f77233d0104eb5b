function scan(text) {
    let words = 0;
    let numbers = 0;
    let hash = 0;
    let inWord = false;
    for (let i = 0; i < text.length; i++) {
        const c = text[i];
        if (c === " " || c === ",") {
            inWord = false;
        } else {
            if (!inWord) words++;
            if (c >= "0" && c <= "9") numbers++;
            inWord = true;
        }
        hash = (hash * 31 + text.charCodeAt(i)) % 65521;
    }
    return words + numbers + hash;
}

const size = Number(require("fs").readFileSync(0));
const text = "the quick brown fox, 4 years old, jumps over 12 lazy dogs ".repeat(size);
console.log(scan(text));
