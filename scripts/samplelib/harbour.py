"""The sample level of the first generation: a small harbour with one of everything that is converted.

X runs along the quay to the right, Y from the town (negative) over the water, Z is up. The quay lies at Z 0, the water
at -64. North is negative Y.
"""

from . import solids
from .harbour_actors import add_actors
from .solids import BACKDROP, INVISIBLE, MASKED, PAN_U, PAN_V, TRANSLUCENT, TWO_SIDED, UNLIT, WAVY, Look, box, ring
from .t3d import Level, colour, number, quoted, scale

NONSOLID = 8

BRICK = Look("Brick")
COBBLE = Look("cobble", world=True)
CRATE = Look("crate", fit=(64, 64))
LAMP = Look("lamp", UNLIT, fit=(32, 32))
METAL = Look("metal")
PLANKS = Look("Planks", texels=0.5)
PLASTER = Look("plaster", texels=0.25)
QUAY = Look("quay", world=True)
SAND = Look("sand", texels=0.25, world=True)
SHINGLE = Look("Shingle")
GRATING = Look("grating", MASKED | TWO_SIDED)
WATER = Look("water", WAVY | TRANSLUCENT | TWO_SIDED, texels=0.25, world=True)
DUSK = Look("dusk", UNLIT | TWO_SIDED, fit=(32, 64))
CLOUDS = Look("clouds", UNLIT | TRANSLUCENT | TWO_SIDED | PAN_U | PAN_V, texels=0.125)


def level():
    """The text of the level."""
    town = Level()
    _level_info(town)
    _ground(town)
    _warehouse(town)
    _quayside(town)
    _terrace(town)
    _lighthouse(town)
    _opening_movers(town)
    _restless_movers(town)
    _sky(town)
    add_actors(town)
    return town.text()


def _flat(x0, y0, x1, y1, z):
    return [(x0, y1, z), (x0, y0, z), (x1, y0, z), (x1, y1, z)]


def _facing_south(x0, x1, y, z0, z1):
    return [(x0, y, z0), (x0, y, z1), (x1, y, z1), (x1, y, z0)]


def _level_info(town):
    town.actor(
        "LevelInfo",
        ("TimeSeconds", number(4.75)),
        ("Title", quoted("The Harbourmaster's Quay")),
        ("Author", quoted("The Quarvel developers")),
        ("AmbientBrightness", "24"),
        ("AmbientHue", "150"),
        ("AmbientSaturation", "190"),
        ("bDistanceFog", "True"),
        ("DistanceFogColor", colour(136, 128, 150)),
        ("DistanceFogEnd", number(9000)),
        ("TexUPanSpeed", number(0.5)),
        ("TexVPanSpeed", number(1.5)),
        late=[("LightBrightness", "225"), ("LightHue", "28"), ("LightSaturation", "228")],
    )
    plain = Look()
    town.brush(box((-128, -128, 0), (128, 128, 256), plain), csg=None)
    dark = Look("dusk", BACKDROP)
    town.brush(box((-1600, -1600, -352), (1600, 1600, 1056), dark), csg="CSG_Subtract")


def _ground(town):
    town.brush(box((-1280, -1024, -256), (1280, -64, 0), QUAY, COBBLE))
    town.brush(box((640, 192, -256), (1280, 1024, 0), QUAY, COBBLE))
    town.brush(box((-1280, -64, -272), (1280, 1024, -256), SAND))
    town.brush(box((-1312, -1024, -256), (-1280, 1024, 48), QUAY))
    town.brush(box((1280, -1024, -256), (1312, 1024, 48), QUAY))
    town.brush(box((-1312, 1024, -256), (1312, 1056, 16), QUAY))
    town.brush(box((-1312, -1056, -256), (1312, -1024, 96), QUAY))
    town.brush(solids.sheet(_flat(-1280, -64, 1280, 1024, -64), WATER), flags=NONSOLID)


