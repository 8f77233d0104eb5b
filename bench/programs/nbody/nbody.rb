class Body
  attr_accessor :x, :y, :z, :vx, :vy, :vz, :mass

  def initialize(i)
    @x = 2.0 * i
    @y = 0.5 * i
    @z = 0.25 * i
    @vx = @vy = @vz = 0.0
    @mass = 0.02 * i
  end
end

def solar_system
  sun = Body.new(0)
  sun.mass = 40.0
  planets = (1..4).map do |i|
    planet = Body.new(i)
    planet.vz = Math.sqrt(sun.mass / planet.x)
    planet
  end
  [sun] + planets
end

def advance(bodies, dt)
  count = bodies.length
  i = 0
  while i < count
    a = bodies[i]
    j = i + 1
    while j < count
      b = bodies[j]
      dx = a.x - b.x
      dy = a.y - b.y
      dz = a.z - b.z
      square = dx * dx + dy * dy + dz * dz
      pull = dt / (square * Math.sqrt(square))
      pull_of_b = b.mass * pull
      a.vx -= dx * pull_of_b
      a.vy -= dy * pull_of_b
      a.vz -= dz * pull_of_b
      pull_of_a = a.mass * pull
      b.vx += dx * pull_of_a
      b.vy += dy * pull_of_a
      b.vz += dz * pull_of_a
      j += 1
    end
    i += 1
  end
  bodies.each do |body|
    body.x += dt * body.vx
    body.y += dt * body.vy
    body.z += dt * body.vz
  end
end

def energy(bodies)
  total = 0.0
  bodies.each_with_index do |a, i|
    total += 0.5 * a.mass * (a.vx * a.vx + a.vy * a.vy + a.vz * a.vz)
    bodies[(i + 1)..].each do |b|
      dx = a.x - b.x
      dy = a.y - b.y
      dz = a.z - b.z
      total -= a.mass * b.mass / Math.sqrt(dx * dx + dy * dy + dz * dz)
    end
  end
  total
end

steps = gets.to_i
bodies = solar_system
steps.times { advance(bodies, 0.001) }
puts (energy(bodies) * 1000000000).floor
