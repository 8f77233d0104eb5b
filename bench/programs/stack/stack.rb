def run(n)
  waiting = [1]
  visited = 0
  hash = 0
  until waiting.empty?
    x = waiting.pop
    visited += 1
    hash = (hash * 31 + x) % 1000003
    if 2 * x <= n
      waiting.push(2 * x)
      waiting.push(2 * x + 1) if 2 * x + 1 <= n
    end
  end
  visited + hash
end

puts run(gets.to_i)
