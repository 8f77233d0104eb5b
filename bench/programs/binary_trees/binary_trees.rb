Tree = Struct.new(:left, :right)

def make_tree(depth)
  return Tree.new(nil, nil) if depth == 0
  Tree.new(make_tree(depth - 1), make_tree(depth - 1))
end

def count_nodes(tree)
  return 1 if tree.left.nil?
  1 + count_nodes(tree.left) + count_nodes(tree.right)
end

def run(depth)
  lasting = make_tree(depth)
  nodes = 0
  1.upto(depth - 1) do |size|
    (2**(depth - 1 - size)).times { nodes += count_nodes(make_tree(size)) }
  end
  nodes + count_nodes(lasting)
end

puts run(gets.to_i)
