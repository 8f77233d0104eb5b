class Refused < StandardError
  attr_reader :code, :amount

  def initialize(code, amount)
    super()
    @code = code
    @amount = amount
  end
end

def check(order)
  raise Refused.new(7, order[:amount]) if order[:amount] > 90
  order[:customer][:discount] + order[:amount]
end

def run(n)
  customer = {discount: 2}
  total = 0
  1.upto(n) do |i|
    order = {amount: i % 100, customer: customer}
    order[:customer] = nil if i % 10 == 0
    begin
      total += check(order)
    rescue Refused => problem
      total += problem.code
    rescue NoMethodError
      total += 1
    end
  end
  total
end

puts run(gets.to_i)
