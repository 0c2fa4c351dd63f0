"""Small models in scene axes (Y up, metres) as VRML97 and as X3D XML: the teleporter model and the static meshes."""

import math
from dataclasses import dataclass


@dataclass
class Part:
    """One face set. corners: texture coordinates of every face's corners in turn; needed with a texture only."""

    points: list
    faces: list
    diffuse: tuple
    texture: str = ""
    corners: list = None
    emissive: tuple = (0, 0, 0)
    transparency: float = 0
    crease: float = 0.6
    two_sided: bool = False

    def texts(self):
        """What both encodings write, as texts."""
        order = " ".join(" ".join(map(str, face)) + " -1" for face in self.faces)
        return {
            "diffuse": numbers(self.diffuse),
            "emissive": numbers(self.emissive),
            "transparency": numbers([self.transparency]),
            "crease": numbers([self.crease]),
            "solid": not self.two_sided,
            "order": order,
            "points": ", ".join(map(numbers, self.points)),
            "corners": ", ".join(numbers(corner) for face in self.corners or [] for corner in face),
            "texture_order": self._corner_order(),
        }

    def _corner_order(self):
        indices, number = [], 0
        for face in self.faces:
            indices += list(range(number, number + len(face))) + [-1]
            number += len(face)
        return " ".join(map(str, indices))


def numbers(values):
    return " ".join(("%.4f" % (round(value, 4) + 0.0)).rstrip("0").rstrip(".") for value in values)


def wrl(parts):
    lines = ["#VRML V2.0 utf8", "Group {", " children ["]
    for part in parts:
        t = part.texts()
        colours = f"diffuseColor {t['diffuse']} emissiveColor {t['emissive']} transparency {t['transparency']}"
        look = f"material Material {{ {colours} }}"
        if part.texture:
            look += f'\n    texture ImageTexture {{ url "{part.texture}" }}'
        lines += ["  Shape {", f"   appearance Appearance {{\n    {look}\n   }}", "   geometry IndexedFaceSet {"]
        lines += [f"    solid {str(t['solid']).upper()}", f"    creaseAngle {t['crease']}"]
        lines += [f"    coord Coordinate {{ point [{t['points']}] }}", f"    coordIndex [{t['order']}]"]
        if part.corners:
            lines.append(f"    texCoord TextureCoordinate {{ point [{t['corners']}] }}")
            lines.append(f"    texCoordIndex [{t['texture_order']}]")
        lines += ["   }", "  }"]
    return "\n".join(lines + [" ]", "}", ""])


def x3d(parts):
    lines = ['<?xml version="1.0" encoding="UTF-8"?>', '<X3D profile="Immersive" version="3.0">', " <Scene>"]
    for part in parts:
        t = part.texts()
        material = f'diffuseColor="{t["diffuse"]}" emissiveColor="{t["emissive"]}" transparency="{t["transparency"]}"'
        lines += ["  <Shape>", "   <Appearance>", f"    <Material {material}/>"]
        if part.texture:
            lines.append(f"    <ImageTexture url='\"{part.texture}\"'/>")
        head = f'solid="{str(t["solid"]).lower()}" creaseAngle="{t["crease"]}" coordIndex="{t["order"]}"'
        if part.corners:
            head += f' texCoordIndex="{t["texture_order"]}"'
        lines += ["   </Appearance>", f"   <IndexedFaceSet {head}>", f'    <Coordinate point="{t["points"]}"/>']
        if part.corners:
            lines.append(f'    <TextureCoordinate point="{t["corners"]}"/>')
        lines += ["   </IndexedFaceSet>", "  </Shape>"]
    return "\n".join(lines + [" </Scene>", "</X3D>", ""])


def lathe(profile, count, **look):
    """A profile of (radius, height) pairs from the foot up, turned about the Y axis; both ends are closed."""
    points = []
    for radius, height in profile:
        angles = [math.tau * step / count for step in range(count)]
        points += [(radius * math.cos(a), height, -radius * math.sin(a)) for a in angles]
    faces = []
    for level in range(len(profile) - 1):
        for step in range(count):
            after = (step + 1) % count
            low, high = level * count, (level + 1) * count
            faces.append((low + step, low + after, high + after, high + step))
    faces.append(tuple(reversed(range(count))))
    faces.append(tuple(range(len(points) - count, len(points))))
    return Part(points, faces, **look)


