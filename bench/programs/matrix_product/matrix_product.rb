def make_matrix(n, seed)
  Array.new(n) { |i| Array.new(n) { |j| (i * seed + j) % 10 / 4.0 } }
end

def multiply(a, b, n)
  a.map do |left|
    Array.new(n) do |j|
      total = 0.0
      k = 0
      while k < n
        total += left[k] * b[k][j]
        k += 1
      end
      total
    end
  end
end

def run(n)
  product = multiply(make_matrix(n, 3), make_matrix(n, 7), n)
  trace = 0.0
  n.times { |i| trace += product[i][i] }
  trace
end

puts (run(gets.to_i) * 16).floor
