function makeTree(depth) {
    if (depth === 0) return {left: null, right: null};
    return {left: makeTree(depth - 1), right: makeTree(depth - 1)};
}

function countNodes(tree) {
    if (tree.left === null) return 1;
    return 1 + countNodes(tree.left) + countNodes(tree.right);
}

function run(depth) {
    const lasting = makeTree(depth);
    let nodes = 0;
    for (let size = 1; size < depth; size++) {
        for (let i = 0; i < 2 ** (depth - 1 - size); i++) nodes += countNodes(makeTree(size));
    }
    return nodes + countNodes(lasting);
}

console.log(run(Number(require("fs").readFileSync(0))));
