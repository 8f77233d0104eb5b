def stays(cx, cy):
    x = 0.0
    y = 0.0
    for _ in range(50):
        xx = x * x
        yy = y * y
        if xx + yy > 4.0:
            return False
        y = 2.0 * x * y + cy
        x = xx - yy + cx
    return True


def run(n):
    inside = 0
    for row in range(n):
        cy = 2.0 * row / n - 1.0
        for column in range(n):
            if stays(2.0 * column / n - 1.5, cy):
                inside += 1
    return inside


print(run(int(input())))
