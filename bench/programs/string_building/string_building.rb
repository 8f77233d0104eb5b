def build(n)
  text = +""
  1.upto(n) do |i|
    text << i.to_s
    text << (i % 10 == 0 ? "\n" : ", ")
  end
  text
end

text = build(gets.to_i)
puts text.length + text.split("\n", -1).length
