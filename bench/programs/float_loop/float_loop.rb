def run(n)
  x = 0.5
  total = 0.0
  1.upto(n) do |i|
    x = x * 0.999 + 1.0 / i
    x -= 1.25 if x > 1.5
    total += x * x
  end
  total
end

puts (run(gets.to_i) * 1000).floor
