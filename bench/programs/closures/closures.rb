def make_counter(step)
  count = 0
  -> { count += step }
end

def twice(f, x)
  f.call(f.call(x))
end

def run(n)
  counters = (1..8).map { |step| make_counter(step) }
  total = 0
  n.times do |i|
    count = counters[i % 8].call
    shift = ->(x) { x + i }
    total = (total + twice(shift, count)) % 1000003
  end
  total
end

puts run(gets.to_i)
