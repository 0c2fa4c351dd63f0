"""The textures of the sample levels. Every one is drawn here from simple rules, tiles without a seam, and is small."""

import math

from .image_files import Picture

FONT = {
    "A": ("01110", "10001", "10001", "11111", "10001", "10001", "10001"),
    "F": ("11111", "10000", "10000", "11110", "10000", "10000", "10000"),
    "Q": ("01110", "10001", "10001", "10001", "10101", "10010", "01101"),
    "U": ("10001", "10001", "10001", "10001", "10001", "10001", "01110"),
    "Y": ("10001", "10001", "01010", "00100", "00100", "00100", "00100"),
    "7": ("11111", "00001", "00010", "00100", "01000", "01000", "01000"),
    " ": ("00000",) * 7,
}


def write(picture, text, left, top, size, value):
    """Draws text with blocks of size x size pixels."""
    for number, letter in enumerate(text):
        for row, bits in enumerate(FONT[letter]):
            for column, bit in enumerate(bits):
                if bit == "1":
                    x = left + (number * 6 + column) * size
                    y = top + row * size
                    picture.box(x, y, x + size, y + size, value)


def ramp(dark, light, steps):
    """A palette of steps colours from dark to light."""
    mix = [step / (steps - 1) for step in range(steps)]
    return [tuple(round(d + (l - d) * t) for d, l in zip(dark, light)) for t in mix]


def chance(x, y, seed):
    """A number from 0 to 1 that looks random and depends on its arguments alone."""
    n = (x * 374761393 + y * 668265263 + seed * 974711) & 0xFFFFFFFF
    n = ((n ^ (n >> 13)) * 1274126177) & 0xFFFFFFFF
    return ((n ^ (n >> 16)) & 0xFFFF) / 65535


def noise(x, y, cell, size, seed):
    """Smooth noise from 0 to 1 with features of cell pixels that repeats every size pixels."""
    count = size // cell
    column, row = x // cell, y // cell
    u, v = x % cell / cell, y % cell / cell
    u, v = u * u * (3 - 2 * u), v * v * (3 - 2 * v)
    corner = [chance((column + i) % count, (row + j) % count, seed) for j in (0, 1) for i in (0, 1)]
    upper = corner[0] + (corner[1] - corner[0]) * u
    lower = corner[2] + (corner[3] - corner[2]) * u
    return upper + (lower - upper) * v