def _warehouse(town):
    """North-west: four walls with a door and a window to the quay, a flat roof that the lift goes up to."""
    walls = dict(side=BRICK, top=PLASTER)
    town.brush(box((-1152, -896, 0), (-384, -864, 256), **walls))
    town.brush(box((-1152, -864, 0), (-1120, -352, 256), **walls))
    town.brush(box((-416, -864, 0), (-384, -352, 256), **walls))
    town.brush(box((-1152, -352, 0), (-832, -320, 256), **walls))
    town.brush(box((-832, -352, 160), (-704, -320, 256), **walls))
    town.brush(box((-704, -352, 0), (-640, -320, 256), **walls))
    town.brush(box((-640, -352, 0), (-512, -320, 80), **walls))
    town.brush(box((-640, -352, 176), (-512, -320, 256), **walls))
    town.brush(box((-512, -352, 0), (-384, -320, 256), **walls))
    town.brush(box((-1168, -912, 256), (-368, -304, 272), PLASTER, Look("cobble", texels=1), PLANKS))
    town.brush(box((-640, -896, 96), (-512, -880, 176), PLASTER), csg="CSG_Subtract")
    glass = Look("glass", TRANSLUCENT | TWO_SIDED, texels=0.25)
    town.brush(solids.sheet(_facing_south(-640, -512, -336, 80, 176), glass), flags=NONSOLID)
    town.in_zone("ZoneInfo", 2)
    town.brush(box((-1120, -864, 0), (-416, -352, 4), PLANKS))
    for x in (-960, -608):
        town.brush(solids.extrude(ring(8, 14, (x, -608)), 4, 256, PLANKS, PLANKS))
    _crates(town)
    town.in_zone("LevelInfo", 1)
    # One buttress by the door, and the same brush mirrored on its other side.
    wedge = solids.extrude([(-32, 0), (32, 0), (32, 160)], -16, 16, QUAY, PLASTER, axis=1)
    for polygon in wedge:
        polygon.look = Look("quay", pan=(8, 16))
    town.brush(wedge, at=(-880, -304, 0))
    town.brush(wedge, at=(-656, -304, 0), main=scale((-1, 1, 1)))
    board = Look("sign", UNLIT, fit=(128, 64))
    address = ("url", quoted("http---www--example--org/harbour"))
    town.brush(box((-832, -320, 172), (-704, -312, 236), PLANKS, south=board), address)
    lost = Look("tide_table", fit=(128, 128))
    town.brush(box((-1088, -320, 64), (-992, -314, 136), PLANKS, south=lost))
    rail = [(-1160, -904), (-376, -904), (-376, -312), (-1160, -312)]
    sheets = solids.wall_sheets(rail, 272, 312, Look("grating", MASKED | TWO_SIDED, texels=0.8))
    town.brush([sheet for sheet in sheets if sheet.normal[0] < 0.9], flags=NONSOLID)


def _crates(town):
    """Crates in every pose a brush can have."""
    crate = box((-32, -32, -32), (32, 32, 32), CRATE)
    town.brush(crate, at=(-512, -768, 36))
    town.brush(crate, at=(-592, -784, 36), turned=(0, 4096, 0))
    town.brush(crate, at=(-520, -760, 92), turned=(0, -2730, 0), main=scale((0.75, 0.75, 0.75)))
    town.brush(crate, at=(-480, -656, 52), main=scale((0.5, 1.25, 1.5)))
    town.brush(crate, at=(-1056, -480, 52), turned=(0, 8192, 0), post=scale((1, 1, 1.5)))
    town.brush(crate, at=(-960, -432, 28), turned=(0, 16384, 16384), main=scale((1, 0.75, 1)))


def _quayside(town):
    edge = Look("grating", MASKED | TWO_SIDED)
    long_rail = solids.sheet(_facing_south(192, 880, -72, 0, 64), edge)
    short_rail = solids.sheet(_facing_south(1040, 1280, -72, 0, 64), edge)
    town.brush(long_rail + short_rail, flags=NONSOLID)
    town.brush(box((192, -80, 0), (880, -64, 160), Look("", INVISIBLE)), flags=NONSOLID)
    bollard = solids.extrude(ring(8, 16), 0, 40, METAL, Look("metal", texels=2))
    town.brush(bollard, at=(-576, -96, 0))
    town.brush(bollard, at=(-256, -96, 0), turned=(0, 3000, 0), post=scale((1, 1, 1.25)))
    town.brush(bollard, at=(128, -96, 0), main=scale((1.25, 1.25, 1)), post=scale((1, 1, 0.75)))
    # The crane: a mast, an arm that is turned and raised, a cable, and a load that is a mover.
    town.brush(box((-80, -160, 0), (-48, -128, 288), METAL))
    arm = box((-32, -12, -12), (288, 12, 12), METAL)
    town.brush(arm, at=(-64, -144, 276), turned=(3072, 16384, 0))
    town.brush(box((-65, 95, -24), (-63, 97, 340), Look("metal", texels=1)))
    # Nets hung up to dry, and a post that leans because its brush is sheered.
    for x in (-544, -352):
        town.brush(box((x - 6, -198, 0), (x + 6, -186, 120), PLANKS))
    net = Look("netting", MASKED | TWO_SIDED, texels=0.25)
    town.brush(solids.sheet(_facing_south(-538, -358, -192, 16, 112), net), flags=NONSOLID)
    town.brush(box((-8, -8, 0), (8, 8, 144), PLANKS), at=(1184, -160, 0), main=scale(sheer=0.3))
    town.brush(box((272, -336, 0), (368, -304, 32), PLANKS, bottom=Look("Planks", INVISIBLE)))
    slip = box((0, -96, -24), (580, 96, 0), QUAY, Look("Planks", texels=0.25))
    town.brush(slip, at=(-960, -64, 0), turned=(-4836, 16384, 0))


