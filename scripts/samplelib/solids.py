"""Polygons of brushes: boxes, prisms, stairs and sheets in Unreal units, with their texture axes.

The editor's axes are left-handed (on a map X points right, Y towards the reader, Z up), but a polygon's normal is the
right-hand normal of its vertex order taken on the raw numbers. Points are (x, y, z).
"""

import math
from dataclasses import dataclass, field, replace

TWO_SIDED, MASKED, TRANSLUCENT, INVISIBLE, BACKDROP = 0x100, 0x02, 0x04, 0x01, 0x80
PAN_U, PAN_V, WAVY, UNLIT = 0x200, 0x400, 0x2000, 0x400000


def add(a, b):
    return tuple(p + q for p, q in zip(a, b))


def sub(a, b):
    return tuple(p - q for p, q in zip(a, b))


def times(a, factor):
    return tuple(p * factor for p in a)


def dot(a, b):
    return sum(p * q for p, q in zip(a, b))


def cross(a, b):
    return (a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0])


def unit(a):
    return times(a, 1 / math.sqrt(dot(a, a)))


def middle(points):
    return times([sum(column) for column in zip(*points)], 1 / len(points))


def newell(points):
    """The unit normal of a polygon from its vertex order."""
    normal = (0, 0, 0)
    for one, other in zip(points, points[1:] + points[:1]):
        normal = add(normal, cross(sub(one, points[0]), sub(other, points[0])))
    return unit(normal)


@dataclass(frozen=True)
class Look:
    """What a polygon wears.

    texels: texture pixels per Unreal unit. world: the texture starts at the level's origin, so that it runs on over
    neighbouring brushes; else at the polygon's upper left corner. fit: (width, height) of a texture that covers the
    polygon once.
    """

    texture: str = ""
    flags: int = 0
    texels: float = 0.5
    pan: tuple = None
    world: bool = False
    fit: tuple = None

    def with_flags(self, flags):
        return replace(self, flags=self.flags | flags)


@dataclass
class Polygon:
    points: list
    look: Look
    item: str = "OUTSIDE"
    normal: tuple = field(init=False)

    def __post_init__(self):
        self.normal = newell(self.points)
        for point in self.points:
            assert abs(dot(sub(point, self.points[0]), self.normal)) < 0.01, ("not flat", self.points)

    def mapping(self, world_origin):
        """(Origin, TextureU, TextureV): V runs down walls and U to the right as seen from outside."""
        steep = abs(self.normal[2]) < 0.7
        down = (0, 0, -1) if steep else (0, math.copysign(1, self.normal[2]), 0)
        v = unit(sub(down, times(self.normal, dot(down, self.normal))))
        u = cross(v, self.normal)
        across = [dot(point, u) for point in self.points]
        along = [dot(point, v) for point in self.points]
        scale_u = scale_v = self.look.texels
        if self.look.fit:
            scale_u = self.look.fit[0] / (max(across) - min(across))
            scale_v = self.look.fit[1] / (max(along) - min(along))
        depth = times(self.normal, dot(self.points[0], self.normal))
        corner = add(add(times(u, min(across)), times(v, min(along))), depth)
        return world_origin if self.look.world else corner, times(u, scale_u), times(v, scale_v)


def solid(faces):
    """Polygons of a convex solid from (points, look, item) triples, each turned to face away from the middle."""
    centre = middle([point for points, _, _ in faces for point in points])
    polygons = []
    for points, look, item in faces:
        outward = dot(newell(points), sub(middle(points), centre)) > 0
        polygons.append(Polygon(points if outward else points[::-1], look, item))
    return polygons


