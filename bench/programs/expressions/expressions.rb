Leaf = Struct.new(:value) do
  def kind
    :number
  end
end
Operation = Struct.new(:kind, :left, :right)

class Parser
  def initialize(text)
    @text = text
    @at = 0
  end

  def parse_factor
    if @text[@at] == "("
      @at += 1
      inner = parse_sum
      @at += 1
      return inner
    end
    start = @at
    @at += 1 while @at < @text.length && @text[@at] >= "0" && @text[@at] <= "9"
    Leaf.new(@text[start...@at].to_i)
  end

  def parse_product
    left = parse_factor
    while @text[@at] == "*"
      @at += 1
      left = Operation.new(:product, left, parse_factor)
    end
    left
  end

  def parse_sum
    left = parse_product
    while @text[@at] == "+"
      @at += 1
      left = Operation.new(:sum, left, parse_product)
    end
    left
  end
end

def evaluate(tree)
  return tree.value if tree.kind == :number
  left = evaluate(tree.left)
  right = evaluate(tree.right)
  return (left + right) % 10007 if tree.kind == :sum
  left * right % 10007
end

def run(n)
  total = 0
  1.upto(n) do |i|
    tree = Parser.new("(#{i}+12)*3+(7*(2+#{i % 11})+4*5)*(1+2*3)+100").parse_sum
    5.times { total = (total + evaluate(tree)) % 1000003 }
  end
  total
end

puts run(gets.to_i)
