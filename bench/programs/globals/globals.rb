$position = 0
$velocity = 3
$bounces = 0
$limit = 1000

def bounce
  $velocity = -$velocity
  $bounces += 1
end

def step
  $position += $velocity
  bounce if $position < 0
  bounce if $position > $limit
end

$steps = gets.to_i
$taken = 0
while $taken < $steps
  step
  $taken += 1
end
puts $bounces * 10000 + $position
