def stays?(cx, cy)
  x = 0.0
  y = 0.0
  50.times do
    xx = x * x
    yy = y * y
    return false if xx + yy > 4.0
    y = 2.0 * x * y + cy
    x = xx - yy + cx
  end
  true
end

def run(n)
  inside = 0
  n.times do |row|
    cy = 2.0 * row / n - 1.0
    n.times do |column|
      inside += 1 if stays?(2.0 * column / n - 1.5, cy)
    end
  end
  inside
end

puts run(gets.to_i)
