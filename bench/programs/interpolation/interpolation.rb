def run(n)
  total = 0
  1.upto(n) do |i|
    line = "order #{i}: #{i % 7} pieces at #{i + 0.5}, #{i * 3} in all"
    total += line.length
  end
  total
end

puts run(gets.to_i)