def box(low, high, side, top=None, bottom=None, **walls):
    """A box; walls named west (-X), south (+Y), east (+X), north (-Y) may look different from side."""
    (x0, y0, z0), (x1, y1, z1) = low, high
    assert x0 < x1 and y0 < y1 and z0 < z1, (low, high)
    look = {name: walls.get(name, side) for name in ("west", "south", "east", "north")}
    return solid(
        [
            ([(x0, y0, z0), (x0, y0, z1), (x0, y1, z1), (x0, y1, z0)], look["west"], "OUTSIDE"),
            ([(x0, y1, z0), (x0, y1, z1), (x1, y1, z1), (x1, y1, z0)], look["south"], "OUTSIDE"),
            ([(x1, y1, z0), (x1, y1, z1), (x1, y0, z1), (x1, y0, z0)], look["east"], "OUTSIDE"),
            ([(x1, y0, z0), (x1, y0, z1), (x0, y0, z1), (x0, y0, z0)], look["north"], "OUTSIDE"),
            ([(x0, y1, z1), (x0, y0, z1), (x1, y0, z1), (x1, y1, z1)], top or side, "TOP"),
            ([(x0, y0, z0), (x0, y1, z0), (x1, y1, z0), (x1, y0, z0)], bottom or top or side, "BOTTOM"),
        ]
    )


def extrude(profile, low, high, side, cap, axis=2):
    """A convex profile of (a, b) pairs drawn out along an axis; the pairs are the two other axes in rising order."""

    def at(pair, height):
        point = list(pair)
        point.insert(axis, height)
        return tuple(point)

    faces = []
    for one, other in zip(profile, profile[1:] + profile[:1]):
        faces.append(([at(one, low), at(one, high), at(other, high), at(other, low)], side, "WALL"))
    faces.append(([at(pair, high) for pair in profile], cap, "CAP"))
    faces.append(([at(pair, low) for pair in profile], cap, "CAP"))
    return solid(faces)


def ring(count, radius, centre=(0, 0)):
    """The corners of a regular polygon whose flat sides face the axes."""
    turn = math.tau / count
    reach = radius / math.cos(turn / 2)
    angles = [turn * (i + 0.5) for i in range(count)]
    return [(round(centre[0] + reach * math.cos(a), 3), round(centre[1] + reach * math.sin(a), 3)) for a in angles]


def spire(profile, low, tip, side, base):
    """A pyramid over a profile in the XY plane."""
    foot = [(x, y, low) for x, y in profile]
    faces = [([one, tip, other], side, "ROOF") for one, other in zip(foot, foot[1:] + foot[:1])]
    return solid(faces + [(foot, base, "BASE")])


def sheet(points, look, item="SHEET"):
    return [Polygon(points, look, item)]


def wall_sheets(profile, low, high, look):
    """Upright sheets along the edges of a closed profile."""
    edges = zip(profile, profile[1:] + profile[:1])
    return [Polygon([(*b, low), (*b, high), (*a, high), (*a, low)], look, "SHEET") for a, b in edges]


def stairs(low, high, steps, side, tread):
    """Steps that rise along +X, one brush, as the editor's own builder makes them."""
    (x0, y0, z0), (x1, y1, z1) = low, high
    run, rise = (x1 - x0) / steps, (z1 - z0) / steps
    polygons = []
    for number in range(steps):
        x, z = x0 + number * run, z0 + number * rise
        top = z + rise
        polygons.append(Polygon([(x, y0, z), (x, y0, top), (x, y1, top), (x, y1, z)], side, "RISE"))
        polygons.append(Polygon([(x, y1, top), (x, y0, top), (x + run, y0, top), (x + run, y1, top)], tread, "STEP"))
        polygons.append(Polygon([(x, y1, z0), (x, y1, top), (x + run, y1, top), (x + run, y1, z0)], side, "SIDE"))
        polygons.append(Polygon([(x + run, y0, z0), (x + run, y0, top), (x, y0, top), (x, y0, z0)], side, "SIDE"))
    polygons.append(Polygon([(x1, y1, z0), (x1, y1, z1), (x1, y0, z1), (x1, y0, z0)], side, "BACK"))
    polygons.append(Polygon([(x0, y0, z0), (x0, y1, z0), (x1, y1, z0), (x1, y0, z0)], side, "BASE"))
    return polygons
