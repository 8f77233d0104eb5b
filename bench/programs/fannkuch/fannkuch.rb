def count_flips(permutation)
  order = permutation.dup
  flips = 0
  first = order[0]
  while first != 0
    low = 0
    high = first
    while low < high
      order[low], order[high] = order[high], order[low]
      low += 1
      high -= 1
    end
    flips += 1
    first = order[0]
  end
  flips
end

# Makes the next permutation in place; false after the last.
def advance(permutation, turns)
  1.upto(permutation.length - 1) do |i|
    first = permutation[0]
    j = 1
    while j <= i
      permutation[j - 1] = permutation[j]
      j += 1
    end
    permutation[i] = first
    turns[i] += 1
    return true if turns[i] <= i
    turns[i] = 0
  end
  false
end

def run(n)
  permutation = (0...n).to_a
  turns = Array.new(n, 0)
  most = 0
  total = 0
  goes_on = true
  while goes_on
    flips = count_flips(permutation)
    most = flips if flips > most
    total += flips
    goes_on = advance(permutation, turns)
  end
  total * 100 + most
end

puts run(gets.to_i)
