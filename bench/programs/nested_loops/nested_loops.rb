def run(n)
  sides = (1..n).to_a
  found = 0
  sides.each do |a|
    sides.each do |b|
      square = a * a + b * b
      sides.each do |c|
        found += 1 if c * c == square
      end
    end
  end
  found
end

puts run(gets.to_i)
