def run(n)
  line = "2024-05-17,order 4711,3 apples,delivered,,12 Mill Lane"
  total = 0
  n.times do
    fields = line.split(",")
    words = fields[5].split
    words.push(fields[0])
    text = words.join(" ") + fields.join(";")
    total += fields.length + words.length + text.length
  end
  total
end

puts run(gets.to_i)
