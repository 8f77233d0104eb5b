def run(n)
  names = Array.new(n) { |i| "user#{i}" }
  visits = Hash.new(0)
  1.upto(3) do |round|
    names.each { |name| visits[name] += round }
  end
  total = 0
  0.upto(n + n / 2) do |i|
    name = "user#{i}"
    total += visits[name] if visits.key?(name)
  end
  names.each { |name| total += 1 if visits[name] != 6 }
  total + visits.size
end

puts run(gets.to_i)
