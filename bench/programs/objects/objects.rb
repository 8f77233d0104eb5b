class Turtle
  def initialize(name)
    @name = name
    @x = 0
    @y = 0
    @dx = 1
    @dy = 0
  end

  def forward(steps)
    @x += @dx * steps
    @y += @dy * steps
  end

  def left
    @dx, @dy = -@dy, @dx
  end

  def distance
    @x.abs + @y.abs
  end
end

def run(n)
  turtles = Array.new(10) { |i| Turtle.new("turtle #{i}") }
  total = 0
  1.upto(n) do |i|
    turtle = turtles[i % 10]
    turtle.forward(i % 5)
    turtle.left if i % 3 == 0
    total = (total + turtle.distance) % 1000003
  end
  total
end

puts run(gets.to_i)
