def make_text(n)
  syllables = %w[ka lo mi ne pu ra si to]
  seed = 42
  words = Array.new(n) do
    seed = seed * 16807 % 2147483647
    word = syllables[seed % 8] + syllables[seed % 7]
    word << syllables[seed % 5] if seed % 3 == 0
    word
  end
  words.join(" ")
end

def run(n)
  counts = Hash.new(0)
  make_text(n).split.each { |word| counts[word] += 1 }
  hash = 0
  counts.keys.sort_by { |word| [-counts[word], word] }.each do |word|
    hash = (hash * 31 + counts[word] * word.length + word.ord) % 1000003
  end
  hash
end

puts run(gets.to_i)