def _terrace(town):
    """North-east: a raised terrace with a forge under a roof; water falls from it into a basin."""
    town.brush(box((512, -960, 0), (1152, -512, 128), BRICK, COBBLE))
    town.brush(solids.stairs((320, -800, 0), (512, -672, 128), 8, PLASTER, COBBLE))
    for x in (568, 1096):
        for y in (-912, -560):
            town.brush(box((x - 10, y - 10, 128), (x + 10, y + 10, 290), PLANKS))
    half = box((-312, 0, 0), (312, 244, 12), PLANKS, SHINGLE, PLANKS)
    town.brush(half, at=(832, -736, 352), turned=(0, 0, 3640))
    other = box((-312, -244, 0), (312, 0, 12), PLANKS, SHINGLE, PLANKS)
    town.brush(other, at=(832, -736, 352), turned=(0, 0, -3640))
    town.brush(box((520, -744, 338), (1144, -728, 362), PLANKS))
    town.brush(box((912, -944, 128), (1120, -832, 176), QUAY, METAL))
    lava = Look("lava", UNLIT | PAN_U, texels=0.5)
    town.brush(solids.sheet(_flat(928, -928, 1104, -848, 178), lava), flags=NONSOLID)
    town.brush(box((760, -512, 112), (840, -480, 124), QUAY))
    fall = Look("fall", TRANSLUCENT | TWO_SIDED | PAN_V)
    town.brush(solids.sheet(_facing_south(768, 832, -484, 16, 112), fall), flags=NONSOLID)
    town.brush(box((688, -512, 0), (704, -400, 24), QUAY))
    town.brush(box((896, -512, 0), (912, -400, 24), QUAY))
    town.brush(box((704, -416, 0), (896, -400, 24), QUAY))
    town.brush(solids.sheet(_flat(704, -512, 896, -416, 16), WATER.with_flags(0)), flags=NONSOLID)


def _lighthouse(town):
    """South-east, on the mole: a tower with a gallery; its lamp is a mover."""
    place = (960, 640)
    town.brush(solids.extrude(ring(8, 128, place), 0, 24, QUAY, QUAY))
    town.brush(solids.extrude(ring(8, 104, place), 24, 352, Look("plaster", texels=0.25, pan=(-13, 40)), PLASTER))
    town.brush(solids.extrude(ring(8, 208, place), 352, 368, PLASTER, Look("metal", texels=1)))
    town.brush(solids.wall_sheets(ring(8, 204, place), 368, 424, GRATING), flags=NONSOLID)
    town.brush(solids.extrude(ring(8, 48, place), 368, 400, METAL, METAL))
    posts = []
    for x, y in ring(4, 44):
        corner = (place[0] + x, place[1] + y)
        posts += box((corner[0] - 4, corner[1] - 4, 368), (corner[0] + 4, corner[1] + 4, 464), METAL)
    town.brush(posts)
    town.brush(solids.spire(ring(8, 84, place), 464, (*place, 560), SHINGLE, PLANKS))


def _opening_movers(town):
    """A door, the lift, the drawbridge and the load of the crane."""
    door = box((-832, -346, 0), (-704, -326, 160), PLANKS)
    town.brush(
        door,
        ("MoveTime", number(1.2)),
        ("OpeningSound", "Sound'Harbour.Doors.clank'"),
        ("KeyPos(1)", "(X=-120.000000)"),
        ("BasePos", "(X=-768.000000,Y=-336.000000,Z=80.000000)"),
        kind="Mover",
    )
    town.brush(
        box((-368, -656, 0), (-272, -528, 8), METAL),
        ("MoveTime", number(3)),
        ("StayOpenTime", number(5)),
        ("KeyPos(1)", "(Z=264.000000)"),
        ("BasePos", "(X=-320.000000,Y=-592.000000,Z=4.000000)"),
        ("InitialState", quoted("TriggerOpenTimed")),
        kind="Mover",
        tag="lift",
    )
    # Hinged at the quay: the pre-pivot is the middle of the lower edge, and the keys tilt it down over the channel.
    town.brush(
        box((-128, -64, -8), (128, 64, 8), Look("Planks", texels=0.25), METAL),
        ("MoveTime", number(4)),
        ("DelayTime", number(0.5)),
        ("StayOpenTime", number(12)),
        ("KeyRot(1)", "(Pitch=-12288)"),
        ("BasePos", "(X=960.000000,Y=-64.000000)"),
        ("BaseRot", "(Pitch=12288,Yaw=16384)"),
        ("InitialState", quoted("TriggerOpenTimed")),
        kind="Mover",
        tag="drawbridge",
        at=(960, -64, 0),
        turned=(12288, 16384, 0),
        pivot=(-128, 0, 8),
    )
    town.brush(
        box((-96, 64, 48), (-32, 128, 112), CRATE),
        ("AttachTag", quoted("craneLamp")),
        ("MoveTime", number(3)),
        ("KeyPos(1)", "(Z=-112.000000)"),
        ("BasePos", "(X=-64.000000,Y=96.000000,Z=80.000000)"),
        ("InitialState", quoted("TriggerToggle")),
        kind="AttachMover",
        tag="crane",
    )


