Fraction = Struct.new(:top, :bottom)

def run(n)
  fractions = []
  seed = 42
  1.upto(n) do |i|
    seed = seed * 16807 % 2147483647
    fractions.push(Fraction.new(seed % 1000, i % 97 + 1))
  end
  fractions.sort! { |a, b| a.top * b.bottom <=> b.top * a.bottom }
  hash = 0
  fractions.each do |fraction|
    hash = (hash * 31 + (1000 * fraction.top / fraction.bottom).floor) % 1000003
  end
  hash
end

puts run(gets.to_i)
