class Account
  attr_accessor :id, :balance, :paid, :received, :refused

  def initialize(id)
    @id = id
    @balance = 1000
    @paid = @received = @refused = 0
  end
end

def transfer(from, to, amount)
  if from.balance < amount
    from.refused += 1
  else
    from.balance -= amount
    to.balance += amount
    from.paid += 1
    to.received += 1
  end
end

def run(n)
  accounts = Array.new(100) { |i| Account.new(i) }
  1.upto(n) do |i|
    transfer(accounts[i * 7 % 100], accounts[i * i % 97], i % 900)
  end
  hash = 0
  accounts.each do |account|
    hash = (hash * 31 + account.balance + account.id) % 1000003
    hash = (hash * 31 + account.paid + account.received * 3 + account.refused * 5) % 1000003
  end
  hash
end

puts run(gets.to_i)
