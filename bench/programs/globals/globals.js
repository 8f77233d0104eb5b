let position = 0;
let velocity = 3;
let bounces = 0;
let limit = 1000;

function bounce() {
    velocity = -velocity;
    bounces++;
}

function step() {
    position += velocity;
    if (position < 0) bounce();
    if (position > limit) bounce();
}

const steps = Number(require("fs").readFileSync(0));
let taken = 0;
while (taken < steps) {
    step();
    taken++;
}
console.log(bounces * 10000 + position);
