def run(n)
  hash = 0
  1.upto(n) do |i|
    if i % 3 == 0
      hash = (hash * 31 + i) % 65521
    else
      hash += i % 7
    end
  end
  hash
end

puts run(gets.to_i)