def _restless_movers(town):
    """What moves all the time: a boat, a water wheel and the lighthouse's lamp."""
    town.brush(
        _boat(),
        ("MoveTime", number(5)),
        ("NumKeys", "3"),
        ("KeyPos(1)", "(X=192.000000,Y=96.000000)"),
        ("KeyPos(2)", "(X=-32.000000,Y=288.000000)"),
        ("KeyRot(1)", "(Yaw=12288)"),
        ("KeyRot(2)", "(Yaw=-8192)"),
        ("BasePos", "(X=128.000000,Y=352.000000,Z=-52.000000)"),
        kind="LoopMover",
        at=(128, 352, -52),
    )
    blades = box((-16, -44, -3), (16, 44, 3), PLANKS) + box((-16, -3, -44), (16, 3, 44), PLANKS)
    town.brush(
        blades,
        ("RotationRate", "(Roll=-6000)"),
        ("BasePos", "(X=800.000000,Y=-456.000000,Z=52.000000)"),
        kind="RotatingMover",
        at=(800, -456, 52),
    )
    town.brush(
        box((-12, -28, -20), (12, 28, 20), METAL, west=LAMP, east=LAMP),
        ("RotateRate", "(Yaw=4096)"),
        ("BasePos", "(X=960.000000,Y=640.000000,Z=424.000000)"),
        kind="RotatingMover",
        at=(960, 640, 424),
    )


def _boat():
    deck = [(104, 0), (52, 36), (-84, 36), (-96, 0), (-84, -36), (52, -36)]
    top = [(x, y, 20) for x, y in deck]
    keel = [(x * 0.7, y * 0.7, -16) for x, y in deck]
    pairs = list(zip(top, keel))
    faces = [([a, c, d, b], PLANKS, "HULL") for (a, b), (c, d) in zip(pairs, pairs[1:] + pairs[:1])]
    return solids.solid(faces + [(top, Look("Planks", texels=1), "DECK"), (keel, PLANKS, "KEEL")])


def _sky(town):
    """A horizon around the harbour, and the sky zone: a small room below the level that holds a sky of its own."""
    town.brush(solids.wall_sheets(ring(12, 1520)[::-1], -272, 1000, DUSK), flags=NONSOLID)
    clouds = Look("clouds", UNLIT | PAN_U | PAN_V, texels=0.0625)
    town.brush(solids.sheet(_flat(-1568, -1568, 1568, 1568, 1000)[::-1], clouds), flags=NONSOLID)
    sea = Look("water", texels=0.25, world=True)
    around = [(-1568, 1056, 1568, 1568), (-1568, -1056, -1312, 1056), (1312, -1056, 1568, 1056)]
    outside = [polygon for area in around for polygon in solids.sheet(_flat(*area, -64), sea)]
    meadow = Look("grass", texels=0.25, world=True)
    town.brush(outside + solids.sheet(_flat(-1568, -1568, 1568, -1056, -16), meadow), flags=NONSOLID)
    town.in_zone("SkyZoneInfo", 3)
    town.brush(box((-320, -320, -1600), (320, 320, -1280), Look("dusk", UNLIT)), csg="CSG_Subtract")
    town.brush(solids.wall_sheets(ring(8, 288)[::-1], -1580, -1320, DUSK), flags=NONSOLID)
    town.brush(solids.sheet(_flat(-288, -288, 288, 288, -1320)[::-1], CLOUDS), flags=NONSOLID)
    sun = Look("sun", UNLIT | MASKED | TWO_SIDED, fit=(32, 32))
    disc = [(-272, 40, -1500), (-272, 40, -1420), (-272, -40, -1420), (-272, -40, -1500)]
    town.brush(solids.sheet(disc, sun), flags=NONSOLID)
    town.in_zone("LevelInfo", 1)
