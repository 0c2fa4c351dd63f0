"""The sample level of the second generation: a garden terrace with static meshes, terrain and a scene manager."""

import math

from . import solids
from .harbour_actors import facing
from .solids import Look, TRANSLUCENT, TWO_SIDED, WAVY, box
from .t3d import Level, number, quoted, rotator, vector
from .textures import noise

SIZE = 65  # samples of the height map to a side
SPACING = 64  # Unreal units between samples
UPSCALE = 32  # TerrainScale.Z: a step of one sample is this / 256 units high

PLASTER = Look("Terrace.Walls.plaster", texels=0.25)
FLOOR = Look("Terrace.Ground.cobble", texels=0.5, world=True)
WATER = Look("Terrace.Water.water", WAVY | TRANSLUCENT | TWO_SIDED, texels=0.5)


def height_map():
    """Rows of 16-bit heights: level in the middle, hills towards the edges."""
    return [[32768 + round(_height(x, y) * 256 / UPSCALE) for x in range(SIZE)] for y in range(SIZE)]


def _height(x, y):
    """In Unreal units above the terrain's location."""
    across, along = (x - SIZE / 2) * SPACING, (y - SIZE / 2) * SPACING
    rise = max(0.0, math.hypot(across, along) / (SIZE * SPACING / 2) - 0.38)
    return round(900 * rise * rise + 240 * min(rise, 0.5) * (noise(x % 64, y % 64, 16, 64, 30) + 0.3))


def level():
    """The text of the level."""
    garden = Level(prefix="Engine.", volume="DefaultPhysicsVolume'MyLevel.DefaultPhysicsVolume0'")
    garden.actor(
        "LevelInfo",
        ("Title", quoted("Terrace above the harbour")),
        ("Author", quoted("The Quarvel developers")),
        late=[("LightBrightness", "230"), ("LightHue", "40"), ("LightSaturation", "240")],
    )
    garden.brush(box((-128, -128, 0), (128, 128, 256), Look()), csg=None)
    garden.actor("DefaultPhysicsVolume")
    backdrop = Look("Terrace.Sky.dusk", solids.BACKDROP)
    garden.brush(box((-2400, -2400, -512), (2400, 2400, 2048), backdrop), csg="CSG_Subtract")
    _terrace(garden)
    _terrain(garden)
    _meshes(garden)
    _cameras(garden)
    return garden.text()


def _terrace(garden):
    garden.brush(box((-384, -384, -16), (384, 384, 32), PLASTER, FLOOR))
    garden.brush(box((-384, -400, -16), (384, -384, 96), PLASTER))
    garden.brush(box((-400, -400, -16), (-384, 384, 96), PLASTER))
    garden.brush(solids.stairs((-96, -64, -16), (0, 64, 32), 3, PLASTER, FLOOR), at=(480, 0, 0), turned=(0, 32768, 0))
    pool = solids.extrude(solids.ring(8, 112), 32, 56, PLASTER, FLOOR)
    garden.brush(pool)
    garden.brush(solids.sheet([(x, y, 57) for x, y in solids.ring(8, 100)], WATER), flags=8)


def _terrain(garden):
    layer = (
        "(Texture=Texture'Terrace.Ground.grass',AlphaMap=Texture'MyLevel.cover',UScale=8.000000,VScale=8.000000,"
        "TerrainMatrix=(XPlane=(X=0.001953),YPlane=(Y=0.001953),ZPlane=(Z=1.000000),WPlane=(W=1.000000)))"
    )
    under = range(28, 37)  # squares that the terrace covers
    visible = [not (x in under and y in under) for y in range(SIZE) for x in range(SIZE)]
    words = []
    for start in range(0, len(visible), 32):
        word = sum(1 << bit for bit, shown in enumerate(visible[start : start + 32]) if shown)
        words.append(word - (1 << 32) if word >= 1 << 31 else word)
    garden.actor(
        "TerrainInfo",
        ("TerrainMap", "Texture'MyLevel.terrace_heights'"),
        ("TerrainScale", vector((SPACING, SPACING, UPSCALE))),
        ("Layers(0)", layer),
        *[(f"QuadVisibilityBitmap({index})", str(word)) for index, word in enumerate(words)],
        at=(0, 0, -8),
    )


def _mesh(name):
    return ("StaticMesh", f"StaticMesh'Terrace.Props.{name}'")


def _meshes(garden):
    def place(name, at, yaw=0, *late):
        garden.actor("StaticMeshActor", _mesh(name), at=at, turned=(0, yaw, 0), late=late)

    for x, y in ((-340, -340), (340, -340), (-340, 340)):
        place("Urn", (x, y, 32), 0, ("DrawScale", number(1.2)))
    place("Urn", (340, 340, 32), 4096, ("DrawScale3D", vector((1.5, 1.5, 0.75))))
    place("Bench", (-280, -100, 32), 16384)
    place("Bench", (-280, 100, 32), 16384, ("DrawScale3D", vector((-1, 1, 1))))
    place("Bench", (0, -330, 32), 0)
    for x in (-200, 200):
        place("Lantern", (x, 340, 32))
    place("Sundial", (200, -200, 32))  # not among the meshes
    garden.actor("StaticMeshActor", at=(0, 0, 300))
    garden.actor(
        "Mover",
        ("MoveTime", number(1.5)),
        ("KeyRot(1)", rotator((0, 14000, 0))),
        ("BasePos", vector((384, -64, 32))),
        ("BaseRot", rotator((0, 16384, 0))),
        ("DrawType", "DT_StaticMesh"),
        _mesh("Gate"),
        at=(384, -64, 32),
        turned=(0, 16384, 0),
    )


def _cameras(garden):
    garden.actor("PlayerStart", at=(560, 0, 80), turned=(0, 32768, 0))
    garden.actor("PlayerStart", at=(-300, 300, 80), turned=(0, -8192, 0), tag="Corner")
    lit = [("LightBrightness", number(200)), ("LightHue", "36"), ("LightSaturation", "150")]
    lit += [("LightRadius", number(32))]
    for x in (-200, 200):
        garden.actor("Light", at=(x, 340, 150), late=lit)
    sun = [("LightBrightness", number(140)), ("LightHue", "30"), ("LightSaturation", "190")]
    garden.actor("SunLight", ("bDynamicLight", "True"), at=(0, 0, 1200), turned=(-9000, 5000, 0), late=sun)
    points = [(900, -500, 420), (700, 600, 320), (-500, 700, 380), (-900, -300, 460)]
    for here in points:
        garden.actor("InterpolationPoint", at=here, turned=facing(here, (0, 0, 60)))
    actions = []
    for index in range(len(points)):
        # A control point is an offset from the point it belongs to: on the way, and back from where the way ends.
        away, arriving = _tangent(points, index - 1), _tangent(points, index)
        keys = [
            ("IntPoint", f"InterpolationPoint'MyLevel.InterpolationPoint{index}'"),
            ("PathStyle", "PATHSTYLE_Bezier"),
            ("StartControlPoint", vector(away)),
            ("EndControlPoint", vector(solids.times(arriving, -1))),
            ("Duration", number(3 + index)),
        ]
        actions.append(keys)
    garden.scene_manager(actions, at=(0, 0, 200))


def _tangent(points, index):
    """The direction of a closed path at a point, a quarter of the way between its neighbours long."""
    before, after = points[index - 1], points[(index + 1) % len(points)]
    return solids.times(solids.sub(after, before), 0.25)
