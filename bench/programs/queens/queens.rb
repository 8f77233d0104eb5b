def solve(row, size, columns, rising, falling)
  return 1 if row == size
  found = 0
  size.times do |c|
    up = row + c
    down = row - c + size
    next if columns[c] || rising[up] || falling[down]
    columns[c] = rising[up] = falling[down] = true
    found += solve(row + 1, size, columns, rising, falling)
    columns[c] = rising[up] = falling[down] = false
  end
  found
end

def queens(size)
  solve(0, size, Array.new(size, false), Array.new(2 * size, false), Array.new(2 * size, false))
end

puts queens(gets.to_i)
