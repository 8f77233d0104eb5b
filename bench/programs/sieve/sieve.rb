def count_primes(n)
  is_prime = Array.new(n + 1, true)
  count = 0
  2.upto(n) do |i|
    next unless is_prime[i]
    count += 1
    (i * i).step(n, i) { |multiple| is_prime[multiple] = false }
  end
  count
end

puts count_primes(gets.to_i)
