def scan(text)
  words = 0
  numbers = 0
  hash = 0
  in_word = false
  space, comma, zero, nine = " ,09".bytes
  text.each_byte do |c|
    if c == space || c == comma
      in_word = false
    else
      words += 1 unless in_word
      numbers += 1 if c >= zero && c <= nine
      in_word = true
    end
    hash = (hash * 31 + c) % 65521
  end
  words + numbers + hash
end

text = "the quick brown fox, 4 years old, jumps over 12 lazy dogs " * gets.to_i
puts scan(text)
