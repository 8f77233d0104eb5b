def run(n)
  total = 0
  1.upto(n) do |i|
    bounded = (i % 1000).clamp(10, 500)
    total += bounded + (i % 17 - 8).abs + Math.sqrt(i).floor
  end
  total
end

puts run(gets.to_i)
