function newBody(i) {
    return {x: 2.0 * i, y: 0.5 * i, z: 0.25 * i, vx: 0.0, vy: 0.0, vz: 0.0, mass: 0.02 * i};
}

function solarSystem() {
    const sun = newBody(0);
    sun.mass = 40.0;
    const bodies = [sun];
    for (let i = 1; i <= 4; i++) {
        const planet = newBody(i);
        planet.vz = Math.sqrt(sun.mass / planet.x);
        bodies.push(planet);
    }
    return bodies;
}

function advance(bodies, dt) {
    const count = bodies.length;
    for (let i = 0; i < count; i++) {
        const a = bodies[i];
        for (let j = i + 1; j < count; j++) {
            const b = bodies[j];
            const dx = a.x - b.x;
            const dy = a.y - b.y;
            const dz = a.z - b.z;
            const square = dx * dx + dy * dy + dz * dz;
            const pull = dt / (square * Math.sqrt(square));
            const pullOfB = b.mass * pull;
            a.vx -= dx * pullOfB;
            a.vy -= dy * pullOfB;
            a.vz -= dz * pullOfB;
            const pullOfA = a.mass * pull;
            b.vx += dx * pullOfA;
            b.vy += dy * pullOfA;
            b.vz += dz * pullOfA;
        }
    }
    for (const body of bodies) {
        body.x += dt * body.vx;
        body.y += dt * body.vy;
        body.z += dt * body.vz;
    }
}

function energy(bodies) {
    let total = 0.0;
    const count = bodies.length;
    for (let i = 0; i < count; i++) {
        const a = bodies[i];
        total += 0.5 * a.mass * (a.vx * a.vx + a.vy * a.vy + a.vz * a.vz);
        for (let j = i + 1; j < count; j++) {
            const b = bodies[j];
            const dx = a.x - b.x;
            const dy = a.y - b.y;
            const dz = a.z - b.z;
            total -= a.mass * b.mass / Math.sqrt(dx * dx + dy * dy + dz * dz);
        }
    }
    return total;
}

const steps = Number(require("fs").readFileSync(0));
const bodies = solarSystem();
for (let i = 0; i < steps; i++) advance(bodies, 0.001);
console.log(Math.floor(energy(bodies) * 1000000000));
