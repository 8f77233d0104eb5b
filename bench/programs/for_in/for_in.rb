def run(n)
  list = (0...200).to_a
  stock = {}
  1.upto(50) { |i| stock["item#{i}"] = i }
  text = "abcde" * 40
  total = 0
  n.times do
    list.each { |x| total += x % 3 }
    stock.each_key { |name| total += stock[name] }
    text.each_char { |c| total += 1 if c == "e" }
    (0...200).each { |i| total += i % 5 }
  end
  total
end

puts run(gets.to_i)
