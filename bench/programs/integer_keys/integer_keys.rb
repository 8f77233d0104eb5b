def run(n)
  seen = {}
  seed = 42
  n.times do
    seed = seed * 16807 % 2147483647
    key = seed % (2 * n) * 1001
    seen[key] = seen.fetch(key, 0) + 1
  end
  total = 0
  (2 * n).times do |i|
    times = seen[i * 1001]
    total += times * times if times
  end
  total + seen.size
end

puts run(gets.to_i)
