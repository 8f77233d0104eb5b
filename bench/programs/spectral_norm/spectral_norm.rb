def element(i, j)
  1.0 / ((i + j) * (i + j + 1) / 2 + i + 1)
end

def times_matrix(v, n)
  Array.new(n) do |i|
    total = 0.0
    j = 0
    while j < n
      total += element(i, j) * v[j]
      j += 1
    end
    total
  end
end

def times_transposed(v, n)
  Array.new(n) do |i|
    total = 0.0
    j = 0
    while j < n
      total += element(j, i) * v[j]
      j += 1
    end
    total
  end
end

def spectral_norm(n)
  u = Array.new(n, 1.0)
  v = nil
  10.times do
    v = times_transposed(times_matrix(u, n), n)
    u = times_transposed(times_matrix(v, n), n)
  end
  uv = 0.0
  vv = 0.0
  n.times do |i|
    uv += u[i] * v[i]
    vv += v[i] * v[i]
  end
  Math.sqrt(uv / vv)
end

puts (spectral_norm(gets.to_i) * 1000000000).floor
