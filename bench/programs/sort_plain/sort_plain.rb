def run(n)
  numbers = []
  words = []
  seed = 42
  1.upto(n) do |i|
    seed = seed * 16807 % 2147483647
    numbers.push(seed)
    words.push("w#{seed % 100000}") if i % 4 == 0
  end
  numbers.sort!
  words.sort!
  hash = 0
  numbers.each { |number| hash = (hash * 31 + number) % 1000003 }
  words.each { |word| hash = (hash * 31 + word[1].ord + word.length) % 1000003 }
  hash
end

puts run(gets.to_i)