def clouds(x, y, size, seed):
    """Noise of three sizes added up, from 0 to 1."""
    parts = ((size // 4, 0.55), (size // 8, 0.3), (size // 16, 0.15))
    return sum(weight * noise(x, y, cell, size, seed + cell) for cell, weight in parts)


def shade(value, palette):
    """The palette index of a value from 0 to 1."""
    return max(0, min(len(palette) - 1, int(value * len(palette))))


def courses(x, y, width, height, size, seed):
    """Masonry: (distance to the nearest joint in pixels, shade of the stone) with every second course shifted."""
    row = y // height
    shifted = (x + (width // 2 if row % 2 else 0)) % size
    joint = min(shifted % width, y % height)
    return joint, chance(shifted // width, row, seed)


def masonry(width, height, palette, seed):
    def pixel(x, y):
        joint, stone = courses(x, y, width, height, 64, seed)
        if joint == 0:
            return 0
        light = 0.3 + 0.25 * stone + 0.35 * clouds(x, y, 64, seed) + (0.1 if joint == 1 else 0)
        return shade(light, palette)

    return Picture(64, 64, palette).paint(pixel)


def cobble():
    palette = ramp((38, 36, 34), (168, 158, 146), 16)
    cells = [(i, j) for i in range(4) for j in range(4)]
    points = [(16 * i + 4 + 9 * chance(i, j, 1), 16 * j + 4 + 9 * chance(i, j, 2)) for i, j in cells]

    def pixel(x, y):
        def apart(point):
            dx = min(abs(x - point[0]), 64 - abs(x - point[0]))
            dy = min(abs(y - point[1]), 64 - abs(y - point[1]))
            return math.hypot(dx, dy)

        near, second = sorted(points, key=apart)[:2]
        edge = min(1.0, (apart(second) - apart(near)) / 6)
        stone = 0.35 + 0.3 * chance(int(near[0]), int(near[1]), 3)
        return shade(0.1 + edge * stone + 0.25 * clouds(x, y, 64, 4), palette)

    return Picture(64, 64, palette).paint(pixel)


def planks():
    palette = ramp((44, 30, 18), (150, 112, 70), 24)

    def pixel(x, y):
        board = x // 16
        if x % 16 == 0 or (y + 29 * board) % 64 == 0:
            return 0
        grain = noise(x * 2 % 64, (y + 13 * board) % 64 // 4 * 4, 4, 64, 5 + board)
        return shade(0.35 + 0.2 * chance(board, 0, 6) + 0.4 * (grain - 0.3), palette)

    return Picture(32, 64, palette).paint(pixel)


def shingles():
    palette = ramp((40, 22, 26), (150, 84, 72), 16)

    def pixel(x, y):
        joint, tile = courses(x, y, 16, 16, 64, 7)
        if joint == 0 and y % 16 or y % 16 == 15:
            return 0
        return shade(0.25 + 0.4 * (y % 16) / 16 + 0.25 * tile, palette)

    return Picture(64, 64, palette).paint(pixel)


def metal():
    palette = ramp((40, 44, 50), (176, 184, 190), 16)

    def pixel(x, y):
        u, v = x % 32, y % 32
        if u == 0 or v == 0:
            return 1
        if u == 31 or v == 31:
            return 12
        corner = math.hypot(min(u - 4, 28 - u, key=abs), min(v - 4, 28 - v, key=abs))
        if corner < 2:
            return 14
        return shade(0.45 + 0.25 * (clouds(x, y, 64, 8) - 0.5) + 0.06 * (y % 2), palette)

    return Picture(64, 64, palette).paint(pixel)


def grain(dark, light, seed, rough):
    """Sand, grass, plaster: clouds with a rough speckle on top."""
    palette = ramp(dark, light, 16)
    return Picture(64, 64, palette).paint(
        lambda x, y: shade((1 - rough) * clouds(x, y, 64, seed) + rough * chance(x, y, seed), palette)
    )


def water():
    palette = ramp((18, 58, 82), (126, 178, 190), 16)

    def pixel(x, y):
        bent = (y + round(3 * math.sin(x * math.tau / 64))) % 64
        return shade(0.15 + 0.75 * abs(2 * noise(x, bent, 8, 64, 9) - 1), palette)

    return Picture(64, 64, palette).paint(pixel)


def lava():
    palette = ramp((70, 6, 0), (250, 90, 8), 12) + ramp((252, 130, 20), (255, 244, 150), 6)
    return Picture(64, 64, palette).paint(lambda x, y: shade(1.25 * clouds(x, y, 64, 10) ** 1.2, palette))


def waterfall():
    palette = ramp((60, 110, 134), (232, 244, 248), 16)
    return Picture(32, 64, palette).paint(
        lambda x, y: shade(0.2 + 0.5 * chance(x // 2, 0, 11) + 0.4 * (noise(x * 2, y, 16, 64, 12) - 0.4), palette)
    )


def glass():
    palette = ramp((96, 142, 150), (212, 236, 238), 8)

    def pixel(x, y):
        if x < 2 or y < 2 or x > 29 or y > 29:
            return 0
        return 6 if (x + y) % 32 in range(4) else 7 if (x + y) % 32 in range(6, 8) else 3 + (x * y // 64) % 2

    return Picture(32, 32, palette).paint(pixel)


def grating():
    """Index 0 is the hole."""
    palette = [(88, 90, 94)] + ramp((34, 36, 40), (150, 156, 160), 7)

    def pixel(x, y):
        u, v = x % 16, y % 16
        if u > 3 and v > 3:
            return 0
        return 2 + min(u if u < 4 else 9, v if v < 4 else 9)

    return Picture(32, 32, palette).paint(pixel)


def netting():
    """Index 0 is the hole."""
    palette = [(112, 100, 72)] + ramp((70, 60, 40), (170, 150, 104), 5)

    def pixel(x, y):
        one, other = (x + y) % 8 < 2, (x - y) % 8 < 2
        if one and other:
            return 5
        return 1 + x % 4 if one or other else 0

    return Picture(32, 32, palette).paint(pixel)


def crate():
    """A box that shows which way it is turned: F, and an arrow that points up."""
    palette = ramp((52, 34, 18), (176, 132, 84), 14) + [(28, 18, 10), (150, 30, 24)]

    def pixel(x, y):
        edge = min(x, y, 63 - x, 63 - y)
        if edge in (0, 8):
            return 0
        along = y if edge > 8 or min(x, 63 - x) == edge else x
        return shade(0.45 + 0.15 * (edge < 8) + 0.3 * (noise(x, along // 4 * 4, 4, 64, 13) - 0.5), palette[:14])

    picture = Picture(64, 64, palette).paint(pixel)
    write(picture, "F", 15, 18, 4, 14)
    for row in range(8):
        picture.box(46 - row, 18 + row, 46 + row + 1, 19 + row, 15)
    picture.box(44, 26, 49, 46, 15)
    return picture


def sign():
    palette = ramp((20, 40, 66), (52, 84, 116), 4) + [(232, 226, 206)]
    picture = Picture(128, 64, palette).paint(lambda x, y: shade(clouds(x % 64, y, 64, 14), palette[:4]))
    for x0, y0, x1, y1 in ((4, 4, 124, 6), (4, 58, 124, 60), (4, 4, 6, 60), (122, 4, 124, 60)):
        picture.box(x0, y0, x1, y1, 4)
    write(picture, "QUAY 7", 12, 21, 3, 4)
    return picture


def dusk():
    """The horizon: deep blue above, a warm band below."""
    palette = ramp((34, 48, 92), (120, 120, 150), 24) + ramp((132, 122, 146), (246, 190, 130), 24)
    return Picture(32, 64, palette).paint(lambda x, y: min(47, (3 * y + x * 5 % 3) // 4))


def sky_clouds():
    palette = ramp((70, 78, 116), (226, 200, 190), 16)
    return Picture(64, 64, palette).paint(lambda x, y: shade(clouds(x, y, 64, 15) ** 1.5 * 1.2, palette))


def glow(width, height, inner, outer, alpha):
    """A sprite: colours from inner to outer, opacity alpha(x, y) from 0 to 1."""

    def pixel(x, y):
        strength = max(0.0, min(1.0, alpha(x, y)))
        colour = tuple(round(o + (i - o) * strength) for i, o in zip(inner, outer))
        return colour + (round(255 * strength),)

    return Picture(width, height, None, (0, 0, 0, 0)).paint(pixel)


def flame():
    def alpha(x, y):
        up = (63 - y) / 63
        sway = 3 * math.sin(up * 5)
        half = 11 * (1 - up) ** 0.7 * min(1, up * 5 + 0.35)
        return 1.4 * (1 - abs(x - 15.5 - sway * up) / half) if half > 0.5 else 0

    return glow(32, 64, (255, 236, 150), (232, 84, 16), alpha)


def flare():
    return glow(32, 32, (255, 250, 224), (255, 176, 60), lambda x, y: 1.25 - math.hypot(x - 15.5, y - 15.5) / 12.5)


def sun():
    return glow(32, 32, (255, 226, 170), (255, 160, 90), lambda x, y: 8 * (1 - math.hypot(x - 15.5, y - 15.5) / 15.5))


def lamp():
    palette = ramp((250, 196, 90), (255, 252, 224), 12)
    return Picture(32, 32, palette).paint(lambda x, y: shade(1 - math.hypot(x - 15.5, y - 15.5) / 23, palette))


def crystal():
    """The teleporter model's texture: facets of blue light over a bright rim."""
    palette = ramp((16, 40, 90), (214, 246, 255), 24)

    def pixel(x, y):
        facet = chance((x + y) // 16, (x - y) // 16 + 8, 16)
        return shade(0.2 + 0.45 * facet + 0.3 * y / 64 + (0.2 if (x + y) % 16 == 0 else 0), palette)

    return Picture(64, 64, palette).paint(pixel)