def block(low, high, **look):
    """A box between two corners."""
    (x0, y0, z0), (x1, y1, z1) = low, high
    points = [(x, y, z) for x in (x0, x1) for y in (y0, y1) for z in (z0, z1)]
    faces = [(0, 1, 3, 2), (4, 6, 7, 5), (0, 4, 5, 1), (2, 3, 7, 6), (0, 2, 6, 4), (1, 5, 7, 3)]
    return Part(points, faces, crease=0.1, **look)


def teleporter():
    """A crystal that hangs in an upright ring, about the origin; the program shows it at half size and turns it."""
    girdle = [(0.42 * math.cos(a), 0, -0.42 * math.sin(a)) for a in (math.tau * step / 6 for step in range(6))]
    points = girdle + [(0, 0.95, 0), (0, -0.95, 0)]
    upper = [(step, (step + 1) % 6, 6) for step in range(6)]
    lower = [((step + 1) % 6, step, 7) for step in range(6)]
    corners = [((0, 0), (1, 0), (0.5, 1))] * 12
    crystal = Part(points, upper + lower, (0.8, 0.9, 1), "VisTeleport.png", corners, (0.1, 0.2, 0.3), crease=0.1)
    return [crystal, _hoop(1.3, 0.08, 24)]


def _hoop(radius, half, count):
    """An upright ring of square section in the XY plane."""
    inner, outer = radius - half, radius + half
    points = []
    for angle in (math.tau * step / count for step in range(count)):
        for reach, depth in ((inner, half), (outer, half), (outer, -half), (inner, -half)):
            points.append((reach * math.cos(angle), reach * math.sin(angle), depth))
    faces = []
    for step in range(count):
        here, after = 4 * step, 4 * ((step + 1) % count)
        for side in range(4):
            other = (side + 1) % 4
            faces.append((here + side, here + other, after + other, after + side))
    return Part(points, faces, (0.62, 0.54, 0.3), emissive=(0.06, 0.05, 0.02))


STONE, TIMBER, IRON = (0.66, 0.64, 0.58), (0.46, 0.32, 0.2), (0.24, 0.25, 0.28)


def urn():
    """About 0.9 m tall, standing on its origin."""
    profile = [(0.2, 0), (0.22, 0.06), (0.1, 0.12), (0.28, 0.45), (0.3, 0.62), (0.2, 0.78), (0.27, 0.88), (0.24, 0.9)]
    return [lathe(profile, 10, diffuse=STONE)]


def bench():
    """1.6 m long along X; its back is on the +Z side, so that a mirrored one shows."""
    legs = [block((x - 0.05, 0, -0.2), (x + 0.05, 0.42, 0.2), diffuse=IRON) for x in (-0.65, 0.65)]
    arm = block((0.7, 0.42, -0.2), (0.78, 0.66, 0.2), diffuse=IRON)
    seat = block((-0.8, 0.42, -0.22), (0.8, 0.48, 0.22), diffuse=TIMBER)
    back = block((-0.8, 0.6, 0.2), (0.8, 0.9, 0.25), diffuse=TIMBER)
    return legs + [arm, seat, back]


def lantern():
    """A post of 2.4 m with a glowing head."""
    post = lathe([(0.12, 0), (0.05, 0.1), (0.045, 2)], 8, diffuse=IRON)
    head = lathe([(0.08, 2), (0.16, 2.28)], 6, diffuse=(1, 0.86, 0.5), emissive=(0.7, 0.5, 0.2))
    roof = lathe([(0.2, 2.28), (0.02, 2.42)], 6, diffuse=IRON)
    return [post, head, roof]


def gate():
    """A lattice of bars, 2.4 m wide and 1.4 m high, hung on its left edge (the origin)."""
    bars = [block((x - 0.03, 0.05, -0.03), (x + 0.03, 1.4, 0.03), diffuse=IRON) for x in (0.05, 0.6, 1.2, 1.8, 2.35)]
    rails = [block((0, y - 0.04, -0.02), (2.4, y + 0.04, 0.02), diffuse=IRON) for y in (0.2, 1.2)]
    return bars + rails
