class Turtle {
    constructor(name) {
        this.name = name;
        this.x = 0;
        this.y = 0;
        this.dx = 1;
        this.dy = 0;
    }

    forward(steps) {
        this.x += this.dx * steps;
        this.y += this.dy * steps;
    }

    left() {
        [this.dx, this.dy] = [-this.dy, this.dx];
    }

    distance() {
        return Math.abs(this.x) + Math.abs(this.y);
    }
}

function run(n) {
    const turtles = [];
    for (let i = 0; i < 10; i++) turtles.push(new Turtle(`turtle ${i}`));
    let total = 0;
    for (let i = 1; i <= n; i++) {
        const turtle = turtles[i % 10];
        turtle.forward(i % 5);
        if (i % 3 === 0) turtle.left();
        total = (total + turtle.distance()) % 1000003;
    }
    return total;
}

console.log(run(Number(require("fs").readFileSync(0))));
