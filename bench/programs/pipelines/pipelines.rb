def run(n)
  total = 0
  1.upto(n) do |round|
    odd = (0...1000).select { |x| x % 2 == 1 }
    squares = odd.map { |x| x * x + round }
    total = (total + squares.reduce(0) { |sum, x| sum + x % 7 }) % 1000003
  end
  total
end

puts run(gets.to_i)
