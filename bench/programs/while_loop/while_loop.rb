# Integer#gcd exists; the loop is what is measured.
def gcd(a, b)
  a, b = b, a % b while b != 0
  a
end

def run(n)
  coprime = 0
  1.upto(n) do |a|
    1.upto(a) do |b|
      coprime += 1 if gcd(a, b) == 1
    end
  end
  coprime
end

puts run(gets.to_i)
